#pragma once

#include <cstdint>

namespace scripted {

// What LastError answers on the calling thread.
void SetLastError(uint32_t error);

} // namespace scripted
