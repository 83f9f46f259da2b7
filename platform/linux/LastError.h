#pragma once

namespace platform {

// Records why a call of the seam fails, for LastError. Gives false, so that the call can return it.
bool Fail(int error);

} // namespace platform
