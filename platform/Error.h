#pragma once

#include <cstdint>

namespace platform {

// Why the calling thread's last failed call of the seam failed, as the operating system numbers it (errno on
// Linux, GetLastError on Windows). A call that succeeds leaves it alone.
uint32_t LastError();

} // namespace platform
