#include "platform/windows/Overlapped.h"

#include "platform/windows/LastError.h"
#include "platform/windows/Wait.h"

#include <new>

namespace platform {

namespace {

// How long a cancelled operation may take to end, in milliseconds. Some never do before their handle is
// closed.
constexpr DWORD kTimeToCancel = 100;

} // namespace

bool Overlapped::HasEnded() const {
    const ULONG_PTR state = *const_cast<const volatile ULONG_PTR *>(&operation->system.Internal);
    return state != static_cast<ULONG_PTR>(STATUS_PENDING);
}

Overlapped::~Overlapped() {
    if (operation == nullptr)
        return;
    if (!HasEnded())
        WaitForSingleObject(operation->system.hEvent, kTimeToCancel);
    if (!HasEnded())
        return;
    if (operation->system.hEvent != nullptr)
        CloseHandle(operation->system.hEvent);
    delete operation;
}

bool Overlapped::Begin() {
    if (operation == nullptr || !HasEnded())
        operation = new (std::nothrow) Operation;
    if (operation == nullptr)
        return false;
    const HANDLE open = operation->system.hEvent;
    const HANDLE event = open != nullptr ? open : CreateEventW(nullptr, TRUE, FALSE, nullptr);
    *operation = {};
    operation->system.hEvent = event;
    return event != nullptr && ResetEvent(event);
}

bool Overlapped::Finish(HANDLE handle, bool begun, DWORD &count) {
    count = 0;
    if (!begun) {
        operation->system.Internal = 0; // the system may have left it pending
        return false;
    }
    if (!WaitFor(operation->system.hEvent, INFINITE)) {
        CancelIoEx(handle, &operation->system);
        if (WaitForSingleObject(operation->system.hEvent, kTimeToCancel) != WAIT_OBJECT_0)
            return Fail(ERROR_OPERATION_ABORTED);
    }
    return GetOverlappedResult(handle, &operation->system, &count, FALSE);
}

} // namespace platform
