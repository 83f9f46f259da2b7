#pragma once

#include <string>

namespace platform {

// The device path that a port name means: a leading `\\.\` is ignored, COM1..COM256 in any case are
// /dev/ttyS0..255, anything else stands for itself.
std::string DevicePath(const char16_t *name);

} // namespace platform
