#pragma once

#include <cerrno>
#include <unistd.h>
#include <utility>

namespace platform {

// Owns an open file descriptor, or none.
class Descriptor {
  public:
    Descriptor() = default;
    // Takes over `open`; a negative one is none.
    explicit Descriptor(int open) : number(open) {}
    ~Descriptor() { Close(); }
    Descriptor(Descriptor &&other) noexcept : number(std::exchange(other.number, -1)) {}
    Descriptor &operator=(Descriptor &&other) noexcept {
        std::swap(number, other.number);
        return *this;
    }

    bool IsOpen() const { return number >= 0; }
    int Number() const { return number; }

    // Never repeated when interrupted: the system has released the number by then.
    void Close() {
        if (number >= 0)
            close(std::exchange(number, -1));
    }

  private:
    int number = -1;
};

// The result of a system call that is begun again whenever a signal interrupts it.
template <typename Call>
auto Uninterrupted(Call call) {
    for (;;) {
        const auto result = call();
        if (result != -1 || errno != EINTR)
            return result;
    }
}

} // namespace platform
