#pragma once

#include "tools/ExitStatus.h"

namespace tool {

// The program `nadrel`: reads the command line, does what it says and tells what went wrong.
ExitStatus Main(int count, char **arguments);

} // namespace tool
