#pragma once

#include "tests/endtoend/Host.h"

#include <condition_variable>
#include <mutex>
#include <optional>

namespace endtoend {

struct Notification {
    uint32_t kind = 0;
    uint32_t length = 0;
    intptr_t lParam = 0; // 0 where it was an address
    std::string data;    // the bytes at the address

    bool operator==(const Notification &) const = default;
};
std::ostream &operator<<(std::ostream &out, const Notification &notification);

// Without data the length is that of the reply before.
inline Notification Code(uint32_t kind, uint32_t length = 0) {
    return {kind, length, 0, ""};
}
inline Notification Reply(uint32_t kind, const std::string &data) {
    return {kind, static_cast<uint32_t>(data.size()), 0, data};
}
inline Notification FramedStatus(uint8_t status, uint32_t length = 0) {
    return {'S', length, status, ""};
}

// A copy made inside the handler.
Notification CopyOf(uint32_t wParam, intptr_t lParam);

// Keeps what the library tells.
class NotificationRecorder {
  public:
    NotificationRecorder() = default;
    NotificationRecorder(const NotificationRecorder &) = delete;
    NotificationRecorder &operator=(const NotificationRecorder &) = delete;
    ~NotificationRecorder() { StopListening(); }

    void Listen() { SetNotificationHandler(&Handle, this); }
    void StopListening() { SetNotificationHandler(nullptr, nullptr); }

    void Add(const Notification &notification);

    // The next one that was not asked for before; waits for it. Kind 0 when none comes.
    Notification Next();
    size_t Count() const;

  private:
    static void Handle(uint32_t message, uint32_t wParam, intptr_t lParam, void *context);

    mutable std::mutex mutex;
    std::condition_variable came;
    std::vector<Notification> all;
    size_t given = 0;
};

} // namespace endtoend
