/*
 * Stands beside a program in the place of the system's socket library, and refuses everything. On 64-bit Windows a
 * function may be called with arguments that it does not take.
 */

enum { kNotReady = 10091 };

int RefuseToStart(void);
int RefuseToStart(void) {
    return kNotReady;
}

long long Fail(void);
long long Fail(void) {
    return -1;
}
