#include "platform/Error.h"
#include "platform/Memory.h"
#include "platform/MessageBox.h"
#include "platform/Notification.h"
#include "tests/platform/ScriptedAllocation.h"
#include "tests/platform/ScriptedError.h"
#include "tests/platform/ScriptedPlatform.h"

#include <cstdio>

namespace scripted {

namespace {

thread_local uint32_t lastError = 0;
thread_local int handlers = 0;

constexpr uint32_t kMessageNumber = 0xC0DE;
constexpr intptr_t kHighestValue = 255;

std::string Hex(uint32_t number) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%08X", number);
    return text;
}

Notification Captured(uint32_t message, uint32_t wParam, intptr_t lParam) {
    Notification notification{message, wParam, lParam, {}};
    if (lParam > kHighestValue) {
        const auto *bytes = reinterpret_cast<const uint8_t *>(lParam);
        notification.bytes.assign(bytes, bytes + notification.Length());
    }
    return notification;
}

} // namespace

WithinHandler::WithinHandler() {
    ++handlers;
}

WithinHandler::~WithinHandler() {
    --handlers;
}

void SetLastError(uint32_t error) {
    lastError = error;
}

void Platform::AddNotification(const Notification &notification) {
    const Lock lock(mutex);
    notifications.push_back(notification);
}

std::vector<Notification> Platform::Notifications() const {
    const Lock lock(mutex);
    return notifications;
}

void Platform::AddMessage(const std::string &text) {
    const Lock lock(mutex);
    messages.push_back(text);
}

std::vector<std::string> Platform::Messages() const {
    const Lock lock(mutex);
    return messages;
}

} // namespace scripted

namespace platform {

using namespace scripted;

uint32_t LastError() {
    const scripted::allocation::Exempt own;
    return lastError;
}

bool MemoryIsReadable(const void *, size_t count) {
    const scripted::allocation::Exempt own;
    return !TheSystem().Enter("MemoryIsReadable", std::to_string(count)).failed;
}

void ShowMessage(const char16_t *text) {
    const scripted::allocation::Exempt own;
    TheSystem().Note("ShowMessage", Quoted(text));
    TheSystem().AddMessage(Quoted(text));
}

uint32_t RegisterNotification(const char16_t *name) {
    const scripted::allocation::Exempt own;
    return TheSystem().Enter("RegisterNotification", Quoted(name)).failed ? 0 : kMessageNumber;
}

void OpenNotifications() {
    const scripted::allocation::Exempt own;
    TheSystem().Note("OpenNotifications", "");
}

void PostNotification(uint32_t message, uint32_t wParam, intptr_t lParam) {
    const scripted::allocation::Exempt own;
    TheSystem().AddNotification(Captured(message, wParam, lParam));
    TheSystem().Note("PostNotification", Hex(wParam));
}

void CloseNotifications() {
    const scripted::allocation::Exempt own;
    TheSystem().Note("CloseNotifications", "");
}

bool WithinNotification() {
    const scripted::allocation::Exempt own;
    return handlers != 0;
}

} // namespace platform
