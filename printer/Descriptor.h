#pragma once

#include <unistd.h>
#include <utility>

namespace printer {

// Owns a file descriptor; -1 is none.
class Descriptor {
  public:
    explicit Descriptor(int number = -1) : number_(number) {}
    ~Descriptor() { Close(); }
    Descriptor(Descriptor &&other) noexcept : number_(std::exchange(other.number_, -1)) {}
    Descriptor &operator=(Descriptor &&other) noexcept {
        if (this != &other) {
            Close();
            number_ = std::exchange(other.number_, -1);
        }
        return *this;
    }

    int Get() const { return number_; }
    bool IsOpen() const { return number_ >= 0; }
    void Close() {
        if (IsOpen())
            close(std::exchange(number_, -1));
    }

  private:
    int number_;
};

} // namespace printer
