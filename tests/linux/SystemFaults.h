#pragma once

#include <functional>
#include <optional>

// What the tests can make fail of what the library asks of the system.
enum class SystemCall {
    connect,
    dup3,
    flock,
    fstat,
    ftruncate,
    getaddrinfo,
    getsockopt,
    ioctl,
    open,
    pread,
    read,
    recv,
    send,
    socket,
    stat,
    syscall,
    write,
    count
};

// Calls of one kind that do not do what they are there for.
struct Fault {
    SystemCall call;
    // What they answer, without reaching the system, and the reason in errno; without an answer they go on to it.
    std::optional<long> answer = -1;
    int error = 0;
    // So many in a row, from the nth on, counted from 1.
    int nth = 1;
    int times = 1;
    // Those with this request (ioctl), option (getsockopt) or number (syscall) only.
    std::optional<unsigned long> only = std::nullopt;
    // What happens just before.
    std::function<void()> before = {};
    // What is put in place of the value that is asked for (getsockopt).
    std::function<void(void *value)> gives = {};
};

// Whether a fault is due at this call, and then its answer; counts the call. Any thread.
std::optional<long> MeetFault(SystemCall call, unsigned long detail = 0, void *value = nullptr);

// While it exists, the fault is there: for the calls of the library and of the tests, not for those that the C
// library makes for itself. One at a time for each kind of call.
class SystemFault {
  public:
    explicit SystemFault(Fault fault);
    ~SystemFault();
    SystemFault(const SystemFault &) = delete;
    SystemFault &operator=(const SystemFault &) = delete;

    // How many calls have met it.
    int Met() const;

  private:
    SystemCall kind;
};
