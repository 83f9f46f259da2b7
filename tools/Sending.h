#pragma once

#include "tools/Link.h"

#include <functional>
#include <string>

namespace tool {

// Where a command's bytes go.
struct Destination {
    LinkOptions link;
    std::string
        hex; // a file for a hex dump of what would be sent; - is the standard output, empty means none
};

// Calls `send` with a link open, or with one that leads nowhere where a hex dump is asked for. What was sent
// before a failure is dumped too. Throws a LinkFailure, a std::system_error, and what `send` throws.
void SendTo(const Destination &destination, const std::function<void()> &send);

} // namespace tool
