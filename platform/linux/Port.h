#pragma once

#include "platform/SerialPort.h"
#include "platform/linux/Endpoint.h"
#include "platform/linux/HandleTable.h"

#include <atomic>
#include <mutex>
#include <optional>

namespace platform {

// An open serial port. Its descriptor never blocks; the calls wait.
class Port : public Endpoint {
  public:
    using Endpoint::Endpoint;
    // Drops what the device has not taken, and gives the device free; leaves one alone that is another's.
    ~Port();

    bool IsValid() const { return Endpoint::IsValid() && release.IsValid(); }

    // Makes the device this process's own, also against root, which the system itself does not stop. False,
    // with the reason recorded, when it is another's.
    bool Claim();

    void Rest();
    bool Wake() { return Endpoint::Wake() && release.Reopen(); }

    // Bytes that the device has yet to take, 0 where the driver does not say; nothing once the device has
    // gone.
    std::optional<uint32_t> OutputQueued() const;
    // A driver may hold its close until a stuck device has taken everything; one with modem lines is a real
    // device, whose own small store counts too and is not in OutputQueued.
    bool ClosingMayBlock() const;

    PortTimeouts Timeouts() const;
    void SetTimeouts(const PortTimeouts &limits);

    void SetEvents(PortEvents wanted);
    // Waits for PortEvents::received; `happened` is none when released by SetEvents.
    bool WaitEvent(PortEvents &happened);

  private:
    bool FailAfterPause(int error);

    mutable std::mutex mutex; // guards `timeouts`
    PortTimeouts timeouts;
    std::atomic<PortEvents> events = PortEvents::none;
    Event release; // set whenever the events have been set to none; the waiter takes it back
    bool claimed = false;
};

HandleTable<Port> &Ports();

} // namespace platform
