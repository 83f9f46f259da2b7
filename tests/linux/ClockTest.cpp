#include "platform/Clock.h"

#include "tests/linux/Support.h"

#include <gtest/gtest.h>

namespace {

TEST(Clock, SleepIsNeverShorterThanAsked) {
    for (const uint32_t time : {0U, 1U, 5U, 50U}) {
        const Stopwatch watch;
        platform::Sleep(time);
        EXPECT_GE(watch.Elapsed(), time);
    }
}

TEST(Clock, SleepOfNothingReturnsAtOnce) {
    const Stopwatch watch;
    for (int i = 0; i < 100; ++i)
        platform::Sleep(0);
    EXPECT_LT(watch.Elapsed(), 5'000);
}

TEST(Clock, SignalsNeitherShortenNorProlongASleep) {
    const SignalStorm storm;
    const int before = SignalStorm::Count();
    const Stopwatch watch;
    platform::Sleep(300);
    EXPECT_GE(watch.Elapsed(), 300);
    EXPECT_LT(watch.Elapsed(), 5'000);
    EXPECT_GT(SignalStorm::Count(), before);
}

TEST(Clock, WithoutDescriptorsASleepIsAsLongAndUsesNoMoreProcessorTime) {
    const NoDescriptorsLeft none;
    const double before = ThreadCpuTime();
    const Stopwatch watch;
    platform::Sleep(200);
    EXPECT_GE(watch.Elapsed(), 200);
    EXPECT_LT(watch.Elapsed(), 5'000);
    EXPECT_LT(ThreadCpuTime() - before, 100);
}

TEST(Clock, ATimedEventIsAPause) {
    platform::TimedEvent event;
    const Stopwatch watch;
    event.Wait(30);
    EXPECT_GE(watch.Elapsed(), 30);
    event.Wait(30);
    EXPECT_GE(watch.Elapsed(), 60);
}

} // namespace
