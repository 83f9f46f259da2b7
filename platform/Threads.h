#pragma once

#include <cstdint>

namespace platform {

// A background thread. Whoever started it owns it and gives it back with DeleteThread.
class Thread;

using ThreadBody = uint32_t (*)();

// The scheduler's levels for the two threads of a connection; a hint where the system reserves high levels
// for privileged users.
enum class ThreadPriority : int32_t { highest = 1, normal = 3 };

// What ThreadExitCode answers while the body has not returned.
inline constexpr uint32_t kStillActive = 259;

// Starts a thread at once; its exit code is what the body returns. Null when the system has no thread to
// give.
Thread *StartThread(ThreadBody body, ThreadPriority priority);

uint32_t ThreadExitCode(const Thread *thread);

// Waits until the thread has ended, at most so long. True when it has ended, also for null.
// A terminated thread leaves here.
bool WaitForThread(const Thread *thread, uint32_t milliseconds);

// Ends the thread: when the call returns, it runs no more library code. A thread that is in a blocking call
// of the seam is released from it at once. A thread that has already ended, or null, is left as it is. Never
// called by the thread itself.
void TerminateThread(Thread *thread, uint32_t exitCode);

// Gives the thread back, ending it first if it still runs. Null is ignored.
void DeleteThread(Thread *thread);

} // namespace platform
