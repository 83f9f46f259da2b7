#pragma once

#include "platform/windows/System.h"

namespace platform {

// An overlapped operation that is waited for. It lives in static storage: the system writes into it until the
// operation has ended, also when the thread that waited is gone. One thread at a time uses it.
class Overlapped {
  public:
    // Makes it ready for an operation, which it is handed to. False when there is no event to be had.
    bool Begin();
    OVERLAPPED *Get() { return &operation; }

    // Waits until the operation on the handle has ended, if it has begun, and takes the count of bytes.
    // Cancels it when the calling thread is being terminated. False, with the reason recorded, when it has
    // failed.
    bool Finish(HANDLE handle, bool begun, DWORD &count);

  private:
    OVERLAPPED operation = {}; // keeps its event for the life of the process
};

} // namespace platform
