#include "platform/Threads.h"

#include "platform/windows/Handle.h"
#include "platform/windows/Wait.h"

#include <memory>
#include <new>

namespace platform {

namespace {

// How long a thread may take to leave once its waits have been ended, in milliseconds.
constexpr DWORD kTimeToLeave = 5000;

// How long the system may take to end one by force, in milliseconds.
constexpr DWORD kTimeToEnd = 100;

// Keeps the library's code in the process.
class ModuleReference {
  public:
    ModuleReference() {
        const auto *const here = reinterpret_cast<const wchar_t *>(&StartThread);
        GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS, here, &module);
    }
    ~ModuleReference() {
        if (module != nullptr)
            FreeLibrary(module);
    }
    ModuleReference(const ModuleReference &) = delete;
    ModuleReference &operator=(const ModuleReference &) = delete;

    bool IsHeld() const { return module != nullptr; }

  private:
    HMODULE module = nullptr;
};

} // namespace

// Terminated, a thread leaves by itself: its event ends every wait of the seam at once, and the bodies end
// when the link is closed. Only one that does not is ended by force.
class Thread {
  public:
    explicit Thread(ThreadBody does) : body(does), termination(CreateEventW(nullptr, TRUE, FALSE, nullptr)) {}

    ModuleReference module; // released last
    const ThreadBody body;
    const Handle termination;
    Handle running;
};

namespace {

// Where a thread of the library finds itself. A slot of the system's own: it takes neither lock nor memory,
// and a thread ended by force leaves nothing behind.
class CurrentThread {
  public:
    CurrentThread() : slot(TlsAlloc()) {}
    ~CurrentThread() { TlsFree(slot); }
    CurrentThread(const CurrentThread &) = delete;
    CurrentThread &operator=(const CurrentThread &) = delete;

    void Set(Thread *thread) const { TlsSetValue(slot, thread); }
    const Thread *Get() const {
        const DWORD error = GetLastError(); // reading a slot clears it
        const auto *const thread = static_cast<const Thread *>(TlsGetValue(slot));
        SetLastError(error);
        return thread;
    }

  private:
    const DWORD slot;
};

const CurrentThread current;

DWORD WINAPI Run(void *argument) {
    auto *const thread = static_cast<Thread *>(argument);
    current.Set(thread);
    return thread->body();
}

int Level(ThreadPriority priority) {
    return priority == ThreadPriority::highest ? THREAD_PRIORITY_HIGHEST : THREAD_PRIORITY_NORMAL;
}

bool HasEnded(const Thread &thread, DWORD milliseconds) {
    return WaitForSingleObject(thread.running.Get(), milliseconds) == WAIT_OBJECT_0;
}

// By force: whatever the thread holds stays held. It runs none of its code from here on, but the system may
// keep it until its driver has let go of an operation, which closing the device brings about: so the wait has
// an end.
void End(const Thread &thread, uint32_t exitCode) {
    ::TerminateThread(thread.running.Get(), exitCode);
    HasEnded(thread, kTimeToEnd);
}

} // namespace

HANDLE TerminationEvent() {
    const Thread *const thread = current.Get();
    return thread == nullptr ? nullptr : thread->termination.Get();
}

bool IsBeingTerminated() {
    const HANDLE termination = TerminationEvent();
    return termination != nullptr && WaitForSingleObject(termination, 0) == WAIT_OBJECT_0;
}

bool WaitFor(HANDLE object, DWORD milliseconds) {
    const HANDLE termination = TerminationEvent();
    const HANDLE waited[] = {termination, object};
    if (termination == nullptr)
        return WaitForSingleObject(object, milliseconds) == WAIT_OBJECT_0;
    return WaitForMultipleObjects(2, waited, FALSE, milliseconds) == WAIT_OBJECT_0 + 1;
}

Thread *StartThread(ThreadBody body, ThreadPriority priority) {
    std::unique_ptr<Thread> thread(new (std::nothrow) Thread(body));
    if (!thread || !thread->module.IsHeld() || !thread->termination.IsOpen())
        return nullptr;
    thread->running = Handle(CreateThread(nullptr, 0, Run, thread.get(), CREATE_SUSPENDED, nullptr));
    if (!thread->running.IsOpen())
        return nullptr;
    SetThreadPriority(thread->running.Get(), Level(priority));
    ResumeThread(thread->running.Get());
    return thread.release();
}

uint32_t ThreadExitCode(const Thread *thread) {
    DWORD code = 0;
    GetExitCodeThread(thread->running.Get(), &code);
    return code;
}

bool WaitForThread(const Thread *thread, uint32_t milliseconds) {
    return thread == nullptr || WaitFor(thread->running.Get(), milliseconds);
}

void TerminateThread(Thread *thread, uint32_t exitCode) {
    if (thread == nullptr)
        return;
    SetEvent(thread->termination.Get());
    if (!HasEnded(*thread, kTimeToLeave))
        End(*thread, exitCode);
}

void DeleteThread(Thread *thread) {
    TerminateThread(thread, 0);
    delete thread;
}

} // namespace platform
