#include "platform/Threads.h"

#include "platform/linux/Event.h"
#include "platform/linux/LastError.h"
#include "platform/linux/SignalsBlocked.h"
#include "platform/linux/ThreadExit.h"
#include "platform/linux/Wait.h"

#include <atomic>
#include <memory>
#include <sys/resource.h>
#include <system_error>
#include <thread>
#include <unistd.h>

namespace platform {

class Thread {
  public:
    Event terminate;
    Event ended;
    std::atomic<bool> terminated = false;
    std::atomic<uint32_t> exitCode = kStillActive;
    uint32_t terminationCode = 0; // written before `terminated`
    std::thread running;
};

namespace {

constexpr int kHighestNice = -10;

thread_local const Thread *current = nullptr;

uint32_t ResultOf(ThreadBody body) {
    try {
        return body();
    } catch (const ThreadExit &) {
        return current->terminationCode;
    } catch (...) {
        return 0;
    }
}

void Run(Thread *thread, ThreadBody body, ThreadPriority priority) {
    current = thread;
    if (priority == ThreadPriority::highest)
        setpriority(PRIO_PROCESS, static_cast<id_t>(gettid()), kHighestNice);
    thread->exitCode = ResultOf(body);
    thread->ended.Set();
}

} // namespace

void LeaveIfTerminated() {
    if (current != nullptr && current->terminated)
        throw ThreadExit();
}

pollfd WatchedForTermination() {
    return current != nullptr ? current->terminate.Watched() : pollfd{-1, 0, 0};
}

Thread *StartThread(ThreadBody body, ThreadPriority priority) {
    try {
        auto thread = std::make_unique<Thread>();
        if (!thread->terminate.IsValid() || !thread->ended.IsValid()) {
            Fail(EMFILE);
            return nullptr;
        }
        const SignalsBlocked whileStarting;
        thread->running = std::thread(Run, thread.get(), body, priority);
        return thread.release();
    } catch (const std::system_error &error) {
        Fail(error.code().value());
    } catch (const std::bad_alloc &) {
        Fail(ENOMEM);
    }
    return nullptr;
}

uint32_t ThreadExitCode(const Thread *thread) {
    return thread->exitCode;
}

bool WaitForThread(const Thread *thread, uint32_t milliseconds) {
    LeaveIfTerminated();
    if (thread == nullptr)
        return true;
    pollfd ended = thread->ended.Watched();
    return WaitFor({&ended, 1}, AfterMilliseconds(milliseconds));
}

void TerminateThread(Thread *thread, uint32_t exitCode) {
    if (thread == nullptr || !thread->running.joinable())
        return;
    thread->terminationCode = exitCode;
    thread->terminated = true;
    thread->terminate.Set();
    thread->running.join();
}

void DeleteThread(Thread *thread) {
    TerminateThread(thread, 0);
    delete thread;
}

} // namespace platform
