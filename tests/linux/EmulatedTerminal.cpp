#include "tests/linux/EmulatedTerminal.h"

#include <algorithm>
#include <asm/ioctls.h>
#include <asm/termbits.h>
#include <cerrno>
#include <iterator>
#include <map>
#include <mutex>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

constexpr tcflag_t kRateMask = CBAUD | (static_cast<tcflag_t>(CBAUD) << IBSHIFT);

struct Rates {
    tcflag_t flags = B38400;
    speed_t input = 38400;
    speed_t output = 38400;
};

std::mutex mutex;
std::map<dev_t, Rates> rates;

int Ask(int descriptor, unsigned long request, void *argument) {
    return static_cast<int>(syscall(SYS_ioctl, descriptor, request, argument));
}

Rates &RatesOf(int descriptor) {
    struct stat status = {};
    fstat(descriptor, &status);
    return rates[status.st_rdev];
}

template <typename From, typename To>
void CopyCommon(const From &from, To &to) {
    to.c_iflag = from.c_iflag;
    to.c_oflag = from.c_oflag;
    to.c_cflag = from.c_cflag;
    to.c_lflag = from.c_lflag;
    to.c_line = from.c_line;
    std::copy(std::begin(from.c_cc), std::end(from.c_cc), std::begin(to.c_cc));
}

int Get(int descriptor, termios2 &terminal) {
    termios plain = {};
    if (Ask(descriptor, TCGETS, &plain) != 0)
        return -1;
    const std::lock_guard lock(mutex);
    const Rates &kept = RatesOf(descriptor);
    CopyCommon(plain, terminal);
    terminal.c_cflag = (plain.c_cflag & ~kRateMask) | kept.flags;
    terminal.c_ispeed = kept.input;
    terminal.c_ospeed = kept.output;
    return 0;
}

int Set(int descriptor, const termios2 &terminal) {
    termios plain = {};
    CopyCommon(terminal, plain);
    plain.c_cflag = (terminal.c_cflag & ~kRateMask) | B38400;
    const int result = Ask(descriptor, TCSETS, &plain);
    const std::lock_guard lock(mutex);
    if (result == 0)
        RatesOf(descriptor) = {terminal.c_cflag & kRateMask, terminal.c_ispeed, terminal.c_ospeed};
    return result;
}

} // namespace

int SystemIoctl(int descriptor, unsigned long request, void *argument) {
    const int result = Ask(descriptor, request, argument);
    if (result != -1 || errno != ENOSYS)
        return result;
    if (request == TCGETS2)
        return Get(descriptor, *static_cast<termios2 *>(argument));
    return request == TCSETS2 ? Set(descriptor, *static_cast<const termios2 *>(argument)) : result;
}
