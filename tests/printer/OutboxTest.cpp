#include "printer/Outbox.h"

#include "printer/ReadThrottle.h"

#include <gtest/gtest.h>

using namespace printer;

namespace {

constexpr Time Start{std::chrono::hours(1)};
Time At(int ms) {
    return Start + milliseconds(ms);
}

} // namespace

TEST(PrinterOutbox, SendsAtOnceWithoutFaults) {
    Outbox outbox(milliseconds(0), false);
    EXPECT_EQ(outbox.NextTime(), std::nullopt);
    outbox.Push(Bytes{1, 2, 3}, At(5));
    EXPECT_EQ(outbox.NextTime(), At(5));
    EXPECT_EQ(outbox.Due(At(5)), (Bytes{1, 2, 3}));
    outbox.Drop(2);
    EXPECT_EQ(outbox.Due(At(5)), (Bytes{3}));
    outbox.Drop(1);
    EXPECT_EQ(outbox.NextTime(), std::nullopt);
}

TEST(PrinterOutbox, HoldsRepliesBack) {
    Outbox outbox(milliseconds(300), false);
    outbox.Push(Bytes{1}, At(0));
    outbox.Push(Bytes{2}, At(100));
    EXPECT_EQ(outbox.Due(At(299)), Bytes{});
    EXPECT_EQ(outbox.Due(At(300)), (Bytes{1}));
    EXPECT_EQ(outbox.Due(At(400)), (Bytes{1, 2}));
}

TEST(PrinterOutbox, SplitsRepliesIntoBytes20MillisecondsApart) {
    Outbox outbox(milliseconds(10), true);
    outbox.Push(Bytes{1, 2, 3}, At(0));
    EXPECT_EQ(outbox.Due(At(10)), (Bytes{1}));
    EXPECT_EQ(outbox.Due(At(1000)), (Bytes{1}));
    outbox.Drop(1);
    EXPECT_EQ(outbox.NextTime(), At(30));
    EXPECT_EQ(outbox.Due(At(29)), Bytes{});
    EXPECT_EQ(outbox.Due(At(30)), (Bytes{2}));
    outbox.Drop(1);
    EXPECT_EQ(outbox.NextTime(), At(50));
}

TEST(PrinterOutbox, DropsWhatAHostNeverReads) {
    Outbox outbox(milliseconds(0), false);
    for (int i = 0; i < 100; ++i)
        outbox.Push(Bytes(1000, 7), At(0));
    EXPECT_EQ(outbox.Due(At(0)).size(), Outbox::MostBytes);
}

TEST(PrinterThrottle, LimitsNothingWithoutARate) {
    ReadThrottle throttle(0);
    throttle.Taken(4096, At(0));
    EXPECT_EQ(throttle.Allowed(At(0), 4096), 4096U);
}

TEST(PrinterThrottle, LetsSoManyBytesPassInASecond) {
    ReadThrottle throttle(1000);
    EXPECT_EQ(throttle.Allowed(At(0), 4096), 20U);
    throttle.Taken(20, At(0));
    EXPECT_EQ(throttle.Allowed(At(19), 4096), 0U);
    EXPECT_EQ(throttle.ReadyTime(), At(20));
    EXPECT_EQ(throttle.Allowed(At(20), 4096), 20U);
}

TEST(PrinterThrottle, ReadsOneByteASecondAtRateOne) {
    ReadThrottle throttle(1);
    EXPECT_EQ(throttle.Allowed(At(0), 4096), 1U);
    throttle.Taken(1, At(0));
    EXPECT_EQ(throttle.ReadyTime(), At(1000));
}
