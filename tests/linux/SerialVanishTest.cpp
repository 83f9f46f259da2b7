#include "tests/linux/SerialTransfer.h"

#include <thread>

namespace {

TEST_F(SerialTransfer, APortThatVanishesWhileIdleFailsEveryCallAtOnce) {
    line.HangUp();
    const Stopwatch watch;
    EXPECT_FALSE(Write(Bytes(100)));
    EXPECT_EQ(Error(), EIO);
    EXPECT_EQ(taken, 0U);
    EXPECT_EQ(Read(1), Bytes());
    EXPECT_FALSE(readSucceeded);
    EXPECT_EQ(Error(), EIO);
    EXPECT_LT(watch.Elapsed(), 5'000);
    EXPECT_TRUE(platform::ClosePort(port));
}

TEST_F(SerialTransfer, APortThatVanishesWhileWritingIsAnErrorAtOnceAndNoSignal) {
    SetTimeouts({0, 0, 0, 0, kLong});
    std::thread printer([&] {
        EXPECT_EQ(line.Read(1'000).size(), 1'000U);
        line.HangUp();
    });
    EXPECT_FALSE(Write(Bytes(500'000)));
    EXPECT_EQ(Error(), EIO);
    EXPECT_GE(taken, 1'000U);
    printer.join();
}

TEST_F(SerialTransfer, APortThatVanishesReleasesAReadAndAWait) {
    SetTimeouts({0, 0, kLong, 0, 0});
    std::thread printer([&, waiting = gettid()] {
        EXPECT_TRUE(AwaitBlocked(waiting));
        line.HangUp();
    });
    EXPECT_EQ(Read(1), Bytes());
    EXPECT_FALSE(readSucceeded);
    EXPECT_EQ(Error(), EIO);
    EXPECT_FALSE(WaitEvent());
    EXPECT_EQ(events, PortEvents::none);
    EXPECT_EQ(Error(), EIO);
    printer.join();
}

// Asks again and again for half a second, as the receive thread does.
void ExpectNoSpinning(PortHandle port) {
    const double before = ThreadCpuTime();
    const Stopwatch watch;
    int calls = 0;
    for (; watch.Elapsed() < 500; ++calls) {
        PortEvents happened = PortEvents::received;
        EXPECT_FALSE(platform::WaitPortEvent(port, happened));
        EXPECT_EQ(happened, PortEvents::none);
    }
    EXPECT_LE(calls, 11) << "fifty milliseconds each";
    EXPECT_LT(ThreadCpuTime() - before, 100);
}

TEST_F(SerialTransfer, APortThatHasVanishedMakesNoThreadSpin) {
    line.HangUp();
    ExpectNoSpinning(port);
}

TEST_F(SerialTransfer, AHandleThatIsNotOpenMakesNoThreadSpin) {
    ExpectNoSpinning(platform::kInvalidPort);
}

TEST_F(SerialTransfer, APortThatVanishesReleasesAReadAndAWriteAtTheSameTime) {
    SetTimeouts({0, 0, kLong, 0, kLong});
    std::thread writer([&] { EXPECT_FALSE(Write(Bytes(500'000))); });
    std::thread printer([&] {
        EXPECT_EQ(line.Read(1'000).size(), 1'000U);
        line.HangUp();
    });
    EXPECT_EQ(Read(1), Bytes());
    EXPECT_FALSE(readSucceeded);
    writer.join();
    printer.join();
}

TEST_F(SerialTransfer, ThePauseOfAVanishedPortIsCutShortByReleasing) {
    line.HangUp();
    const Stopwatch watch;
    std::thread host([&] {
        for (int i = 0; i < 100; ++i)
            platform::SetPortEvents(port, PortEvents::none);
    });
    host.join();
    EXPECT_TRUE(WaitEvent());
    EXPECT_EQ(events, PortEvents::none);
    EXPECT_LT(watch.Elapsed(), 5'000);
}

} // namespace
