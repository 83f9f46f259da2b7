#include "tests/linux/EmulatedTerminal.h"

#include <cstdarg>
#include <sys/ioctl.h>

// In place of the C library's, for a whole emulated program.
extern "C" int ioctl(int descriptor, unsigned long request, ...) noexcept {
    va_list arguments;
    va_start(arguments, request);
    void *argument = va_arg(arguments, void *);
    va_end(arguments);
    return SystemIoctl(descriptor, request, argument);
}
