#pragma once

#include <string>

namespace tool {

// The errno value that opening a serial port ends with now; ENOTTY for what is no serial port; 0 when it
// opens.
int TryPort(const std::string &path);

// Why a serial port that the library could not open did not: the system's reason, the result of TryPort, and
// what to do about it.
std::string PortTrouble(const std::string &path, int reason);

} // namespace tool
