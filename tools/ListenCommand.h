#pragma once

#include "tools/ExitStatus.h"
#include "tools/Link.h"

#include <optional>

namespace tool {

struct ListenOptions {
    LinkOptions link;
    std::optional<int32_t> msrTrack; // 0 to 4: the magnetic-stripe reader is on meanwhile
};

// Prints every notification until the program is told to end (SIGINT, SIGTERM, SIGHUP) or nobody reads its
// output any more. Throws a LinkFailure.
ExitStatus ListenCommand(const ListenOptions &options);

} // namespace tool
