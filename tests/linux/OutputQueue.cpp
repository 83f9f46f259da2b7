#include "tests/linux/OutputQueue.h"

#include "tests/linux/EmulatedTerminal.h"
#include "tests/linux/SystemFaults.h"

#include <asm/termbits.h>
#include <cerrno>
#include <cstdarg>
#include <sys/ioctl.h>

namespace {

constexpr int kHidden = -1;

std::atomic<int> device = -1;
std::atomic<int> queued = 0;
std::atomic<int> asked = 0;
std::atomic<int> dropped = 0;

} // namespace

// In place of the C library's, for the whole test program.
extern "C" int ioctl(int descriptor, unsigned long request, ...) noexcept {
    va_list arguments;
    va_start(arguments, request);
    void *argument = va_arg(arguments, void *);
    va_end(arguments);
    if (const auto answer = MeetFault(SystemCall::ioctl, request))
        return static_cast<int>(*answer);
    if (descriptor == device && request == TIOCOUTQ) {
        ++asked;
        *static_cast<int *>(argument) = queued;
        errno = ENOTTY;
        return queued == kHidden ? -1 : 0;
    }
    if (descriptor == device && request == TCFLSH) {
        ++dropped;
        queued = 0;
    }
    return SystemIoctl(descriptor, request, argument);
}

OutputQueue::OutputQueue(int descriptor, int bytes) {
    asked = 0;
    dropped = 0;
    queued = bytes;
    device = descriptor;
}

OutputQueue::~OutputQueue() {
    device = -1;
}

void OutputQueue::Set(int bytes) {
    queued = bytes;
}

void OutputQueue::Hide() {
    queued = kHidden;
}

int OutputQueue::Asked() const {
    return asked;
}

int OutputQueue::Dropped() const {
    return dropped;
}
