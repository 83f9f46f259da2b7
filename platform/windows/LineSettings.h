#pragma once

#include "platform/SerialPort.h"
#include "platform/windows/System.h"

namespace platform {

LineSettings FromBlock(const DCB &block);

// Puts the settings into the system's block; fields they do not name stay.
void ToBlock(const LineSettings &settings, DCB &block);

} // namespace platform
