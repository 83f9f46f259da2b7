#pragma once

#include "platform/linux/Descriptor.h"
#include "platform/linux/Event.h"
#include "platform/linux/Wait.h"

#include <memory>
#include <optional>

namespace platform {

// How long a call on a connection or device that is over pauses before it fails, so that whoever simply asks
// again costs nothing. Milliseconds.
inline constexpr uint32_t kPauseWhenGone = 50;

// What a port and a socket have in common: a descriptor, and what releases the calls in progress on it. Each
// of those calls shares the endpoint; the last one to leave closes the descriptor.
class Endpoint {
  public:
    explicit Endpoint(Descriptor open) : descriptor(std::move(open)), gone(std::make_shared<Event>()) {}
    ~Endpoint();
    Endpoint(const Endpoint &) = delete;
    Endpoint &operator=(const Endpoint &) = delete;

    // False when the system had no descriptors to give for the events.
    bool IsValid() const { return closing.IsValid() && gone->IsValid(); }
    int Number() const { return descriptor.Number(); }

    // Waits until the descriptor reports one of `events`, a hang-up or an error, and gives what it reports: 0
    // when the deadline passed first, nothing when the endpoint is being closed.
    std::optional<short> Wait(short events, Deadline deadline) const;

    // The pause of kPauseWhenGone, cut short by closing.
    void PauseWhenGone() const;

    // Releases every call in progress. The event is set once the descriptor has been closed.
    std::shared_ptr<const Event> BeginClosing();

    // An endpoint that is kept and not used holds its own descriptor alone; awake, it can be waited for.
    // False when the system has no descriptors to give.
    void Rest();
    bool Wake();

  protected:
    Descriptor descriptor;
    Event closing;

  private:
    std::shared_ptr<Event> gone;
};

} // namespace platform
