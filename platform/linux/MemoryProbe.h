#pragma once

#include <cstddef>
#include <cstdint>

namespace platform {

// Whether one byte can be read in each of `count` pages (at most kMostProbed): at `first`, then at the start
// of the pages behind it. Two ways to ask: containers often forbid the first.
inline constexpr size_t kMostProbed = 1024;
enum class Probe { readable, unreadable, refused };
Probe ProbeByCopy(uintptr_t first, size_t count);
Probe ProbeByPipe(uintptr_t first, size_t count);

} // namespace platform
