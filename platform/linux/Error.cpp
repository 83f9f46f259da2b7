#include "platform/Error.h"

#include "platform/linux/LastError.h"

namespace platform {

namespace {

thread_local uint32_t lastError = 0;

} // namespace

uint32_t LastError() {
    return lastError;
}

bool Fail(int error) {
    lastError = static_cast<uint32_t>(error);
    return false;
}

} // namespace platform
