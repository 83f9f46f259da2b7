#pragma once

#include "tools/ExitStatus.h"
#include "tools/Link.h"

#include <string>

namespace tool {

struct RunOptions {
    std::string job;
    LinkOptions link;
    std::string
        hex; // a file for a hex dump of what would be sent; - is the standard output, empty means none
};

// Checks a job and runs it. Throws a JobFault, a LinkFailure, a CallFailure or a std::system_error.
ExitStatus RunCommand(const RunOptions &options);

} // namespace tool
