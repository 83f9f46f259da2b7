#include "platform/windows/Overlapped.h"

#include "platform/windows/LastError.h"
#include "platform/windows/Wait.h"

namespace platform {

namespace {

// How long a cancelled operation may take to end, in milliseconds. Some never do before their handle is
// closed.
constexpr DWORD kTimeToCancel = 100;

} // namespace

bool Overlapped::Begin() {
    const HANDLE event =
        operation.hEvent != nullptr ? operation.hEvent : CreateEventW(nullptr, TRUE, FALSE, nullptr);
    operation = {};
    operation.hEvent = event;
    return event != nullptr && ResetEvent(event);
}

bool Overlapped::Finish(HANDLE handle, bool begun, DWORD &count) {
    count = 0;
    if (!begun)
        return false;
    if (!WaitFor(operation.hEvent, INFINITE)) {
        CancelIoEx(handle, &operation);
        if (WaitForSingleObject(operation.hEvent, kTimeToCancel) != WAIT_OBJECT_0)
            return Fail(ERROR_OPERATION_ABORTED);
    }
    return GetOverlappedResult(handle, &operation, &count, FALSE);
}

} // namespace platform
