/*
 * A host program in C that does one of several things hosts do. Usage: PROGRAM ACTION serial PATH | tcp PORT.
 * Exit status: 0, or the number of the step that failed.
 */
#include "api/NadrelHost.h"

#include <fcntl.h>
#include <signal.h>
#include <stdatomic.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/resource.h>
#include <time.h>
#include <unistd.h>

static atomic_int told;

static void Count(uint32_t message, uint32_t wParam, intptr_t lParam, void *context) {
    (void)message, (void)wParam, (void)lParam, (void)context;
    ++told;
}

static void Require(int condition, int step) {
    if (!condition)
        _exit(step);
}

static void Pause(long milliseconds) {
    struct timespec time = {milliseconds / 1000, milliseconds % 1000 * 1000000};
    nanosleep(&time, NULL);
}

static int32_t Connect(const char *kind, const char *name) {
    NadrelChar wide[256] = {0};
    for (size_t i = 0; name[i] != 0 && i < 255; ++i)
        wide[i] = (NadrelChar)name[i];
    SetNotificationHandler(Count, NULL);
    return strcmp(kind, "serial") == 0 ? InitPrinter(wide, 115200, 0)
                                       : InitWlanPrinter(u"127.0.0.1", (uint32_t)atoi(name), 10000, 0);
}

static uint32_t Errors(void) {
    NadrelLinkReport report = {.size = sizeof report};
    Require(GetLinkReport(&report) == 1, 90);
    return report.errorCount;
}

static void PrintAndAsk(const NadrelChar *text) {
    TextSaveSpool(text);
    PrintData();
    Require(PrintSpool(1) == 1, 20);
    Require(GetPrinterStatus(10000) == 1, 21);
    Require(Errors() == 0, 22);
}

/* Ends with the link open, its threads running and the printer sending. */
static int Leave(void) {
    PrintAndAsk(u"leaving");
    return 0;
}

/* The printer hangs up; nobody has asked for SIGPIPE to be ignored. */
static int Outlive(void) {
    struct sigaction action;
    sigaction(SIGPIPE, NULL, &action);
    Require(action.sa_handler == SIG_DFL, 30);
    static const uint8_t padding[100000];
    Require(ControlCommand(padding, sizeof padding) == sizeof padding, 31);
    for (int i = 0; i < 1000 && Errors() == 0; ++i)
        PrintSpool(0);
    Require(Errors() > 0, 32);
    Require(ClosePrinter() == 1, 33);
    return 0;
}

static long long MicrosecondsUsed(const struct rusage *used) {
    return (used->ru_utime.tv_sec + used->ru_stime.tv_sec) * 1000000LL + used->ru_utime.tv_usec +
           used->ru_stime.tv_usec;
}

/* Says how much processor time, in microseconds, two seconds of an open link cost. */
static int Measure(void) {
    char line[16];
    struct rusage from, to;
    puts("connected");
    fflush(stdout);
    Require(fgets(line, sizeof line, stdin) != NULL, 40);
    getrusage(RUSAGE_SELF, &from);
    Pause(2000);
    getrusage(RUSAGE_SELF, &to);
    printf("%lld\n", MicrosecondsUsed(&to) - MicrosecondsUsed(&from));
    Require(ClosePrinter() == 1, 41);
    return 0;
}

/* With everything that would be in the way closed, or the low descriptors taken. */
static int Print(void) {
    PrintAndAsk(u"printed");
    Require(ClosePrinter() == 1, 50);
    return 0;
}

static void CloseStandardStreams(void) {
    for (int i = 0; i < 3; ++i)
        close(i);
}

static void TakeLowDescriptors(void) {
    struct rlimit limit;
    getrlimit(RLIMIT_NOFILE, &limit);
    limit.rlim_cur = limit.rlim_max < 2048 ? limit.rlim_max : 2048;
    setrlimit(RLIMIT_NOFILE, &limit);
    int last = 0;
    while (last >= 0 && last < 1100)
        last = open("/dev/null", O_RDONLY);
    Require(last >= 1100, 60);
}

int main(int count, char **words) {
    Require(count == 4, 10);
    const char *action = words[1];
    if (strcmp(action, "print-without-streams") == 0)
        CloseStandardStreams();
    if (strcmp(action, "print-with-many-files") == 0)
        TakeLowDescriptors();
    Require(Connect(words[2], words[3]) == 1, 11);
    if (strcmp(words[2], "serial") == 0) {
        Require(strcmp(action, "print-without-streams") != 0 || GetPortHandle() == 0, 12);
        Require(strcmp(action, "print-with-many-files") != 0 || GetPortHandle() > 1024, 13);
    }
    if (strcmp(action, "leave") == 0)
        return Leave();
    if (strcmp(action, "outlive") == 0)
        return Outlive();
    return strcmp(action, "measure") == 0 ? Measure() : Print();
}
