#pragma once

#include <cstddef>

// Memory that runs out when a test wants it to.
namespace scripted::allocation {

// False where the sanitizer's runtime insists on its own operator new; no allocation can be made to fail
// then.
bool CanFail();

// The next allocation of a size within the range, by the calling thread, fails.
void FailNext(size_t atLeast, size_t atMost);
// The nth one does, counted from 1.
void FailNth(int nth, size_t atLeast, size_t atMost);

// No allocation fails. True when none has that was to.
bool Allow();

} // namespace scripted::allocation

namespace nadrel {
namespace allocation = scripted::allocation;
}
