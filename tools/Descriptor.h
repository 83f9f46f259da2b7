#pragma once

#include <unistd.h>

#include <utility>

namespace tool {

// A file descriptor that is closed with its owner; -1 owns nothing.
class Descriptor {
  public:
    explicit Descriptor(int number = -1) : fd(number) {}
    Descriptor(Descriptor &&other) noexcept : fd(std::exchange(other.fd, -1)) {}
    Descriptor &operator=(Descriptor other) noexcept {
        std::swap(fd, other.fd);
        return *this;
    }
    ~Descriptor() {
        if (fd != -1)
            close(fd);
    }

    int Get() const { return fd; }

  private:
    int fd;
};

} // namespace tool
