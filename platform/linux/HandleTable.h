#pragma once

#include "platform/linux/Endpoint.h"
#include "platform/linux/LastError.h"
#include "platform/linux/SignalsBlocked.h"

#include <algorithm>
#include <cstdint>
#include <exception>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace platform {

// The open endpoints of one kind; their handles are the descriptors' numbers. A number that is not in here is
// not touched, whatever the system has given it to. Any thread.
template <typename Object>
class HandleTable {
  public:
    void Add(std::shared_ptr<Object> object) {
        const std::lock_guard lock(mutex);
        open.push_back(std::move(object));
    }

    // Null when the handle is not open.
    std::shared_ptr<Object> Find(intptr_t handle) {
        const std::lock_guard lock(mutex);
        const auto found = Position(handle);
        return found != open.end() ? *found : nullptr;
    }

    // As Find; a call on a handle that is not open fails.
    std::shared_ptr<Object> FindOrFail(intptr_t handle) {
        auto object = Find(handle);
        if (!object)
            Fail(EBADF);
        return object;
    }

    // As FindOrFail; the handle is not open from here on.
    std::shared_ptr<Object> Remove(intptr_t handle) {
        const std::lock_guard lock(mutex);
        const auto found = Position(handle);
        if (found == open.end()) {
            Fail(EBADF);
            return nullptr;
        }
        std::shared_ptr<Object> object = std::move(*found);
        open.erase(found);
        return object;
    }

  private:
    auto Position(intptr_t handle) {
        return std::find_if(open.begin(), open.end(),
                            [&](const auto &object) { return object->Number() == handle; });
    }

    std::mutex mutex;
    std::vector<std::shared_ptr<Object>> open;
};

// The longest that closing a handle may take, in milliseconds.
inline constexpr uint32_t kLongestClose = 100;

// Lets go of the endpoint on a thread of its own.
template <typename Object>
void ReleaseElsewhere(std::shared_ptr<Object> object) {
    try {
        const SignalsBlocked whileStarting;
        std::thread([held = std::move(object)]() mutable { held.reset(); }).detach();
    } catch (const std::exception &) {
        // No thread to be had: the object has been released here instead.
    }
}

// Takes the handle out of the table, releases the calls in progress on it and closes it. The descriptor is
// closed on return unless such a call, or a driver that waits for its device, takes longer than kLongestClose
// to let go.
template <typename Object>
bool CloseHandle(HandleTable<Object> &table, intptr_t handle) {
    std::shared_ptr<Object> object = table.Remove(handle);
    if (!object)
        return false;
    const std::shared_ptr<const Event> gone = object->BeginClosing();
    if (object->ClosingMayBlock())
        ReleaseElsewhere(std::move(object));
    object.reset();
    pollfd watched = gone->Watched();
    WaitFor({&watched, 1}, AfterMilliseconds(kLongestClose));
    return true;
}

} // namespace platform
