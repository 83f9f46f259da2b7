#include "platform/Notification.h"

#include "platform/windows/System.h"
#include "platform/windows/Wait.h"
#include "platform/windows/WideText.h"

// Messages wait in the queues of the windows they were posted to. What is queued there is the host's own, so
// that there is nothing to open, to close or to wait for.
namespace platform {

uint32_t RegisterNotification(const char16_t *name) {
    return RegisterWindowMessageW(Wide(name));
}

void OpenNotifications() {}

// A thread that is being terminated runs on to the end of its pass, and finds there what has come so far: a
// reply that was cut, of a link that is closed.
void PostNotification(uint32_t message, uint32_t wParam, intptr_t lParam) {
    if (!IsBeingTerminated())
        PostMessageW(HWND_BROADCAST, message, wParam, lParam);
}

void CloseNotifications() {}

bool WithinNotification() {
    return false;
}

} // namespace platform
