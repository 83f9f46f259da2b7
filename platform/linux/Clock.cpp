#include "platform/Clock.h"

#include "platform/linux/Wait.h"

namespace platform {

void Sleep(uint32_t milliseconds) {
    WaitUntil(AfterMilliseconds(milliseconds));
}

TimedEvent::TimedEvent() = default;
TimedEvent::~TimedEvent() = default;

void TimedEvent::Wait(uint32_t milliseconds) {
    Sleep(milliseconds);
}

} // namespace platform
