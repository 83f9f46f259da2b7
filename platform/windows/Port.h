#pragma once

#include "platform/SerialPort.h"
#include "platform/windows/OpenHandle.h"

namespace platform {

// For a call on the port, if it is the one opened last and not closed since; if not, that is recorded as the
// reason of a failure.
HandleUse UsePort(PortHandle port);

} // namespace platform
