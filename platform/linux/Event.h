#pragma once

#include "platform/linux/Descriptor.h"

#include <poll.h>

namespace platform {

// A flag that a thread can wait for together with descriptors. Set and Reset may be called by any thread.
class Event {
  public:
    Event();

    // False when the system had no descriptor to give; such an event is never set.
    bool IsValid() const { return descriptor.IsOpen(); }

    void Set() const;
    void Reset() const;

    // Gives the descriptor back, and gets one again where it has been: while nobody waits. False when the
    // system has none to give.
    void Close() { descriptor.Close(); }
    bool Reopen();

    // What to wait for: readable while set.
    pollfd Watched() const { return {descriptor.Number(), POLLIN, 0}; }

  private:
    Descriptor descriptor;
};

} // namespace platform
