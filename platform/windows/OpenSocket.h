#pragma once

#include "platform/Socket.h"
#include "platform/windows/OpenHandle.h"

namespace platform {

// For a call on the socket, if it is the one connection's, made and not closed since; if not, that is recorded
// as the reason of a failure.
HandleUse UseSocket(SocketHandle socket);

} // namespace platform
