#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <ctime>

// Time on the scale of a 4 GHz core, so that results of different machines compare.
namespace bench {

// Processor time of the calling thread, in seconds: what other programs do on the machine does not count.
inline double ThreadSeconds() {
    timespec now = {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

// The clock the core runs at just now: the best of some chains of additions, each of which takes one cycle.
inline double CoreGigahertz() {
    constexpr int64_t kAdditions = 1'000'000;
    double best = 0;
    for (int round = 0; round < 20; ++round) {
        const double start = ThreadSeconds();
        int64_t sum = 0;
        for (int64_t i = 0; i < kAdditions; ++i) {
            sum += i;
            asm volatile("" : "+r"(sum));
        }
        best = std::max(best, 1e-9 * static_cast<double>(kAdditions) / (ThreadSeconds() - start));
    }
    return best;
}

// Adds the counters GHz and at4GHz, what an iteration would take on a core of that clock.
inline void ReportAt4GHz(benchmark::State &state) {
    const double gigahertz = CoreGigahertz();
    state.counters["GHz"] = gigahertz;
    state.counters["at4GHz"] = benchmark::Counter(
        4.0 / gigahertz, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

} // namespace bench
