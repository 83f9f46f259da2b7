#include "platform/linux/Port.h"

#include "platform/linux/NeverDestroyed.h"

#include <algorithm>
#include <asm/termbits.h>
#include <sys/file.h>
#include <sys/ioctl.h>

namespace platform {

Port::~Port() {
    if (!claimed)
        return;
    if (OutputQueued().value_or(0) != 0)
        ioctl(Number(), TCFLSH, TCIOFLUSH);
    // A pseudo-terminal would stay exclusive, and a process that the host is just forking may hold a copy of
    // the descriptor, and so of the lock, for a moment longer.
    ioctl(Number(), TIOCNXCL);
    flock(Number(), LOCK_UN);
}

bool Port::Claim() {
    if (flock(Number(), LOCK_EX | LOCK_NB) != 0)
        return Fail(errno == EWOULDBLOCK ? EBUSY : errno);
    int exclusive = 0;
    if (ioctl(Number(), TIOCGEXCL, &exclusive) == 0 && exclusive != 0)
        return Fail(EBUSY);
    claimed = ioctl(Number(), TIOCEXCL) == 0;
    return claimed || Fail(errno);
}

void Port::Rest() {
    Endpoint::Rest();
    release.Close();
}

std::optional<uint32_t> Port::OutputQueued() const {
    int queued = 0;
    if (ioctl(Number(), TIOCOUTQ, &queued) == 0)
        return static_cast<uint32_t>(std::max(queued, 0));
    if (errno == ENOTTY)
        return 0;
    return std::nullopt;
}

PortTimeouts Port::Timeouts() const {
    const std::lock_guard lock(mutex);
    return timeouts;
}

void Port::SetTimeouts(const PortTimeouts &limits) {
    const std::lock_guard lock(mutex);
    timeouts = limits;
}

void Port::SetEvents(PortEvents wanted) {
    events = wanted;
    if (wanted == PortEvents::none)
        release.Set();
}

bool Port::WaitEvent(PortEvents &happened) {
    release.Reset();
    if (events == PortEvents::none)
        return true;
    pollfd watched[] = {{Number(), POLLIN, 0}, closing.Watched(), release.Watched()};
    WaitFor(watched, kNever);
    if (watched[1].revents != 0)
        return Fail(ECANCELED);
    if (watched[2].revents != 0)
        return true;
    // With a hang-up the system drops what was received and reports it as readable for ever.
    if (watched[0].revents != POLLIN)
        return FailAfterPause(EIO);
    happened = PortEvents::received;
    return true;
}

// Until the port is closed or released, at most.
bool Port::FailAfterPause(int error) {
    pollfd watched[] = {closing.Watched(), release.Watched()};
    WaitFor(watched, AfterMilliseconds(kPauseWhenGone));
    return Fail(error);
}

HandleTable<Port> &Ports() {
    static constinit NeverDestroyed<HandleTable<Port>> ports;
    return ports.object;
}

bool Port::ClosingMayBlock() const {
    int lines = 0;
    return OutputQueued().value_or(0) != 0 || ioctl(Number(), TIOCMGET, &lines) == 0;
}

} // namespace platform
