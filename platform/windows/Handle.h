#pragma once

#include "platform/windows/System.h"

#include <utility>

namespace platform {

// A kernel object's handle, closed with its owner. Null is none.
class Handle {
  public:
    explicit Handle(HANDLE open = nullptr) : handle(open) {}
    Handle(Handle &&other) noexcept : handle(std::exchange(other.handle, nullptr)) {}
    Handle &operator=(Handle &&other) noexcept {
        std::swap(handle, other.handle);
        return *this;
    }
    ~Handle() {
        if (handle != nullptr)
            CloseHandle(handle);
    }

    HANDLE Get() const { return handle; }
    bool IsOpen() const { return handle != nullptr; }

  private:
    HANDLE handle;
};

} // namespace platform
