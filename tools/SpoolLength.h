#pragma once

#include "api/NadrelPrinter.h"

#include <cstdint>

namespace tool {

// Bytes in the spool, while a link is open.
inline int32_t SpoolLength() {
    const uint8_t nothing = 0;
    return ControlCommand(&nothing, 0);
}

} // namespace tool
