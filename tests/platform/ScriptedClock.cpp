#include "platform/Clock.h"
#include "tests/platform/ScriptedAllocation.h"
#include "tests/platform/ScriptedPlatform.h"

#include <algorithm>
#include <thread>

namespace scripted {

namespace {

constexpr uint64_t kNever = std::numeric_limits<uint64_t>::max();

// Where the thread body that the calling thread runs is ended.
thread_local uint64_t deadline = kNever;

class DeadlineSet {
  public:
    explicit DeadlineSet(uint64_t time) : before(deadline) { deadline = std::min(deadline, time); }
    ~DeadlineSet() { deadline = before; }
    DeadlineSet(const DeadlineSet &) = delete;
    DeadlineSet &operator=(const DeadlineSet &) = delete;

  private:
    uint64_t before;
};

} // namespace

uint64_t Platform::Now() const {
    const Lock lock(mutex);
    return now;
}

void Platform::After(uint64_t milliseconds, Hook hook) {
    const Lock lock(mutex);
    actions.emplace(now + milliseconds, std::move(hook));
}

// The first action due by then, taken out, with the clock moved to it.
bool Platform::NextActionBy(uint64_t time, Hook &hook) {
    const Lock lock(mutex);
    if (actions.empty() || actions.begin()->first > time)
        return false;
    now = std::max(now, actions.begin()->first);
    hook = actions.begin()->second;
    actions.erase(actions.begin());
    return true;
}

void Platform::RunActionsUntil(uint64_t time) {
    for (Hook hook; NextActionBy(time, hook);)
        hook();
    const Lock lock(mutex);
    now = std::max(now, time);
}

bool Platform::AdvanceToNextAction() {
    Hook hook;
    if (!NextActionBy(deadline, hook)) {
        if (deadline != kNever)
            RunActionsUntil(deadline);
        return false;
    }
    hook();
    return true;
}

void Platform::Pause(uint64_t milliseconds) {
    std::this_thread::yield(); // real threads, where a test has some
    const uint64_t end = Now() + milliseconds;
    RunActionsUntil(std::min(end, deadline));
    if (end > deadline)
        throw ThreadTerminated();
}

std::optional<uint32_t> Platform::RunThread(platform::ThreadBody body, uint64_t milliseconds) {
    const DeadlineSet until(Now() + milliseconds);
    try {
        return body();
    } catch (const ThreadTerminated &) {
        return std::nullopt;
    }
}

// The pause ends when its time is over counted from its begin, however long what runs meanwhile takes.
static void PauseFrom(uint64_t begin, uint32_t milliseconds) {
    const uint64_t spent = TheSystem().Now() - begin;
    TheSystem().Pause(spent < milliseconds ? milliseconds - spent : 0);
}

static void RecordedPause(const std::string &operation, uint32_t milliseconds) {
    const uint64_t begin = TheSystem().Now();
    TheSystem().Note(operation, std::to_string(milliseconds));
    PauseFrom(begin, milliseconds);
}

} // namespace scripted

namespace platform {

void Sleep(uint32_t milliseconds) {
    const scripted::allocation::Exempt own;
    scripted::RecordedPause("Sleep", milliseconds);
}

TimedEvent::TimedEvent() {
    const scripted::allocation::Exempt own;
    scripted::TheSystem().Note("CreateTimedEvent", "");
}

TimedEvent::~TimedEvent() {
    const scripted::allocation::Exempt own;
    scripted::TheSystem().Note("CloseTimedEvent", "");
}

void TimedEvent::Wait(uint32_t milliseconds) {
    const scripted::allocation::Exempt own;
    scripted::RecordedPause("Wait", milliseconds);
}

} // namespace platform
