#pragma once

#include "platform/windows/System.h"

namespace platform {

// Records why a call of the seam fails, for LastError. Gives false, so that the call can return it.
inline bool Fail(DWORD error) {
    SetLastError(error);
    return false;
}

} // namespace platform
