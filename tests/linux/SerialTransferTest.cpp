#include "tests/linux/SerialTransfer.h"

#include <atomic>
#include <fcntl.h>
#include <numeric>
#include <thread>

namespace {

Bytes AllValues() {
    Bytes bytes(256);
    std::iota(bytes.begin(), bytes.end(), uint8_t{0});
    return bytes;
}

// A sequence that no other position repeats within some thousand bytes.
Bytes Pattern(size_t count, uint32_t seed) {
    Bytes bytes(count);
    for (uint8_t &byte : bytes) {
        seed = seed * 1664525 + 1013904223;
        byte = static_cast<uint8_t>(seed >> 24);
    }
    return bytes;
}

TEST_F(SerialTransfer, EveryByteReachesThePrinterUnchanged) {
    const Bytes all = AllValues();
    EXPECT_TRUE(Write(all));
    EXPECT_EQ(taken, 256U);
    EXPECT_EQ(line.Read(256), all);
}

TEST_F(SerialTransfer, EveryByteOfThePrinterArrivesUnchangedAndIsNotSentBack) {
    const Bytes all = AllValues();
    ASSERT_TRUE(line.Write(all));
    EXPECT_EQ(Read(256), all);
    EXPECT_TRUE(readSucceeded);
    EXPECT_FALSE(line.HasInput()) << "an echo";
}

TEST_F(SerialTransfer, BothDirectionsWorkAtTheSameTime) {
    const Bytes out = Pattern(200'000, 1);
    const Bytes in = Pattern(200'000, 2);
    Bytes received;
    Bytes printed;
    std::thread reader([&] {
        while (received.size() < in.size()) {
            PortEvents happened;
            uint8_t bytes[255];
            uint32_t got = 0;
            if (!platform::WaitPortEvent(port, happened) || !platform::ReadPort(port, bytes, 1, got))
                break;
            received.insert(received.end(), bytes, bytes + got);
        }
    });
    std::thread printer([&] { printed = line.Read(out.size()); });
    std::thread speaker([&] { EXPECT_TRUE(line.Write(in)); });
    EXPECT_TRUE(Write(out));
    for (std::thread *thread : {&printer, &speaker, &reader})
        thread->join();
    EXPECT_EQ(printed, out);
    EXPECT_EQ(received, in);
}

TEST_F(SerialTransfer, ReadingEndsWithNothingAfterTheTotalTime) {
    SetTimeouts({65535, 20, 10, 0, 0});
    const Stopwatch watch;
    EXPECT_EQ(Read(2), Bytes());
    EXPECT_TRUE(readSucceeded) << "nothing in time is no failure";
    EXPECT_GE(watch.Elapsed(), 50);
    EXPECT_LT(watch.Elapsed(), 5'000);
}

TEST_F(SerialTransfer, ReadingEndsAfterTheTotalTimeWithWhatCame) {
    SetTimeouts({65535, 10, 50, 0, 0});
    ASSERT_TRUE(line.Write({1, 2, 3}));
    EXPECT_EQ(Read(5), (Bytes{1, 2, 3}));
    EXPECT_TRUE(readSucceeded);
}

TEST_F(SerialTransfer, ReadingEndsWhenTheGapBetweenTwoBytesIsTooLong) {
    SetTimeouts({30, 0, kLong, 0, 0});
    ASSERT_TRUE(line.Write({1, 2}));
    const Stopwatch watch;
    EXPECT_EQ(Read(5), (Bytes{1, 2}));
    EXPECT_TRUE(readSucceeded);
    EXPECT_GE(watch.Elapsed(), 30);
    EXPECT_LT(watch.Elapsed(), 10'000);
}

TEST_F(SerialTransfer, NoGapIsTooLongBeforeTheFirstByte) {
    SetTimeouts({1, 0, kLong, 0, 0});
    std::thread printer([&, waiting = gettid()] {
        EXPECT_TRUE(AwaitBlocked(waiting));
        EXPECT_TRUE(line.Write({7}));
    });
    EXPECT_EQ(Read(1), Bytes{7});
    printer.join();
}

TEST_F(SerialTransfer, ReadingDoesNotWaitForWhatIsThere) {
    SetTimeouts({0, 0, kLong, 0, 0});
    ASSERT_TRUE(line.Write({1, 2, 3}));
    EXPECT_EQ(Read(3), (Bytes{1, 2, 3}));
}

TEST_F(SerialTransfer, WithoutTimeoutsReadingTakesWhatIsThereOnly) {
    SetTimeouts({});
    EXPECT_EQ(Read(10), Bytes());
    EXPECT_TRUE(readSucceeded);
    ASSERT_TRUE(line.Write({5}));
    EXPECT_TRUE(WaitEvent());
    EXPECT_EQ(Read(10), Bytes{5});
}

TEST_F(SerialTransfer, ReadingNothingSucceedsAtOnce) {
    SetTimeouts({0, 0, kLong, 0, 0});
    EXPECT_EQ(Read(0), Bytes());
    EXPECT_TRUE(readSucceeded);
}

TEST_F(SerialTransfer, SignalsNeitherShortenNorProlongAReadNorTakeBytesFromIt) {
    SetTimeouts({0, 0, 300, 0, 0});
    const SignalStorm storm;
    const Stopwatch watch;
    EXPECT_EQ(Read(1), Bytes());
    EXPECT_TRUE(readSucceeded);
    EXPECT_GE(watch.Elapsed(), 300);
    EXPECT_LT(watch.Elapsed(), 5'000);
    SetTimeouts({0, 0, 10'000, 0, 0});
    const Bytes in = Pattern(20'000, 3);
    std::thread printer([&] { EXPECT_TRUE(line.Write(in)); });
    EXPECT_EQ(Read(in.size()), in);
    printer.join();
}

TEST_F(SerialTransfer, WritingGoesOnWhereThePrinterHasStoppedForAWhile) {
    const Bytes out = Pattern(500'000, 4);
    Bytes printed;
    std::thread printer([&, waiting = gettid()] {
        EXPECT_TRUE(AwaitBlocked(waiting));
        printed = line.Read(out.size());
    });
    EXPECT_TRUE(Write(out));
    EXPECT_EQ(taken, out.size());
    printer.join();
    EXPECT_EQ(printed, out);
}

TEST_F(SerialTransfer, SignalsDoNotDisturbAWrite) {
    const SignalStorm storm;
    const Bytes out = Pattern(500'000, 5);
    Bytes printed;
    std::thread printer([&] { printed = line.Read(out.size()); });
    EXPECT_TRUE(Write(out));
    EXPECT_EQ(taken, out.size());
    printer.join();
    EXPECT_EQ(printed, out);
}

TEST_F(SerialTransfer, WritingToAPrinterThatTakesNothingEndsWithTheTimeout) {
    const Bytes out = Pattern(500'000, 6);
    SetTimeouts({0, 0, 0, 0, 300});
    const Stopwatch watch;
    EXPECT_FALSE(Write(out));
    EXPECT_EQ(Error(), ETIMEDOUT);
    EXPECT_GE(watch.Elapsed(), 300);
    EXPECT_LT(watch.Elapsed(), 5'000);
    EXPECT_GT(taken, 0U);
    EXPECT_LT(taken, out.size());
    EXPECT_EQ(line.Read(taken), Bytes(out.begin(), out.begin() + taken)) << "what was taken arrives";
}

TEST_F(SerialTransfer, SignalsDoNotProlongAWriteThatTimesOut) {
    SetTimeouts({0, 0, 0, 0, 300});
    const SignalStorm storm;
    const Stopwatch watch;
    EXPECT_FALSE(Write(Bytes(500'000)));
    EXPECT_EQ(Error(), ETIMEDOUT);
    EXPECT_GE(watch.Elapsed(), 300);
    EXPECT_LT(watch.Elapsed(), 5'000);
}

TEST_F(SerialTransfer, TheWriteTimeoutCountsByBytes) {
    SetTimeouts({0, 0, 0, 100, 0});
    EXPECT_TRUE(Write({1})) << "100 ms for the one byte, which is taken at once";
    SetTimeouts({});
    EXPECT_TRUE(Write({1})) << "no time at all, and none needed";
    EXPECT_EQ(line.Read(2), (Bytes{1, 1}));
}

TEST_F(SerialTransfer, WritingNothingSucceeds) {
    EXPECT_TRUE(Write({}));
    EXPECT_FALSE(line.HasInput());
}

TEST_F(SerialTransfer, TheLongestTimesDoNotOverflow) {
    SetTimeouts({UINT32_MAX, UINT32_MAX, UINT32_MAX, UINT32_MAX, UINT32_MAX});
    EXPECT_TRUE(Write({1, 2, 3}));
    ASSERT_TRUE(line.Write({4}));
    EXPECT_EQ(Read(1), Bytes{4});
}

TEST_F(SerialTransfer, WaitingEndsWhenACharacterArrives) {
    std::thread printer([&, waiting = gettid()] {
        EXPECT_TRUE(AwaitBlocked(waiting));
        EXPECT_TRUE(line.Write({1}));
    });
    EXPECT_TRUE(WaitEvent());
    EXPECT_EQ(events, PortEvents::received);
    printer.join();
}

TEST_F(SerialTransfer, WaitingDoesNotMissACharacterThatCameBefore) {
    ASSERT_TRUE(line.Write({1}));
    EXPECT_TRUE(WaitEvent());
    EXPECT_EQ(events, PortEvents::received);
    EXPECT_TRUE(WaitEvent()) << "it has not been read yet";
    EXPECT_EQ(events, PortEvents::received);
}

TEST_F(SerialTransfer, WithoutEventsWaitingEndsAtOnce) {
    ASSERT_TRUE(platform::SetPortEvents(port, PortEvents::none));
    ASSERT_TRUE(line.Write({1}));
    EXPECT_TRUE(WaitEvent());
    EXPECT_EQ(events, PortEvents::none);
}

TEST_F(SerialTransfer, SettingTheEventsToNoneReleasesAWait) {
    std::atomic<bool> released = false;
    std::thread host([&, waiting = gettid()] {
        EXPECT_TRUE(AwaitBlocked(waiting));
        released = true;
        platform::SetPortEvents(port, PortEvents::none);
        platform::SetPortEvents(port, PortEvents::received);
    });
    EXPECT_TRUE(WaitEvent());
    EXPECT_EQ(events, PortEvents::none);
    EXPECT_TRUE(released);
    host.join();
    ASSERT_TRUE(line.Write({1}));
    EXPECT_TRUE(WaitEvent()) << "and is no release for the next";
    EXPECT_EQ(events, PortEvents::received);
}

TEST_F(SerialTransfer, SignalsDoNotEndAWait) {
    const SignalStorm storm;
    std::thread printer([&] {
        EXPECT_TRUE(SignalStorm::AwaitMore(100));
        EXPECT_TRUE(line.Write({1}));
    });
    EXPECT_TRUE(WaitEvent());
    EXPECT_EQ(events, PortEvents::received);
    printer.join();
}

// Closes the port from another thread while `call` is blocked in it, and expects the call to fail for that
// reason.
template <typename Call>
void ExpectReleasedByClosing(PortHandle port, Call call) {
    std::atomic<bool> closed = false;
    std::thread host([&, waiting = gettid()] {
        EXPECT_TRUE(AwaitBlocked(waiting));
        closed = true;
        const Stopwatch watch;
        EXPECT_TRUE(platform::ClosePort(port));
        EXPECT_LT(watch.Elapsed(), 5'000);
        EXPECT_EQ(fcntl(static_cast<int>(port), F_GETFD), -1) << "closed on return";
    });
    EXPECT_FALSE(call());
    EXPECT_EQ(static_cast<int>(platform::LastError()), ECANCELED);
    EXPECT_TRUE(closed);
    host.join();
}

TEST_F(SerialTransfer, ClosingReleasesAWait) {
    ExpectReleasedByClosing(port, [&] { return WaitEvent(); });
    EXPECT_EQ(events, PortEvents::none);
}

TEST_F(SerialTransfer, ClosingReleasesARead) {
    SetTimeouts({0, 0, kLong, 0, 0});
    ExpectReleasedByClosing(port, [&] { return Read(1), readSucceeded; });
}

TEST_F(SerialTransfer, ClosingReleasesAWriteToAPrinterThatTakesNothing) {
    SetTimeouts({0, 0, 0, 0, kLong});
    const Bytes out(500'000);
    ExpectReleasedByClosing(port, [&] { return Write(out); });
    EXPECT_GT(taken, 0U);
    EXPECT_LT(taken, 500'000U);
}

TEST_F(SerialTransfer, WhatWasWrittenBeforeClosingStillArrives) {
    const Bytes out = Pattern(2'000, 7);
    ASSERT_TRUE(Write(out));
    ASSERT_TRUE(platform::ClosePort(port));
    EXPECT_EQ(line.Read(out.size()), out);
}

TEST_F(SerialTransfer, ClosingWhileOthersReadAndWriteIsSafe) {
    std::atomic<PortHandle> current = port;
    std::atomic<bool> over = false;
    std::thread writer([&] {
        const Bytes some(1'000);
        for (uint32_t went; !over;)
            platform::WritePort(current, some.data(), 1'000, went);
    });
    std::thread reader([&] {
        uint8_t byte;
        for (uint32_t got; !over;)
            platform::ReadPort(current, &byte, 1, got);
    });
    std::thread printer([&] {
        uint8_t bytes[1'000];
        while (!over)
            if (read(line.PrinterEnd(), bytes, sizeof bytes) < 0)
                std::this_thread::yield();
    });
    for (int i = 0; i < 100; ++i) {
        EXPECT_TRUE(platform::ClosePort(port));
        port = platform::OpenPort(line.Name().c_str(), platform::PortAccess::plain);
        EXPECT_NE(port, platform::kInvalidPort);
        current = port;
    }
    over = true;
    for (std::thread *thread : {&writer, &reader, &printer})
        thread->join();
}

} // namespace
