#pragma once

#include "platform/Socket.h"

namespace platform {

// Whether this is the one connection's socket, made and not closed since. If not, that is recorded as the
// reason of a failure.
bool IsOpenSocket(SocketHandle socket);

} // namespace platform
