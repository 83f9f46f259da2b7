/*
 * Loaded before everything else into a program that opens a pseudo-terminal as a serial port: gives it the modem lines
 * that pseudo-terminals lack, and writes what is done to the line into the file that NADREL_LINE_LOG names. For tests.
 */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <fcntl.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

static int lines = TIOCM_CTS | TIOCM_DSR | TIOCM_CAR;

static void Log(const char *text) {
    const char *name = getenv("NADREL_LINE_LOG");
    const int file = name == NULL ? -1 : open(name, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    if (file < 0)
        return;
    dprintf(file, "%s\n", text);
    close(file);
}

static int SetLines(int wanted) {
    char text[40];
    lines = (wanted & (TIOCM_DTR | TIOCM_RTS)) | TIOCM_CTS | TIOCM_DSR | TIOCM_CAR;
    snprintf(text, sizeof text, "DTR %d RTS %d", (lines & TIOCM_DTR) != 0, (lines & TIOCM_RTS) != 0);
    Log(text);
    return 0;
}

static int Answer(unsigned long request, int *argument) {
    switch (request) {
    case TIOCMGET:
        *argument = lines;
        return 0;
    case TIOCMBIS:
        return SetLines(lines | *argument);
    case TIOCMBIC:
        return SetLines(lines & ~*argument);
    default:
        return SetLines(*argument);
    }
}

static int IsAboutLines(unsigned long request) {
    return request == TIOCMGET || request == TIOCMSET || request == TIOCMBIS || request == TIOCMBIC;
}

int ioctl(int descriptor, unsigned long request, ...) {
    static int (*next)(int, unsigned long, ...);
    va_list arguments;
    va_start(arguments, request);
    void *argument = va_arg(arguments, void *);
    va_end(arguments);
    if (IsAboutLines(request) && isatty(descriptor))
        return Answer(request, argument);
    if (next == NULL)
        *(void **)&next = dlsym(RTLD_NEXT, "ioctl");
    return next(descriptor, request, argument);
}

static char Parity(tcflag_t flags) {
    if ((flags & PARENB) == 0)
        return 'N';
    if ((flags & CMSPAR) != 0)
        return (flags & PARODD) != 0 ? 'M' : 'S';
    return (flags & PARODD) != 0 ? 'O' : 'E';
}

static int Size(tcflag_t flags) {
    static const tcflag_t sizes[] = {CS5, CS6, CS7, CS8};
    int size = 5;
    while (size < 8 && sizes[size - 5] != (flags & CSIZE))
        ++size;
    return size;
}

/* Of the speeds that the tests set. */
static int Speed(speed_t code) {
    static const struct {
        speed_t code;
        int speed;
    } speeds[] = {{B9600, 9600}, {B19200, 19200}, {B57600, 57600}, {B115200, 115200}};
    for (size_t i = 0; i < sizeof speeds / sizeof speeds[0]; ++i)
        if (speeds[i].code == code)
            return speeds[i].speed;
    return 0;
}

int tcsetattr(int descriptor, int action, const struct termios *settings) {
    static int (*next)(int, int, const struct termios *);
    char text[80];
    const tcflag_t flags = settings->c_cflag;
    const char *flow = (flags & CRTSCTS) != 0 || (settings->c_iflag & (IXON | IXOFF)) != 0 ? "flow" : "free";
    snprintf(text, sizeof text, "speed %d %d%c%d %s", Speed(cfgetospeed(settings)), Size(flags),
             Parity(flags), (flags & CSTOPB) != 0 ? 2 : 1, flow);
    Log(text);
    if (next == NULL)
        *(void **)&next = dlsym(RTLD_NEXT, "tcsetattr");
    return next(descriptor, action, settings);
}
