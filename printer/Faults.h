#pragma once

#include <chrono>
#include <cstdint>
#include <optional>

namespace printer {

// What can be wrong with the printer or its links, on purpose.
struct Faults {
    bool silent = false;                     // answers nothing
    std::chrono::milliseconds replyDelay{0}; // before each answer
    bool splitReplies = false;               // answers come one byte at a time
    uint64_t hangUpAfter = 0;                // bytes received on a link; 0 for never
    uint32_t readRate = 0;                   // bytes a second; 0 for no limit
    uint32_t flipFrames = 0;                 // every so many framed commands one is refused; 0 for none
    std::optional<int> paperOut;             // dot rows left on the roll
    bool flood = false;                      // sends without end

    bool SlowsReading() const { return readRate != 0 || paperOut; }
};

} // namespace printer
