#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <poll.h>
#include <span>

namespace platform {

using Deadline = std::chrono::steady_clock::time_point;
inline constexpr Deadline kNever = Deadline::max();

// So long from now; at most some years.
Deadline AfterMilliseconds(uint64_t milliseconds);
Deadline AfterMicroseconds(uint64_t microseconds);

inline constexpr size_t kMostWatched = 3;

// The one place where the seam blocks: waits until one of `watched` (at most kMostWatched) reports something,
// and leaves in `revents` what. False when the deadline has passed and none has. Signals neither shorten nor
// prolong the wait. Throws ThreadExit on a terminated thread.
bool WaitFor(std::span<pollfd> watched, Deadline deadline);

// Waits for nothing but the deadline.
inline void WaitUntil(Deadline deadline) {
    WaitFor({}, deadline);
}

} // namespace platform
