#include "tools/NotificationQueue.h"

namespace tool {
namespace {

constexpr size_t kMostKept = 1000;

} // namespace

void NotificationQueue::Handle(uint32_t, uint32_t wParam, intptr_t lParam, void *queue) {
    static_cast<NotificationQueue *>(queue)->Add(CopyNotification(wParam, lParam));
}

void NotificationQueue::Add(Notification notification) {
    const std::lock_guard lock(mutex);
    if (queue.size() == kMostKept)
        queue.pop_front();
    queue.push_back(std::move(notification));
    added.notify_all();
}

std::optional<Notification> NotificationQueue::WaitFor(std::string_view kinds,
                                                       std::chrono::milliseconds patience) {
    std::unique_lock lock(mutex);
    std::optional<Notification> found;
    added.wait_for(lock, patience, [&] {
        found = Take(kinds);
        return found.has_value();
    });
    return found;
}

std::optional<Notification> NotificationQueue::Take(std::string_view kinds) {
    while (!queue.empty()) {
        Notification next = std::move(queue.front());
        queue.pop_front();
        if (kinds.find(static_cast<char>(next.kind)) != std::string_view::npos)
            return next;
    }
    return std::nullopt;
}

void NotificationQueue::Clear() {
    const std::lock_guard lock(mutex);
    queue.clear();
}

} // namespace tool
