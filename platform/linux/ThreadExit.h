#pragma once

#include <poll.h>

namespace platform {

// What takes a terminated thread from a blocking call of the seam to its end. It is no std::exception, so
// that a handler for those does not stop it; whoever catches everything meets it again at the next blocking
// call.
struct ThreadExit {};

// Throws ThreadExit when the calling thread has been terminated; nothing on a thread of the host.
void LeaveIfTerminated();

// What tells the calling thread that it has been terminated; of no descriptor on a thread of the host.
pollfd WatchedForTermination();

} // namespace platform
