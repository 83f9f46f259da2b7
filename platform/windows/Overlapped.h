#pragma once

#include "platform/windows/System.h"

namespace platform {

// An overlapped operation that is waited for. What the system writes into lies on the heap: it does so until
// the operation has ended, also when the thread that waited, or the library, is gone. One thread at a time uses
// it.
class Overlapped {
  public:
    constexpr Overlapped() = default;
    // Gives back what it has, unless the operation is still going on.
    ~Overlapped();
    Overlapped(const Overlapped &) = delete;
    Overlapped &operator=(const Overlapped &) = delete;

    // Makes it ready for an operation, which it is handed to; one that is still going on keeps what it has. False
    // when there is no event or memory to be had.
    bool Begin();
    OVERLAPPED *Get() { return &operation->system; }

    // For the one word that some operations tell; 0 at first.
    DWORD &Word() { return operation->word; }

    // Waits until the operation on the handle has ended, if it has begun, and takes the count of bytes.
    // Cancels it when the calling thread is being terminated. False, with the reason recorded, when it has
    // failed.
    bool Finish(HANDLE handle, bool begun, DWORD &count);

  private:
    struct Operation {
        OVERLAPPED system = {}; // keeps its event
        DWORD word = 0;
    };
    bool HasEnded() const;

    Operation *operation = nullptr; // null before the first
};

} // namespace platform
