#pragma once

#include <cstdint>

namespace platform {

// Blocks the calling thread for the given time, never shorter, whatever signals arrive meanwhile.
// A terminated thread leaves here (see Threads.h).
void Sleep(uint32_t milliseconds);

// An event that nobody signals: a pause with the name that the connect and status procedures give it.
class TimedEvent {
  public:
    TimedEvent();
    ~TimedEvent();
    TimedEvent(const TimedEvent &) = delete;
    TimedEvent &operator=(const TimedEvent &) = delete;

    // As Sleep.
    void Wait(uint32_t milliseconds);
};

} // namespace platform
