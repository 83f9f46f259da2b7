#pragma once

#include "printer/Bytes.h"
#include "printer/Clock.h"

#include <deque>
#include <optional>

namespace printer {

// Bytes for a host, each with the time at which it is to be sent.
class Outbox {
  public:
    static constexpr size_t MostBytes = 65536;    // kept; what comes on top is dropped
    static constexpr milliseconds SplitPause{20}; // between split bytes

    Outbox(milliseconds delay, bool split) : delay_(delay), split_(split) {}

    void Push(ByteView bytes, Time now);

    // When the next byte is to be sent; none when there is none.
    std::optional<Time> NextTime() const;

    // The bytes whose time has come, in order; one at a time when they are split.
    Bytes Due(Time now) const;

    // Takes the first bytes off.
    void Drop(size_t count);

  private:
    struct Entry {
        Time time;
        uint8_t byte;
    };
    milliseconds delay_;
    bool split_;
    std::deque<Entry> entries_;
    Time lastTime_{}; // of the last byte that was pushed
};

} // namespace printer
