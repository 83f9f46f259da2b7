#pragma once

#include "printer/Clock.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace printer {

// Holds reading down to a number of bytes a second.
class ReadThrottle {
  public:
    explicit ReadThrottle(uint32_t bytesPerSecond) : rate_(bytesPerSecond) {} // 0: no limit

    // Bytes that may be read now, at most `most`; 0 before ReadyTime.
    size_t Allowed(Time now, size_t most) const {
        if (rate_ == 0)
            return most;
        return now < ready_ ? 0 : std::min<size_t>(most, std::max<uint32_t>(rate_ / PortionsPerSecond, 1));
    }

    void Taken(size_t bytes, Time now) {
        if (rate_ != 0)
            ready_ = now + std::chrono::microseconds(1000000 * static_cast<int64_t>(bytes) / rate_);
    }

    Time ReadyTime() const { return ready_; }

  private:
    static constexpr uint32_t PortionsPerSecond = 50;

    uint32_t rate_;
    Time ready_{};
};

} // namespace printer
