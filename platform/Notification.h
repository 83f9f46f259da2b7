#pragma once

#include <cstdint>

// How the host learns of what the printer says: a registered message, posted, never sent.
namespace platform {

// The system-wide number of a message name, the same for the same name every time; 0 when there is none to
// give.
uint32_t RegisterNotification(const char16_t *name);

// Notifications posted from here on reach the host.
void OpenNotifications();

// Posts to every listener and returns at once; messages arrive one at a time, in the order posted. Any
// thread.
void PostNotification(uint32_t message, uint32_t wParam, intptr_t lParam);

// When the call returns, no listener within this process is being told anything and what was still queued is
// dropped; called by a listener itself, only its own current call goes on.
void CloseNotifications();

// Whether the calling thread is telling a listener just now: the call comes from within one.
bool WithinNotification();

} // namespace platform
