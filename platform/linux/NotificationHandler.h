#pragma once

#include <cstdint>

namespace platform {

// What the host hears notifications with. Called on a thread of the library's own, one notification at a
// time, in the order posted. It may call any function of the library.
using NotificationHandler = void (*)(uint32_t message, uint32_t wParam, intptr_t lParam, void *context);

// Replaces the handler; null drops notifications. Waits until the handler replaced is not running, unless it
// is that which calls; so a caller must hold nothing that the handler waits for.
void SetNotificationHandler(NotificationHandler handler, void *context);

} // namespace platform
