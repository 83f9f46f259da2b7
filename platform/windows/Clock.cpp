#include "platform/Clock.h"

#include "platform/windows/Handle.h"
#include "platform/windows/Wait.h"

namespace platform {

namespace {

// How much of a pause is left. The system's own pauses may end a tick of its clock too early.
class Countdown {
  public:
    explicit Countdown(uint32_t milliseconds) : end(Now() + milliseconds * PerSecond() / 1000) {}

    // Milliseconds, rounded up.
    DWORD Left() const {
        const uint64_t now = Now();
        return now >= end ? 0 : static_cast<DWORD>((end - now) * 1000 / PerSecond() + 1);
    }

  private:
    static uint64_t Now() {
        LARGE_INTEGER count;
        QueryPerformanceCounter(&count);
        return static_cast<uint64_t>(count.QuadPart);
    }
    static uint64_t PerSecond() {
        LARGE_INTEGER count;
        QueryPerformanceFrequency(&count);
        return static_cast<uint64_t>(count.QuadPart);
    }

    const uint64_t end;
};

} // namespace

void Sleep(uint32_t milliseconds) {
    const Countdown pause(milliseconds);
    const HANDLE termination = TerminationEvent();
    for (DWORD left = pause.Left(); left != 0 && !IsBeingTerminated(); left = pause.Left()) {
        if (termination == nullptr)
            ::Sleep(left);
        else
            WaitForSingleObject(termination, left);
    }
}

TimedEvent::TimedEvent() = default;
TimedEvent::~TimedEvent() = default;

void TimedEvent::Wait(uint32_t milliseconds) {
    const Countdown pause(milliseconds);
    const Handle event(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    if (!event.IsOpen())
        return Sleep(milliseconds);
    for (DWORD left = pause.Left(); left != 0; left = pause.Left())
        WaitForSingleObject(event.Get(), left);
}

} // namespace platform
