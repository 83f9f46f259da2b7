#pragma once

#include "bench/CoreClock.h"

#include <algorithm>
#include <cstdio>
#include <vector>

namespace bench {

// Does the work so often that machine and page cache are warm, then in measured rounds, and prints the median
// of what a round takes, in seconds of processor time.
template <typename Work>
void PrintMedianSeconds(Work work) {
    constexpr int kWarmRounds = 3, kRounds = 15;
    std::vector<double> seconds;
    for (int round = -kWarmRounds; round < kRounds; ++round) {
        const double start = ThreadSeconds();
        work();
        if (round >= 0)
            seconds.push_back(ThreadSeconds() - start);
    }
    std::nth_element(seconds.begin(), seconds.begin() + kRounds / 2, seconds.end());
    std::printf("%.9f\n", seconds[kRounds / 2]);
}

} // namespace bench
