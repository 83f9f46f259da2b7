#pragma once

#include "tools/ExitStatus.h"
#include "tools/Link.h"

namespace tool {

struct StatusOptions {
    LinkOptions link;
    int32_t timeoutMs = 1000;
};

// Asks the printer for its status, its model name and its firmware version, and prints them. `failed` when it
// did not answer. Throws a LinkFailure.
ExitStatus StatusCommand(const StatusOptions &options);

} // namespace tool
