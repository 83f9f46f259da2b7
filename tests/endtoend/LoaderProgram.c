/*
 * A host program that loads the library and unloads it with the link open, or closed. Usage: PROGRAM LIBRARY open |
 * closed serial PATH | tcp PORT. Exit status: 0, or the number of the step that failed.
 */
#include "api/NadrelHost.h"

#include <dlfcn.h>
#include <stdatomic.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>
#include <unistd.h>

static atomic_int told;

/*
 * Asked by the leak sanitizer, where there is one, at the end: it fails over running threads whose thread-local
 * variables belong to a library that was loaded later.
 */
static int endsWithThreads;
int __lsan_is_turned_off(void);
int __lsan_is_turned_off(void) {
    return endsWithThreads;
}

static void Count(uint32_t message, uint32_t wParam, intptr_t lParam, void *context) {
    (void)message, (void)wParam, (void)lParam, (void)context;
    ++told;
}

static void Require(int condition, int step) {
    if (!condition)
        _exit(step);
}

/* Each function by its name, as a host that has only the shared file finds it. */
#define FIND(name) __typeof__(name) *name##_ = (__typeof__(name) *)Find(library, #name)

static void *Find(void *library, const char *name) {
    void *function = dlsym(library, name);
    Require(function != NULL, 20);
    return function;
}

static void Connect(void *library, const char *kind, const char *name) {
    __extension__ FIND(SetNotificationHandler);
    __extension__ FIND(InitPrinter);
    __extension__ FIND(InitWlanPrinter);
    NadrelChar wide[256] = {0};
    for (size_t i = 0; name[i] != 0 && i < 255; ++i)
        wide[i] = (NadrelChar)name[i];
    SetNotificationHandler_(Count, NULL);
    const int32_t result = strcmp(kind, "serial") == 0
                               ? InitPrinter_(wide, 115200, 0)
                               : InitWlanPrinter_(u"127.0.0.1", (uint32_t)atoi(name), 10000, 0);
    Require(result == 1, 21);
}

static void Close(void *library) {
    __extension__ FIND(ClosePrinter);
    Require(ClosePrinter_() == 1, 22);
}

static void Unload(void *library) {
    Require(dlclose(library) == 0, 23);
}

static void *Load(const char *file) {
    void *library = dlopen(file, RTLD_NOW | RTLD_LOCAL);
    Require(library != NULL, 24);
    return library;
}

/* The link's threads go on: the handler is still told of what the printer sends without end. */
static void AwaitTold(int count) {
    const struct timespec pause = {0, 1000000};
    for (int i = 0; i < 20000 && told < count; ++i)
        nanosleep(&pause, NULL);
    Require(told >= count, 25);
}

static int UnloadOpen(const char *file, char **link) {
    void *library = Load(file);
    Connect(library, link[0], link[1]);
    AwaitTold(1);
    Unload(library);
    AwaitTold(told + 2);
    endsWithThreads = 1;
    return 0;
}

static int UnloadClosed(const char *file, char **link) {
    for (int i = 0; i < 10; ++i) {
        void *library = Load(file);
        Connect(library, link[0], link[1]);
        Close(library);
        Unload(library);
    }
    return 0;
}

int main(int count, char **words) {
    Require(count == 5, 10);
    return strcmp(words[2], "open") == 0 ? UnloadOpen(words[1], words + 3)
                                         : UnloadClosed(words[1], words + 3);
}
