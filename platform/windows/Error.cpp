#include "platform/Error.h"

#include "platform/windows/System.h"

namespace platform {

uint32_t LastError() {
    return GetLastError();
}

} // namespace platform
