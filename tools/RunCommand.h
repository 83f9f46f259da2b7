#pragma once

#include "tools/ExitStatus.h"
#include "tools/Sending.h"

#include <string>

namespace tool {

struct RunOptions {
    std::string job; // - is the standard input
    Destination destination;
};

// Checks a job and runs it. Throws a JobFault, a LinkFailure, a CallFailure or a std::system_error.
ExitStatus RunCommand(const RunOptions &options);

} // namespace tool
