#pragma once

#include "platform/windows/System.h"

namespace platform {

// Waits until the object is signalled, at most so many milliseconds, or INFINITE. False when the time is
// over, and at once when the calling thread is one of the library's own that is being terminated.
bool WaitFor(HANDLE object, DWORD milliseconds);

// Ends a pause of the calling thread when it is being terminated; null on the host's threads.
HANDLE TerminationEvent();

bool IsBeingTerminated();

} // namespace platform
