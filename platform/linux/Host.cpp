#include "api/NadrelHost.h"

#include "platform/linux/AnsiCodePage.h"
#include "platform/linux/NotificationHandler.h"
#include "platform/linux/SendTimeout.h"

void SetNotificationHandler(NadrelNotificationHandler handler, void *context) {
    platform::SetNotificationHandler(handler, context);
}

int32_t SetAnsiCodePage(uint32_t codePage) {
    return platform::SetAnsiCodePage(codePage) ? 1 : 0;
}

int32_t SetSendTimeout(int32_t milliseconds) {
    return platform::SetSendTimeout(milliseconds) ? 1 : 0;
}
