#include "tests/endtoend/NotificationRecorder.h"

#include "tests/linux/Support.h"

#include <gtest/gtest.h>

namespace endtoend {
namespace {

constexpr uint32_t kLongestReply = 2048;

bool IsAddress(uint32_t kind, intptr_t lParam) {
    const bool hasData = kind == 'D' || kind == 'S' || kind == 'T' || kind == 'N';
    return hasData && (lParam < 0 || lParam > 0xFF);
}

// The next reply may be on its way into the same buffer.
std::string CopyReply(intptr_t address, uint32_t length) {
    const auto *bytes = reinterpret_cast<const char *>(address);
    std::string copy(std::min(length, kLongestReply), '\0');
    for (size_t i = 0; i < copy.size(); ++i)
        copy[i] = __atomic_load_n(bytes + i, __ATOMIC_RELAXED);
    return copy;
}

} // namespace

std::ostream &operator<<(std::ostream &out, const Notification &notification) {
    return out << "kind " << notification.kind << ", length " << notification.length << ", lParam "
               << notification.lParam << ", data " << testing::PrintToString(notification.data);
}

Notification CopyOf(uint32_t wParam, intptr_t lParam) {
    Notification copy{wParam >> 16, wParam & 0xFFFF, lParam, ""};
    if (IsAddress(copy.kind, lParam)) {
        copy.data = CopyReply(lParam, copy.length);
        copy.lParam = 0;
    }
    return copy;
}

void NotificationRecorder::Handle(uint32_t, uint32_t wParam, intptr_t lParam, void *context) {
    static_cast<NotificationRecorder *>(context)->Add(CopyOf(wParam, lParam));
}

void NotificationRecorder::Add(const Notification &notification) {
    const std::lock_guard lock(mutex);
    all.push_back(notification);
    came.notify_all();
}

Notification NotificationRecorder::Next() {
    std::unique_lock lock(mutex);
    if (!came.wait_for(lock, kGenerous, [this] { return given < all.size(); }))
        return {};
    return all[given++];
}

size_t NotificationRecorder::Count() const {
    const std::lock_guard lock(mutex);
    return all.size();
}

} // namespace endtoend
