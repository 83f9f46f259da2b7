#pragma once

#include <cstdint>

namespace platform {

// How long a Send may go on while the peer takes nothing, in milliseconds; 0, as at the start, is without a
// limit. Holds for every socket from the next Send on. False, and no change, for a negative number. Any
// thread.
bool SetSendTimeout(int32_t milliseconds);

} // namespace platform
