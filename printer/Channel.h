#pragma once

#include "printer/Clock.h"
#include "printer/Faults.h"
#include "printer/Outbox.h"
#include "printer/ReadThrottle.h"
#include "printer/Session.h"

#include <optional>

namespace printer {

// One open link to a host: reads what comes, sends what is due, with the faults that were asked for.
class Channel {
  public:
    // The descriptor does not block; it stays the caller's and outlives the channel. With a time to swipe
    // after, a card is swiped that long after a reader was entered.
    Channel(int descriptor, Session session, const Faults &faults, std::optional<milliseconds> swipeAfter);

    // What poll is to wait for, and how long at most.
    short EventsToWaitFor(Time now) const;
    std::optional<Time> NextTime() const;

    // Deals with what poll found and with what is due. False when the link is over.
    bool Handle(short events, Time now);

    // When the last byte came, or could have come if reading is slowed down; none before the first byte.
    std::optional<Time> LastActive(Time now) const;

    // True while a reply is held back on purpose.
    bool HoldsReplies(Time now) const { return outbox_.NextTime() > now; }
    Session &GetSession() { return session_; }

  private:
    bool Read(Time now);
    void AfterReading(Time now);
    bool Write(Time now);
    void SwipeWhenDue(Time now);
    void GiveUpFrameWhenDue(Time now);
    size_t ReadableBytes(Time now) const;

    int descriptor_;
    Session session_;
    Faults faults_;
    Outbox outbox_;
    ReadThrottle throttle_;
    std::optional<milliseconds> swipeAfter_;
    std::optional<Time> swipeTime_;
    uint64_t readersEntered_ = 0;
    uint64_t received_ = 0; // bytes
    Time lastByte_{};
    Time retryTime_{}; // nothing is written before: the host did not take the last bytes
};

} // namespace printer
