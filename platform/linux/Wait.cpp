#include "platform/linux/Wait.h"

#include "platform/linux/ThreadExit.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cerrno>
#include <ctime>

namespace platform {

namespace {

using namespace std::chrono;

constexpr uint64_t kLongestMicroseconds = 10ULL * 365 * 24 * 3600 * 1000 * 1000;

timespec TimeUntil(Deadline deadline) {
    const auto left = std::max(deadline - steady_clock::now(), steady_clock::duration::zero());
    const auto whole = duration_cast<seconds>(left);
    const auto rest = duration_cast<nanoseconds>(left - whole);
    return {static_cast<time_t>(whole.count()), static_cast<long>(rest.count())};
}

// Where the system refuses to poll (a process that has given up its descriptors, no memory), deadlines and
// terminations are looked at so often.
void PauseWithoutPolling() {
    const timespec pause = {0, 5'000'000};
    clock_nanosleep(CLOCK_MONOTONIC, 0, &pause, nullptr);
}

} // namespace

Deadline AfterMicroseconds(uint64_t time) {
    return steady_clock::now() + microseconds(std::min(time, kLongestMicroseconds));
}

Deadline AfterMilliseconds(uint64_t time) {
    return AfterMicroseconds(std::min(time, kLongestMicroseconds / 1000) * 1000);
}

bool WaitFor(std::span<pollfd> watched, Deadline deadline) {
    assert(watched.size() <= kMostWatched);
    LeaveIfTerminated();
    std::array<pollfd, kMostWatched + 1> all;
    *std::copy(watched.begin(), watched.end(), all.begin()) = WatchedForTermination();
    for (;;) {
        const timespec left = TimeUntil(deadline);
        const int reports =
            ppoll(all.data(), watched.size() + 1, deadline == kNever ? nullptr : &left, nullptr);
        if (reports < 0 && errno != EINTR)
            PauseWithoutPolling();
        LeaveIfTerminated();
        if (reports > 0) {
            std::copy_n(all.begin(), watched.size(), watched.begin());
            return true;
        }
        if (steady_clock::now() >= deadline)
            return false;
    }
}

} // namespace platform
