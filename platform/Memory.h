#pragma once

#include <cstddef>

namespace platform {

// Whether the process may read the whole range just now. One call to the system; `bytes` may be any value.
bool MemoryIsReadable(const void *bytes, size_t count);

} // namespace platform
