#pragma once

#include "platform/windows/System.h"

#include <atomic>
#include <cstdint>

namespace platform {

// The one handle of a kind that is open, and the calls in progress on it: while there is one, the handle is not
// given back to the system, which could give its number to something else. Any thread. A thread that is ended
// by force keeps nothing locked; it only makes every later close wait its longest.
class OpenHandle {
  public:
    static constexpr intptr_t kNone = -1;

    void Set(intptr_t opened) { handle = opened; }
    bool IsNone() const { return handle == kNone; }

    // The handle is not open from here on, and no call is in progress on it unless one takes too long to be
    // cancelled. The caller closes it. False when it was not the open one.
    bool Remove(intptr_t closed);

  private:
    friend class HandleUse;
    std::atomic<intptr_t> handle = kNone;
    std::atomic<int> uses = 0; // counted before the handle is looked at
};

// A call in progress, if the handle is the open one; if not, the error is recorded as the reason of a failure.
class HandleUse {
  public:
    HandleUse(OpenHandle &open, intptr_t handle, DWORD error);
    ~HandleUse() { --used.uses; }
    HandleUse(const HandleUse &) = delete;
    HandleUse &operator=(const HandleUse &) = delete;

    bool IsOpen() const { return number != OpenHandle::kNone; }
    HANDLE Get() const { return reinterpret_cast<HANDLE>(number); }

  private:
    OpenHandle &used;
    const intptr_t number;
};

} // namespace platform
