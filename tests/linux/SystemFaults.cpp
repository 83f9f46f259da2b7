#include "tests/linux/SystemFaults.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <fcntl.h>
#include <mutex>
#include <stdexcept>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <utility>

namespace {

struct Slot {
    std::atomic<bool> armed = false;
    Fault fault; // guarded by the mutex, as is what follows
    int calls = 0;
    int met = 0;
};

std::mutex mutex;

Slot &SlotOf(SystemCall call) {
    static auto &slots =
        *new std::array<Slot, static_cast<size_t>(SystemCall::count)>; // outlives all threads
    return slots[static_cast<size_t>(call)];
}

// The fault, if it is due at this call.
std::optional<Fault> Due(Slot &slot, unsigned long detail) {
    const std::lock_guard lock(mutex);
    if (!slot.armed || slot.fault.only.value_or(detail) != detail)
        return std::nullopt;
    const int behind = ++slot.calls - slot.fault.nth;
    if (behind < 0 || behind >= slot.fault.times)
        return std::nullopt;
    ++slot.met;
    return slot.fault;
}

// The fault's answer, or what the system says.
template <typename Result, typename... Parameters, typename... Arguments>
Result Ask(SystemCall call, Result (*real)(Parameters...), Arguments... arguments) {
    if (const auto answer = MeetFault(call))
        return static_cast<Result>(*answer);
    return real(arguments...);
}

} // namespace

std::optional<long> MeetFault(SystemCall call, unsigned long detail, void *value) {
    Slot &slot = SlotOf(call);
    if (!slot.armed)
        return std::nullopt;
    const auto fault = Due(slot, detail);
    if (!fault)
        return std::nullopt;
    if (fault->before)
        fault->before();
    if (fault->gives)
        fault->gives(value);
    if (fault->answer)
        errno = fault->error;
    return fault->answer;
}

SystemFault::SystemFault(Fault fault) : kind(fault.call) {
    Slot &slot = SlotOf(kind);
    const std::lock_guard lock(mutex);
    if (slot.armed)
        throw std::logic_error("there is a fault of this kind of call already");
    slot.fault = std::move(fault);
    slot.calls = 0;
    slot.met = 0;
    slot.armed = true;
}

SystemFault::~SystemFault() {
    const std::lock_guard lock(mutex);
    SlotOf(kind).armed = false;
}

int SystemFault::Met() const {
    const std::lock_guard lock(mutex);
    return SlotOf(kind).met;
}

// Calls of the functions below come here (the linker's --wrap), and go on from here to the C library. Those of
// ioctl and getaddrinfo are met by the functions that stand in place of the C library's.

// The names that the C library gives them for large files and for dates after 2038.
#if defined(__arm__)
#define NADREL_STAT "__stat64_time64"
#define NADREL_FSTAT "__fstat64_time64"
#define NADREL_GETSOCKOPT "__getsockopt64"
#else
#define NADREL_STAT "stat64"
#define NADREL_FSTAT "fstat64"
#define NADREL_GETSOCKOPT "getsockopt"
#endif

#define NADREL_WRAP(name, symbol, result, ...)                                                               \
    result Real##name(__VA_ARGS__) __asm__("__real_" symbol);                                                \
    result Wrap##name(__VA_ARGS__) __asm__("__wrap_" symbol);

NADREL_WRAP(Connect, "connect", int, int, const sockaddr *, socklen_t)
NADREL_WRAP(Dup3, "dup3", int, int, int, int)
NADREL_WRAP(Flock, "flock", int, int, int)
NADREL_WRAP(Fstat, NADREL_FSTAT, int, int, struct stat *)
NADREL_WRAP(Ftruncate, "ftruncate64", int, int, off_t)
NADREL_WRAP(Getsockopt, NADREL_GETSOCKOPT, int, int, int, int, void *, socklen_t *)
NADREL_WRAP(Open, "open64", int, const char *, int, ...)
NADREL_WRAP(Pread, "pread64", ssize_t, int, void *, size_t, off_t)
NADREL_WRAP(Read, "read", ssize_t, int, void *, size_t)
NADREL_WRAP(Recv, "recv", ssize_t, int, void *, size_t, int)
NADREL_WRAP(Send, "send", ssize_t, int, const void *, size_t, int)
NADREL_WRAP(Socket, "socket", int, int, int, int)
NADREL_WRAP(Stat, NADREL_STAT, int, const char *, struct stat *)
NADREL_WRAP(Syscall, "syscall", long, long, ...)
NADREL_WRAP(Write, "write", ssize_t, int, const void *, size_t)

int WrapConnect(int socket, const sockaddr *address, socklen_t size) {
    return Ask(SystemCall::connect, RealConnect, socket, address, size);
}

int WrapDup3(int from, int to, int flags) {
    return Ask(SystemCall::dup3, RealDup3, from, to, flags);
}

int WrapFlock(int descriptor, int operation) {
    return Ask(SystemCall::flock, RealFlock, descriptor, operation);
}

int WrapFstat(int descriptor, struct stat *status) {
    return Ask(SystemCall::fstat, RealFstat, descriptor, status);
}

int WrapFtruncate(int descriptor, off_t size) {
    return Ask(SystemCall::ftruncate, RealFtruncate, descriptor, size);
}

int WrapGetsockopt(int socket, int level, int name, void *value, socklen_t *size) {
    if (const auto answer = MeetFault(SystemCall::getsockopt, static_cast<unsigned long>(name), value))
        return static_cast<int>(*answer);
    return RealGetsockopt(socket, level, name, value, size);
}

int WrapOpen(const char *path, int flags, ...) {
    va_list rest;
    va_start(rest, flags);
    const auto mode = (flags & O_CREAT) != 0 ? va_arg(rest, mode_t) : mode_t{0};
    va_end(rest);
    const auto answer = MeetFault(SystemCall::open);
    return answer ? static_cast<int>(*answer) : RealOpen(path, flags, mode);
}

ssize_t WrapPread(int descriptor, void *bytes, size_t count, off_t place) {
    return Ask(SystemCall::pread, RealPread, descriptor, bytes, count, place);
}

ssize_t WrapRead(int descriptor, void *bytes, size_t count) {
    return Ask(SystemCall::read, RealRead, descriptor, bytes, count);
}

ssize_t WrapRecv(int socket, void *bytes, size_t count, int flags) {
    return Ask(SystemCall::recv, RealRecv, socket, bytes, count, flags);
}

ssize_t WrapSend(int socket, const void *bytes, size_t count, int flags) {
    return Ask(SystemCall::send, RealSend, socket, bytes, count, flags);
}

int WrapSocket(int family, int type, int protocol) {
    return Ask(SystemCall::socket, RealSocket, family, type, protocol);
}

int WrapStat(const char *path, struct stat *status) {
    return Ask(SystemCall::stat, RealStat, path, status);
}

long WrapSyscall(long number, ...) {
    std::array<long, 6> arguments{};
    const size_t count = number == SYS_process_vm_readv ? 6 : 3;
    va_list rest;
    va_start(rest, number);
    for (size_t i = 0; i < count; ++i)
        arguments[i] = va_arg(rest, long);
    va_end(rest);
    if (const auto answer = MeetFault(SystemCall::syscall, static_cast<unsigned long>(number)))
        return *answer;
    return RealSyscall(number, arguments[0], arguments[1], arguments[2], arguments[3], arguments[4],
                       arguments[5]);
}

ssize_t WrapWrite(int descriptor, const void *bytes, size_t count) {
    return Ask(SystemCall::write, RealWrite, descriptor, bytes, count);
}
