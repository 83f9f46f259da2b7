#include "platform/linux/Endpoint.h"

namespace platform {

Endpoint::~Endpoint() {
    descriptor.Close();
    gone->Set();
}

std::optional<short> Endpoint::Wait(short events, Deadline deadline) const {
    pollfd watched[] = {{Number(), events, 0}, closing.Watched()};
    if (!WaitFor(watched, deadline))
        return 0;
    if (watched[1].revents != 0)
        return std::nullopt;
    return watched[0].revents;
}

void Endpoint::Rest() {
    closing.Close();
    gone->Close();
}

bool Endpoint::Wake() {
    return closing.Reopen() && gone->Reopen();
}

void Endpoint::PauseWhenGone() const {
    pollfd watched = closing.Watched();
    WaitFor({&watched, 1}, AfterMilliseconds(kPauseWhenGone));
}

std::shared_ptr<const Event> Endpoint::BeginClosing() {
    closing.Set();
    return gone;
}

} // namespace platform
