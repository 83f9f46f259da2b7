#include "platform/Notification.h"

#include "platform/linux/LastError.h"
#include "platform/linux/NeverDestroyed.h"
#include "platform/linux/NotificationHandler.h"
#include "platform/linux/SignalsBlocked.h"

#include <array>
#include <cerrno>
#include <condition_variable>
#include <exception>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>

namespace platform {

namespace {

// What a message queue of a desktop holds; what comes when it is full is dropped.
constexpr size_t kQueueCapacity = 10000;

// The range from which registered messages have their numbers.
constexpr uint32_t kFirstMessage = 0xC000;
constexpr uint32_t kMessageCount = 0x4000;

struct Message {
    uint32_t number = 0;
    uint32_t wParam = 0;
    intptr_t lParam = 0;
};

// Tells the listener, in order, on one thread that lives from Open to Close. Closed from within the listener,
// the thread goes on until the listener returns; should the host open again meanwhile, the next thread waits
// for that before it tells anything.
class Dispatcher {
  public:
    void Open();
    void Post(const Message &message);
    void Close();
    void Replace(NotificationHandler next, void *nextContext);
    bool IsHandlingHere();

  private:
    struct Worker {
        bool stop = false;
        std::thread thread;
    };
    using Lock = std::unique_lock<std::mutex>;

    void Serve(const Worker &worker);
    void Deliver(Lock &lock);
    void Stop(Lock &lock, const std::shared_ptr<Worker> &stopped);
    void AwaitHandler(Lock &lock);

    bool Handling() const { return handling != std::thread::id(); }

    std::mutex mutex; // guards everything below; never held while the handler runs
    std::condition_variable changed;
    std::array<Message, kQueueCapacity> queue = {}; // a ring
    size_t first = 0;
    size_t count = 0;
    NotificationHandler handler = nullptr;
    void *context = nullptr;
    std::shared_ptr<Worker> worker; // null while closed
    std::thread::id handling;       // the thread on which the handler runs
    uint64_t deliveries = 0;
};

void Dispatcher::Open() {
    const Lock lock(mutex);
    if (worker)
        return;
    try {
        const auto opened = std::make_shared<Worker>();
        const SignalsBlocked whileStarting;
        opened->thread = std::thread([this, opened] { Serve(*opened); });
        worker = opened;
    } catch (const std::exception &) {
        Fail(EAGAIN);
    }
}

void Dispatcher::Post(const Message &message) {
    const Lock lock(mutex);
    if (!worker || count == kQueueCapacity)
        return;
    queue[(first + count++) % kQueueCapacity] = message;
    changed.notify_all();
}

void Dispatcher::Serve(const Worker &self) {
    Lock lock(mutex);
    for (;;) {
        changed.wait(lock, [&] { return self.stop || (count != 0 && !Handling()); });
        if (self.stop)
            return;
        Deliver(lock);
    }
}

void Dispatcher::Deliver(Lock &lock) {
    const Message message = queue[first];
    first = (first + 1) % kQueueCapacity;
    --count;
    const NotificationHandler listener = handler;
    void *const listenerContext = context;
    if (listener == nullptr)
        return;
    handling = std::this_thread::get_id();
    ++deliveries;
    lock.unlock();
    try {
        listener(message.number, message.wParam, message.lParam, listenerContext);
    } catch (...) {
        // A listener's failure is its own; the next message is another call.
    }
    lock.lock();
    handling = std::thread::id();
    changed.notify_all();
}

void Dispatcher::Close() {
    Lock lock(mutex);
    count = 0;
    if (const auto stopped = std::exchange(worker, nullptr))
        Stop(lock, stopped);
    AwaitHandler(lock);
}

void Dispatcher::Stop(Lock &lock, const std::shared_ptr<Worker> &stopped) {
    stopped->stop = true;
    changed.notify_all();
    if (stopped->thread.get_id() == std::this_thread::get_id()) {
        stopped->thread.detach();
        return;
    }
    lock.unlock();
    stopped->thread.join();
    lock.lock();
}

// Returns when the call of the handler that runs now, if one does, has ended; at once within the handler.
void Dispatcher::AwaitHandler(Lock &lock) {
    if (handling == std::this_thread::get_id())
        return;
    const uint64_t current = deliveries;
    changed.wait(lock, [&] { return !Handling() || deliveries != current; });
}

void Dispatcher::Replace(NotificationHandler next, void *nextContext) {
    Lock lock(mutex);
    handler = next;
    context = nextContext;
    AwaitHandler(lock);
}

bool Dispatcher::IsHandlingHere() {
    const Lock lock(mutex);
    return handling == std::this_thread::get_id();
}

Dispatcher &TheDispatcher() {
    static NeverDestroyed<Dispatcher> dispatcher;
    return dispatcher.object;
}

} // namespace

uint32_t RegisterNotification(const char16_t *name) {
    if (name == nullptr || *name == 0)
        return 0;
    uint32_t hash = 0x811C9DC5; // FNV-1a
    for (; *name != 0; ++name)
        hash = (hash ^ *name) * 0x01000193;
    return kFirstMessage + hash % kMessageCount;
}

void OpenNotifications() {
    TheDispatcher().Open();
}

void PostNotification(uint32_t message, uint32_t wParam, intptr_t lParam) {
    TheDispatcher().Post({message, wParam, lParam});
}

void CloseNotifications() {
    TheDispatcher().Close();
}

bool WithinNotification() {
    return TheDispatcher().IsHandlingHere();
}

void SetNotificationHandler(NotificationHandler handler, void *context) {
    TheDispatcher().Replace(handler, context);
}

} // namespace platform
