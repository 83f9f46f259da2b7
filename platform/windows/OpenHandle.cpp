#include "platform/windows/OpenHandle.h"

namespace platform {

namespace {

// How long the calls in progress may take to end once they have been cancelled, in milliseconds.
constexpr ULONGLONG kTimeToLeave = 100;

intptr_t Counted(std::atomic<int> &uses, const std::atomic<intptr_t> &open, intptr_t handle) {
    ++uses;
    return handle == open ? handle : OpenHandle::kNone;
}

} // namespace

// Cancelled again and again: a call may have been about to begin its operation.
bool OpenHandle::Remove(intptr_t closed) {
    intptr_t expected = closed;
    if (closed == kNone || !handle.compare_exchange_strong(expected, kNone))
        return false;
    CancelIoEx(reinterpret_cast<HANDLE>(closed), nullptr);
    for (const ULONGLONG end = GetTickCount64() + kTimeToLeave; uses != 0 && GetTickCount64() < end;
         ::Sleep(1))
        CancelIoEx(reinterpret_cast<HANDLE>(closed), nullptr);
    return true;
}

HandleUse::HandleUse(OpenHandle &open, intptr_t handle, DWORD error)
    : used(open), number(Counted(open.uses, open.handle, handle)) {
    if (!IsOpen())
        SetLastError(error);
}

} // namespace platform
