#include "api/NadrelPrinter.h"
#include "bench/CoreClock.h"
#include "bench/PseudoTerminalLink.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>

namespace {

constexpr size_t kBufferSize = 409600;

// Lines on a receipt: so many are composed before the spool is emptied.
constexpr int kLines = 48;

constexpr const char16_t *kText = u"2 x Coffee, 1 x Tea        12.50"; // 32 characters

void ComposeLine() {
    SetTextStyle(0, 1, 0, 0, 0);
    TextSaveSpool(kText);
    PrintData();
}

void ComposeLines() {
    for (int line = 0; line < kLines; ++line)
        ComposeLine();
    ClearSpool();
}

// A buffer as the library's own, zeroed whole.
class WholeBuffer {
  public:
    void Clear() {
        std::memset(bytes.get(), 0, kBufferSize);
        benchmark::DoNotOptimize(bytes.get()); // somebody might read it
        benchmark::ClobberMemory();
    }

  private:
    std::unique_ptr<uint8_t[]> bytes = std::make_unique<uint8_t[]>(kBufferSize);
};

// The same work where each conversion and each emptying of the spool zeroes a whole buffer.
void ComposeLinesWithFullClearing(WholeBuffer &conversion, WholeBuffer &spool) {
    for (int line = 0; line < kLines; ++line) {
        conversion.Clear();
        ComposeLine();
    }
    spool.Clear();
    ClearSpool();
}

void StyleTextLineFeed(benchmark::State &state) {
    const bench::PseudoTerminalLink link;
    while (state.KeepRunningBatch(kLines))
        ComposeLines();
    bench::ReportAt4GHz(state);
}

void StyleTextLineFeedWithFullClearing(benchmark::State &state) {
    const bench::PseudoTerminalLink link;
    WholeBuffer conversion;
    WholeBuffer spool;
    while (state.KeepRunningBatch(kLines))
        ComposeLinesWithFullClearing(conversion, spool);
    bench::ReportAt4GHz(state);
}

// Processor time of the work, done so often that reading the clock does not count.
template <typename Work>
double Seconds(int times, Work work) {
    const double start = bench::ThreadSeconds();
    for (int i = 0; i < times; ++i)
        work();
    return (bench::ThreadSeconds() - start) / times;
}

// Both in turn, each at its best, so that what disturbs the machine disturbs neither. The counter `times` is
// the ratio.
template <typename Tracked, typename Full>
void ReportRatio(benchmark::State &state, Tracked tracked, Full full) {
    double trackedSeconds = std::numeric_limits<double>::max();
    double fullSeconds = std::numeric_limits<double>::max();
    for (auto _ : state) {
        trackedSeconds = std::min(trackedSeconds, Seconds(200, tracked));
        fullSeconds = std::min(fullSeconds, Seconds(5, full));
    }
    state.counters["times"] = fullSeconds / trackedSeconds;
}

// The spool is emptied once for the receipt.
void RatioOfFullClearingForALineOfAReceipt(benchmark::State &state) {
    const bench::PseudoTerminalLink link;
    WholeBuffer conversion;
    WholeBuffer spool;
    ReportRatio(state, ComposeLines, [&] { ComposeLinesWithFullClearing(conversion, spool); });
}

// The spool is emptied for each line.
void RatioOfFullClearingForALineByItself(benchmark::State &state) {
    const bench::PseudoTerminalLink link;
    WholeBuffer conversion;
    WholeBuffer spool;
    const auto tracked = [] {
        for (int line = 0; line < kLines; ++line) {
            ComposeLine();
            ClearSpool();
        }
    };
    const auto full = [&] {
        for (int line = 0; line < kLines; ++line) {
            conversion.Clear();
            ComposeLine();
            ClearSpool();
            spool.Clear();
        }
    };
    ReportRatio(state, tracked, full);
}

void ConvertThirtyTwoCharacters(benchmark::State &state) {
    const bench::PseudoTerminalLink link;
    for (auto _ : state)
        benchmark::DoNotOptimize(U2A(kText));
    bench::ReportAt4GHz(state);
}

void ClearAnEmptySpool(benchmark::State &state) {
    for (auto _ : state)
        ClearSpool();
    bench::ReportAt4GHz(state);
}

// Times the emptying alone of a spool that `fill` has filled.
template <typename Fill>
void TimeClearing(benchmark::State &state, Fill fill) {
    using Clock = std::chrono::steady_clock;
    for (auto _ : state) {
        fill();
        const Clock::time_point start = Clock::now();
        ClearSpool();
        const Clock::time_point cleared = Clock::now();
        const std::chrono::duration<double> reading = Clock::now() - cleared; // what the clock itself takes
        state.SetIterationTime(
            std::max(0.0, std::chrono::duration<double>(cleared - start).count() - reading.count()));
    }
}

void ClearTwoKilobytes(benchmark::State &state) {
    const bench::PseudoTerminalLink link;
    TimeClearing(state, [] {
        for (int i = 0; i < 2048 / 12; ++i)
            SetTextStyle(0, 1, 0, 0, 0);
    });
}

void ClearAFullSpool(benchmark::State &state) {
    const bench::PseudoTerminalLink link;
    const std::unique_ptr<uint8_t[]> bytes = std::make_unique<uint8_t[]>(kBufferSize);
    TimeClearing(state, [&] { ControlCommand(bytes.get(), static_cast<int32_t>(kBufferSize)); });
}

// With the system's own write; the printer takes everything at once.
void PrintReceiptAndClear(benchmark::State &state) {
    const bench::PseudoTerminalLink link;
    for (auto _ : state) {
        for (int line = 0; line < kLines; ++line)
            ComposeLine();
        PrintSpool(1);
    }
}

// Without a link nothing is written: what the call costs by itself.
void PrintSpoolWithoutALink(benchmark::State &state) {
    for (auto _ : state)
        benchmark::DoNotOptimize(PrintSpool(1));
    bench::ReportAt4GHz(state);
}

BENCHMARK(StyleTextLineFeed);
BENCHMARK(StyleTextLineFeedWithFullClearing);
BENCHMARK(RatioOfFullClearingForALineOfAReceipt)->Iterations(50);
BENCHMARK(RatioOfFullClearingForALineByItself)->Iterations(50);
BENCHMARK(ConvertThirtyTwoCharacters);
BENCHMARK(ClearAnEmptySpool);
BENCHMARK(ClearTwoKilobytes)->UseManualTime()->Iterations(50'000);
BENCHMARK(ClearAFullSpool)->UseManualTime()->Iterations(1'000);
BENCHMARK(PrintReceiptAndClear);
BENCHMARK(PrintSpoolWithoutALink);

} // namespace
