#include "platform/Clock.h"
#include "platform/Threads.h"
#include "tests/platform/ScriptedAllocation.h"
#include "tests/platform/ScriptedPlatform.h"
#include "tests/platform/ScriptedThread.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace scripted {

platform::Thread *Platform::AddThread(platform::ThreadBody body) {
    const Lock lock(mutex);
    threads.push_back(new platform::Thread{.number = static_cast<int>(threads.size()) + 1, .body = body});
    return threads.back();
}

std::vector<platform::ThreadBody> Platform::StartedThreads() const {
    const Lock lock(mutex);
    std::vector<platform::ThreadBody> bodies;
    for (const platform::Thread *thread : threads)
        bodies.push_back(thread->body);
    return bodies;
}

void Platform::EndThread(size_t started, uint32_t exitCode) {
    const Lock lock(mutex);
    threads.at(started)->exitCode = exitCode;
}

int Platform::LiveThreads() const {
    const Lock lock(mutex);
    return static_cast<int>(std::count_if(threads.begin(), threads.end(),
                                          [](const platform::Thread *thread) { return !thread->deleted; }));
}

namespace {

std::string Shown(const platform::Thread *thread) {
    if (thread == nullptr)
        return "null";
    EXPECT_FALSE(thread->deleted) << "thread " << thread->number << " is used after it was given back";
    return "thread " + std::to_string(thread->number);
}

} // namespace

} // namespace scripted

namespace platform {

using namespace scripted;

Thread *StartThread(ThreadBody body, ThreadPriority priority) {
    const scripted::allocation::Exempt own;
    if (TheSystem().Enter("StartThread", priority == ThreadPriority::highest ? "highest" : "normal").failed)
        return nullptr;
    return TheSystem().AddThread(body);
}

uint32_t ThreadExitCode(const Thread *thread) {
    const scripted::allocation::Exempt own;
    TheSystem().Note("ThreadExitCode", Shown(thread));
    return thread->exitCode;
}

bool WaitForThread(const Thread *thread, uint32_t milliseconds) {
    const scripted::allocation::Exempt own;
    TheSystem().Note("WaitForThread", Shown(thread) + ", " + std::to_string(milliseconds));
    if (thread == nullptr || thread->exitCode != kStillActive)
        return true;
    TheSystem().Pause(milliseconds);
    return thread->exitCode != kStillActive;
}

void TerminateThread(Thread *thread, uint32_t exitCode) {
    const scripted::allocation::Exempt own;
    TheSystem().Note("TerminateThread", Shown(thread) + ", " + std::to_string(exitCode));
    if (thread != nullptr && thread->exitCode == kStillActive)
        thread->exitCode = exitCode;
}

void DeleteThread(Thread *thread) {
    const scripted::allocation::Exempt own;
    TheSystem().Note("DeleteThread", Shown(thread));
    if (thread != nullptr)
        thread->deleted = true;
}

} // namespace platform
