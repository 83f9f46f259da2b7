#include "platform/Notification.h"

#include "platform/windows/System.h"
#include "platform/windows/WideText.h"

// Messages wait in the queues of the windows they were posted to. What is queued there is the host's own, so
// that there is nothing to open, to close or to wait for.
namespace platform {

uint32_t RegisterNotification(const char16_t *name) {
    return RegisterWindowMessageW(Wide(name));
}

void OpenNotifications() {}

void PostNotification(uint32_t message, uint32_t wParam, intptr_t lParam) {
    PostMessageW(HWND_BROADCAST, message, wParam, lParam);
}

void CloseNotifications() {}

bool WithinNotification() {
    return false;
}

} // namespace platform
