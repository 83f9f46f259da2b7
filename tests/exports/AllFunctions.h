#ifndef NADREL_TESTS_ALL_FUNCTIONS_H
#define NADREL_TESTS_ALL_FUNCTIONS_H

/* Every function of the library by its exported name; the last has no name. */
struct NamedFunction {
    const char *name;
    void (*function)(void);
};

extern const struct NamedFunction allFunctions[];

#endif
