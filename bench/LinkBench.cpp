#include "bench/PseudoTerminalLink.h"

#include "api/NadrelHost.h"
#include "link/ReceiveRing.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <sys/resource.h>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

// A reply that is classified by its first two bytes alone.
constexpr uint8_t kReply[] = {0x1B, 'A'};

// The library's own pauses from one notification to the next, when the next reply is there in time: 100 ms
// after a reply, 50 ms and 50 ms at the top of a pass, 5 ms until the queue counts as empty.
constexpr double kPauses = 0.205;

// Counts notifications and waits for them.
class Listener {
  public:
    Listener() { SetNotificationHandler(&Listener::Heard, this); }
    ~Listener() { SetNotificationHandler(nullptr, nullptr); }
    Listener(const Listener &) = delete;
    Listener &operator=(const Listener &) = delete;

    Clock::time_point Await(int count) {
        std::unique_lock lock(mutex);
        changed.wait(lock, [&] { return heard >= count; });
        return last;
    }

  private:
    static void Heard(uint32_t, uint32_t, intptr_t, void *context) {
        auto &self = *static_cast<Listener *>(context);
        const std::lock_guard lock(self.mutex);
        self.last = Clock::now();
        ++self.heard;
        self.changed.notify_all();
    }

    std::mutex mutex;
    std::condition_variable changed;
    int heard = 0;
    Clock::time_point last;
};

double Seconds(Clock::duration time) {
    return std::chrono::duration<double>(time).count();
}

double ProcessorSeconds() {
    rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    const auto seconds = [](const timeval &time) {
        return static_cast<double>(time.tv_sec) + 1e-6 * static_cast<double>(time.tv_usec);
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

void RingPutAndGet(benchmark::State &state) {
    const auto ring = std::make_unique<nadrel::ReceiveRing>();
    uint8_t byte = 0;
    for (auto _ : state) {
        ring->Put(byte);
        benchmark::DoNotOptimize(ring->Get(byte));
    }
    state.SetBytesProcessed(state.iterations());
}
BENCHMARK(RingPutAndGet);

// One long reply from the port through the ring and the parser to the handler, pauses included.
void ReplyThroughRingAndParser(benchmark::State &state) {
    const bench::PseudoTerminalLink link;
    Listener listener;
    std::vector<uint8_t> reply(4'000'000, 'x');
    std::copy(std::begin(kReply), std::end(kReply), reply.begin());
    int replies = 0;
    for (auto _ : state) {
        if (!link.Say(reply.data(), reply.size()))
            state.SkipWithError("the link is gone");
        listener.Await(++replies);
    }
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(reply.size()));
}
BENCHMARK(ReplyThroughRingAndParser)->Iterations(1)->UseRealTime()->Unit(benchmark::kMillisecond);

// From a reply that is there in time to the handler; over_ms is the median of what it takes beyond the
// pauses.
void ReplyToHandler(benchmark::State &state) {
    const bench::PseudoTerminalLink link;
    Listener listener;
    link.Say(kReply, sizeof kReply);
    int replies = 1;
    Clock::time_point before = listener.Await(replies);
    std::vector<double> over;
    for (auto _ : state) {
        link.Say(kReply, sizeof kReply);
        const Clock::time_point now = listener.Await(++replies);
        state.SetIterationTime(Seconds(now - before));
        over.push_back(1e3 * (Seconds(now - before) - kPauses));
        before = now;
    }
    std::sort(over.begin(), over.end());
    state.counters["over_ms"] = over[over.size() / 2];
}
BENCHMARK(ReplyToHandler)->Iterations(25)->UseManualTime()->Unit(benchmark::kMillisecond);

// The processor time of an open link on which nothing happens, over ten seconds.
void IdleOpenLink(benchmark::State &state) {
    const bench::PseudoTerminalLink link;
    const auto start = Clock::now();
    const double used = ProcessorSeconds();
    for (auto _ : state)
        std::this_thread::sleep_for(std::chrono::seconds(10));
    state.counters["percent_of_a_core"] = 100 * (ProcessorSeconds() - used) / Seconds(Clock::now() - start);
}
BENCHMARK(IdleOpenLink)->Iterations(1)->UseRealTime()->Unit(benchmark::kMillisecond);

} // namespace
