#pragma once

#include "platform/Clock.h"

#include <cstdint>

namespace nadrel {

// How far apart a connect tries and a status query asks.
inline constexpr int32_t kAttemptPauseMs = 200;

// The attempts that a host's time-out in milliseconds stands for: at least one.
constexpr int32_t AttemptsWithin(int32_t timeoutMs) {
    return (timeoutMs < kAttemptPauseMs ? kAttemptPauseMs : timeoutMs) / kAttemptPauseMs;
}

// What an attempt waits on.
class AttemptPause {
  public:
    void Wait() { event.Wait(kAttemptPauseMs); }

  private:
    platform::TimedEvent event;
};

} // namespace nadrel
