#include "platform/SerialPort.h"

#include "platform/Error.h"
#include "tests/linux/OutputQueue.h"
#include "tests/linux/PseudoTerminal.h"
#include "tests/linux/Support.h"

#include <gtest/gtest.h>

#include <sys/ioctl.h>

namespace {

// A port whose device has a queue of its own.
class SerialDrain : public testing::Test {
  protected:
    void SetUp() override {
        port = platform::OpenPort(line.Name().c_str(), platform::PortAccess::plain);
        ASSERT_NE(port, platform::kInvalidPort);
        SetTimeout(20'000);
    }
    void TearDown() override { platform::ClosePort(port); }

    void SetTimeout(uint32_t milliseconds) {
        ASSERT_TRUE(platform::SetPortTimeouts(port, {0, 0, 0, 0, milliseconds}));
    }

    bool Write(uint32_t count) {
        const std::vector<uint8_t> bytes(count, 'x');
        return platform::WritePort(port, bytes.data(), count, taken);
    }

    int Number() const { return static_cast<int>(port); }
    static int Error() { return static_cast<int>(platform::LastError()); }

    PseudoTerminal line;
    platform::PortHandle port = platform::kInvalidPort;
    uint32_t taken = 0;
};

TEST_F(SerialDrain, WritingEndsWhenTheDeviceHasTakenTheLastByte) {
    OutputQueue queue(Number(), 3);
    std::atomic<bool> empty = false;
    std::thread device([&, waiting = gettid()] {
        EXPECT_TRUE(AwaitBlocked(waiting));
        empty = true;
        queue.Set(0);
    });
    EXPECT_TRUE(Write(10));
    EXPECT_TRUE(empty);
    EXPECT_EQ(taken, 10U);
    device.join();
}

TEST_F(SerialDrain, ADeviceThatTakesNoMoreEndsTheWriteWithTheTimeoutAndWhatItTook) {
    const OutputQueue queue(Number(), 3);
    SetTimeout(300);
    const Stopwatch watch;
    EXPECT_FALSE(Write(10));
    EXPECT_EQ(Error(), ETIMEDOUT);
    EXPECT_EQ(taken, 7U);
    EXPECT_GE(watch.Elapsed(), 300);
    EXPECT_LT(watch.Elapsed(), 5'000);
    EXPECT_LE(queue.Asked(), 40) << "1, 2, 4, 8, then 16 ms apart";
}

TEST_F(SerialDrain, BytesQueuedByAnEarlierWriteAreNotCountedTwice) {
    const OutputQueue queue(Number(), 30);
    SetTimeout(1);
    EXPECT_FALSE(Write(10));
    EXPECT_EQ(taken, 0U);
}

TEST_F(SerialDrain, SignalsDoNotProlongTheTimeout) {
    const OutputQueue queue(Number(), 3);
    SetTimeout(300);
    const SignalStorm storm;
    const Stopwatch watch;
    EXPECT_FALSE(Write(10));
    EXPECT_EQ(Error(), ETIMEDOUT);
    EXPECT_GE(watch.Elapsed(), 300);
    EXPECT_LT(watch.Elapsed(), 5'000);
}

TEST_F(SerialDrain, ADriverThatDoesNotSayIsNotWaitedFor) {
    OutputQueue queue(Number(), 0);
    queue.Hide();
    EXPECT_TRUE(Write(10));
    EXPECT_EQ(taken, 10U);
}

TEST_F(SerialDrain, ADeviceThatVanishesEndsTheWrite) {
    const OutputQueue queue(Number(), 3);
    std::thread adapter([&, waiting = gettid()] {
        EXPECT_TRUE(AwaitBlocked(waiting));
        line.HangUp();
    });
    EXPECT_FALSE(Write(10));
    EXPECT_EQ(Error(), EIO);
    adapter.join();
}

TEST_F(SerialDrain, ClosingEndsTheWriteAndDropsWhatIsQueued) {
    const OutputQueue queue(Number(), 3);
    std::thread host([&, waiting = gettid()] {
        EXPECT_TRUE(AwaitBlocked(waiting));
        EXPECT_TRUE(platform::ClosePort(port));
    });
    EXPECT_FALSE(Write(10));
    EXPECT_EQ(Error(), ECANCELED);
    EXPECT_EQ(taken, 7U);
    host.join();
    EXPECT_EQ(queue.Dropped(), 1);
}

TEST_F(SerialDrain, ClosingDropsNothingThatTheDeviceIsAboutToPrint) {
    const OutputQueue queue(Number(), 0);
    EXPECT_TRUE(Write(10));
    EXPECT_TRUE(platform::ClosePort(port));
    EXPECT_EQ(queue.Dropped(), 0);
    EXPECT_EQ(line.Read(10).size(), 10U);
}

TEST_F(SerialDrain, ARefusedOpenLeavesTheOtherProgramsOutputAlone) {
    ASSERT_TRUE(platform::ClosePort(port));
    const int aside = open(line.Path().c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    ioctl(aside, TIOCEXCL);
    // The number that the attempt gets.
    const int next = fcntl(aside, F_DUPFD_CLOEXEC, 0);
    close(next);
    const OutputQueue queue(next, 5);
    EXPECT_EQ(platform::OpenPort(line.Name().c_str(), platform::PortAccess::plain), platform::kInvalidPort);
    EXPECT_EQ(queue.Dropped(), 0);
    close(aside);
}

} // namespace
