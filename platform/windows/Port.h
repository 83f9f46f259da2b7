#pragma once

#include "platform/SerialPort.h"
#include "platform/windows/System.h"

namespace platform {

// The handle as the system has it, if it is that of the port opened last and not closed since; else null,
// with the reason recorded: the system may have given the number to something else.
HANDLE FindPort(PortHandle port);

} // namespace platform
