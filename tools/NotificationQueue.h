#pragma once

#include "tools/Notification.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <string_view>

namespace tool {

// Notifications from the library's thread, kept until someone asks for them.
class NotificationQueue {
  public:
    // The handler to set, with the queue as its context.
    static void Handle(uint32_t message, uint32_t wParam, intptr_t lParam, void *queue);

    // Keeps the latest 1000 of them.
    void Add(Notification notification);

    // The next notification of one of the kinds, one character each; those before it are dropped. Nothing
    // when none has come in time.
    std::optional<Notification> WaitFor(std::string_view kinds, std::chrono::milliseconds patience);

    void Clear();

  private:
    std::optional<Notification> Take(std::string_view kinds);

    std::mutex mutex; // guards the queue
    std::condition_variable added;
    std::deque<Notification> queue;
};

} // namespace tool
