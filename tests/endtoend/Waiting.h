#pragma once

#include "tests/linux/Support.h"

namespace endtoend {

// Whether the condition, which asks another program, comes true within the generous limit.
template <typename Condition>
bool Eventually(Condition condition) {
    const Stopwatch watch;
    while (!condition()) {
        if (watch.Elapsed() >= std::chrono::milliseconds(kGenerous).count())
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

} // namespace endtoend
