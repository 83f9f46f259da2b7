#include "platform/SerialPort.h"

#include "platform/Error.h"
#include "tests/linux/OutputQueue.h"
#include "tests/linux/PseudoTerminal.h"
#include "tests/linux/Support.h"
#include "tests/linux/SystemFaults.h"
#include "tests/platform/ScriptedAllocation.h"

#include <fcntl.h>
#include <gtest/gtest.h>

#include <asm/termbits.h>
#include <sys/ioctl.h>

namespace {

using platform::kInvalidPort;
using platform::LineSettings;
using platform::PortHandle;
using platform::PortSignal;
using Bytes = std::vector<uint8_t>;

constexpr uint32_t kInputQueue = 8; // as PurgePort takes them
constexpr uint32_t kOutputQueue = 4;

int Error() {
    return static_cast<int>(platform::LastError());
}

LineSettings At115200() {
    LineSettings settings;
    settings.length = 28;
    settings.baudRate = 115200;
    settings.binary = true;
    settings.byteSize = 8;
    return settings;
}

// A device that can be opened and used, and has cost no descriptor, whatever has failed before.
class SerialOpenFailure : public testing::Test {
  protected:
    void TearDown() override {
        EXPECT_TRUE(NoDescriptorIsLost(descriptors));
        const PortHandle port = Open();
        ASSERT_NE(port, kInvalidPort);
        EXPECT_TRUE(platform::SetLineSettings(port, At115200()));
        ASSERT_TRUE(platform::SetPortTimeouts(port, {0, 0, 0, 0, 10'000}));
        const uint8_t byte = 0x1B;
        uint32_t taken = 0;
        EXPECT_TRUE(platform::WritePort(port, &byte, 1, taken));
        EXPECT_EQ(line.Read(1), Bytes{0x1B});
        EXPECT_TRUE(platform::ClosePort(port));
    }

    PortHandle Open() { return platform::OpenPort(line.Name().c_str(), platform::PortAccess::plain); }

    void ExpectRefused(int reason) {
        EXPECT_EQ(Open(), kInvalidPort);
        EXPECT_EQ(Error(), reason);
    }
    void ExpectOpens() {
        const PortHandle port = Open();
        EXPECT_NE(port, kInvalidPort);
        EXPECT_TRUE(platform::ClosePort(port));
    }

    PseudoTerminal line;
    const std::ptrdiff_t descriptors = OpenDescriptors();
};

TEST_F(SerialOpenFailure, AnInterruptedOpenIsBegunAgain) {
    const SystemFault fault({.call = SystemCall::open, .error = EINTR, .times = 3});
    ExpectOpens();
    EXPECT_EQ(fault.Met(), 3);
}

TEST_F(SerialOpenFailure, ADeviceWhoseSettingsCannotBeReadIsNotOpened) {
    const SystemFault fault({.call = SystemCall::ioctl, .error = EIO, .only = TCGETS2});
    ExpectRefused(EIO);
}

TEST_F(SerialOpenFailure, AnInterruptedQuestionForTheSettingsIsAskedAgain) {
    const SystemFault fault({.call = SystemCall::ioctl, .error = EINTR, .times = 2, .only = TCGETS2});
    ExpectOpens();
    EXPECT_EQ(fault.Met(), 2);
}

TEST_F(SerialOpenFailure, ADeviceThatCannotBeLockedIsNotOpened) {
    const SystemFault fault({.call = SystemCall::flock, .error = ENOLCK});
    ExpectRefused(ENOLCK);
}

TEST_F(SerialOpenFailure, ADeviceThatCannotBeMadeExclusiveIsNotOpened) {
    const SystemFault fault({.call = SystemCall::ioctl, .error = EPERM, .only = TIOCEXCL});
    ExpectRefused(EPERM);
}

TEST_F(SerialOpenFailure, ADriverThatDoesNotSayWhetherItsDeviceIsTakenIsOpened) {
    const SystemFault fault({.call = SystemCall::ioctl, .error = ENOTTY, .only = TIOCGEXCL});
    ExpectOpens();
    EXPECT_EQ(fault.Met(), 1);
}

TEST_F(SerialOpenFailure, ADeviceWithModemLinesIsClosedOnReturnWhereItsDriverDoesNotHoldTheCloseUp) {
    std::thread([] {}).join(); // a sanitizer starts a thread of its own with the first one
    const auto threads = RunningThreads();
    const PortHandle port = Open();
    const SystemFault device({.call = SystemCall::ioctl, .answer = 0, .only = TIOCMGET});
    EXPECT_TRUE(platform::ClosePort(port));
    EXPECT_EQ(device.Met(), 1);
    EXPECT_EQ(fcntl(static_cast<int>(port), F_GETFD), -1);
    EXPECT_TRUE(Await([&] { return RunningThreads() <= threads; }));
}

TEST_F(SerialOpenFailure, WithoutMemoryNothingIsOpened) {
    if (!scripted::allocation::CanFail())
        GTEST_SKIP() << "the sanitizer has an operator new of its own";
    const std::u16string name = line.Name();
    int nth = 0;
    PortHandle port = kInvalidPort;
    do {
        scripted::allocation::FailNth(++nth, 0, SIZE_MAX);
        port = platform::OpenPort(name.c_str(), platform::PortAccess::plain);
        const int failures = scripted::allocation::Failures();
        scripted::allocation::Allow();
        EXPECT_EQ(port == kInvalidPort, failures != 0) << nth;
        EXPECT_TRUE(port != kInvalidPort || Error() == ENOMEM) << nth;
    } while (port == kInvalidPort && nth < 100);
    EXPECT_GT(nth, 1);
    EXPECT_TRUE(platform::ClosePort(port));
}

class SerialFailure : public SerialOpenFailure {
  protected:
    void SetUp() override {
        port = Open();
        ASSERT_NE(port, kInvalidPort);
        ASSERT_TRUE(platform::SetLineSettings(port, At115200()));
        ASSERT_TRUE(platform::SetPortTimeouts(port, {0, 0, 200, 0, 10'000}));
    }
    void TearDown() override {
        EXPECT_TRUE(platform::ClosePort(port));
        SerialOpenFailure::TearDown();
    }

    bool Write(const Bytes &bytes) {
        return platform::WritePort(port, bytes.data(), static_cast<uint32_t>(bytes.size()), count);
    }
    // What came; `succeeded` is what the call says.
    Bytes Read(uint32_t most) {
        Bytes bytes(most);
        succeeded = platform::ReadPort(port, bytes.data(), most, count);
        bytes.resize(count);
        return bytes;
    }
    int Unread() const {
        int unread = -1;
        ioctl(static_cast<int>(port), FIONREAD, &unread);
        return unread;
    }

    PortHandle port = kInvalidPort;
    bool succeeded = false;
    uint32_t count = 99;
};

TEST_F(SerialFailure, SettingsThatTheDriverDoesNotTellAreAFailure) {
    const SystemFault fault({.call = SystemCall::ioctl, .error = EIO, .only = TCGETS2});
    LineSettings settings;
    EXPECT_FALSE(platform::GetLineSettings(port, settings));
    EXPECT_EQ(Error(), EIO);
    EXPECT_EQ(settings, LineSettings());
    EXPECT_TRUE(platform::GetLineSettings(port, settings));
    EXPECT_EQ(settings.baudRate, 115200U);
}

TEST_F(SerialFailure, SettingFailsWhereTheDriverTellsItsSettingsNeitherBeforeNorAfter) {
    for (const int nth : {1, 2}) {
        const SystemFault fault({.call = SystemCall::ioctl, .error = EIO, .nth = nth, .only = TCGETS2});
        EXPECT_FALSE(platform::SetLineSettings(port, At115200()));
        EXPECT_EQ(Error(), EIO);
        EXPECT_EQ(fault.Met(), 1);
    }
    EXPECT_TRUE(platform::SetLineSettings(port, At115200()));
}

TEST_F(SerialFailure, SettingFailsWhereTheDriverTakesNoSettings) {
    const SystemFault fault({.call = SystemCall::ioctl, .error = EIO, .only = TCSETS2});
    EXPECT_FALSE(platform::SetLineSettings(port, At115200()));
    EXPECT_EQ(Error(), EIO);
    EXPECT_TRUE(platform::SetLineSettings(port, At115200()));
}

TEST_F(SerialFailure, AnInterruptedSettingIsBegunAgain) {
    const SystemFault fault({.call = SystemCall::ioctl, .error = EINTR, .times = 2, .only = TCSETS2});
    EXPECT_TRUE(platform::SetLineSettings(port, At115200()));
    EXPECT_EQ(fault.Met(), 2);
}

TEST_F(SerialFailure, APortThatWasLeftAloneNeedsDescriptorsToBeUsedAgain) {
    rlimit limit;
    getrlimit(RLIMIT_NOFILE, &limit);
    for (rlim_t few = 0; few < 3; ++few) {
        ASSERT_FALSE(platform::SetLineSettings(port, LineSettings()));
        const DescriptorsTakenBelow taken(64);
        const rlimit tight = {64 + few, limit.rlim_max};
        setrlimit(RLIMIT_NOFILE, &tight);
        EXPECT_FALSE(platform::SetLineSettings(port, At115200())) << few;
        EXPECT_EQ(Error(), EMFILE);
        setrlimit(RLIMIT_NOFILE, &limit);
    }
    EXPECT_TRUE(platform::SetLineSettings(port, At115200()));
    EXPECT_TRUE(Write({0x0A}));
    EXPECT_EQ(line.Read(1), Bytes{0x0A});
}

TEST_F(SerialFailure, ModemLinesThatTheDeviceHasAreRaisedAndLowered) {
    const struct {
        PortSignal signal;
        unsigned long request;
    } kRows[] = {{PortSignal::setDtr, TIOCMBIS},
                 {PortSignal::clearDtr, TIOCMBIC},
                 {PortSignal::setRts, TIOCMBIS},
                 {PortSignal::clearRts, TIOCMBIC}};
    for (const auto &row : kRows) {
        const SystemFault device({.call = SystemCall::ioctl, .answer = 0, .only = row.request});
        EXPECT_TRUE(platform::SignalPort(port, row.signal));
        EXPECT_EQ(device.Met(), 1);
    }
}

TEST_F(SerialFailure, AnInterruptedQuestionForTheModemLinesIsAskedAgain) {
    uint32_t status = 0;
    const SystemFault fault({.call = SystemCall::ioctl, .error = EINTR, .times = 2, .only = TIOCMGET});
    EXPECT_FALSE(platform::GetModemStatus(port, status)) << "a pseudo-terminal has none";
    EXPECT_EQ(Error(), ENOTTY);
    EXPECT_EQ(fault.Met(), 2);
}

TEST_F(SerialFailure, PurgingDropsTheQueuesThatItIsAskedTo) {
    ASSERT_TRUE(line.Write({1, 2, 3}));
    ASSERT_TRUE(Await([&] { return Unread() == 3; }));
    const OutputQueue queue(static_cast<int>(port), 5);
    EXPECT_TRUE(platform::PurgePort(port, 0));
    EXPECT_EQ(queue.Dropped(), 0);
    EXPECT_TRUE(platform::PurgePort(port, kOutputQueue));
    EXPECT_EQ(queue.Dropped(), 1);
    EXPECT_EQ(Unread(), 3);
    EXPECT_TRUE(platform::PurgePort(port, kInputQueue));
    EXPECT_EQ(Unread(), 0);
}

TEST_F(SerialFailure, PurgingNothingNeedsAnOpenPortToo) {
    EXPECT_FALSE(platform::PurgePort(kInvalidPort, 0));
    EXPECT_EQ(Error(), EBADF);
}

TEST_F(SerialFailure, InterruptedTransfersAreBegunAgain) {
    const SystemFault reading({.call = SystemCall::read, .error = EINTR, .times = 2});
    const SystemFault writing({.call = SystemCall::write, .error = EINTR, .times = 2});
    EXPECT_TRUE(Write({7}));
    EXPECT_EQ(writing.Met(), 2);
    EXPECT_EQ(Read(1), Bytes());
    EXPECT_TRUE(succeeded);
    EXPECT_EQ(reading.Met(), 2);
    EXPECT_EQ(line.Read(1), Bytes{7});
}

TEST_F(SerialFailure, ADeviceErrorEndsAReadWithNothing) {
    const SystemFault fault({.call = SystemCall::read, .error = EIO});
    EXPECT_EQ(Read(1), Bytes());
    EXPECT_FALSE(succeeded);
    EXPECT_EQ(Error(), EIO);
}

TEST_F(SerialFailure, AShortWriteGoesOnWithTheRest) {
    const SystemFault fault({.call = SystemCall::write, .answer = 3});
    EXPECT_TRUE(Write({1, 2, 3, 4, 5}));
    EXPECT_EQ(count, 5U);
    EXPECT_EQ(line.Read(2), (Bytes{4, 5}));
    EXPECT_FALSE(line.HasInput());
}

TEST_F(SerialFailure, ADeviceErrorEndsAWriteWithWhatTheDeviceTook) {
    const SystemFault fault({.call = SystemCall::write, .error = EIO});
    EXPECT_FALSE(Write({1, 2}));
    EXPECT_EQ(Error(), EIO);
    EXPECT_EQ(count, 0U);
    EXPECT_FALSE(line.HasInput());
}

TEST_F(SerialFailure, ADeviceThatGoesWhileItsQueueIsLookedAtEndsTheWrite) {
    const SystemFault fault({.call = SystemCall::ioctl, .error = EIO, .only = TIOCOUTQ});
    EXPECT_FALSE(Write({1, 2}));
    EXPECT_EQ(Error(), EIO);
    EXPECT_EQ(count, 2U) << "it had taken them by then";
    EXPECT_EQ(line.Read(2), (Bytes{1, 2}));
}

TEST_F(SerialFailure, ADeviceThatTakesOrGivesNothingForNowIsWaitedFor) {
    ASSERT_TRUE(line.Write({9}));
    ASSERT_TRUE(Await([&] { return Unread() == 1; }));
    const SystemFault reading({.call = SystemCall::read, .answer = 0});
    EXPECT_EQ(Read(1), Bytes{9});
    const SystemFault writing({.call = SystemCall::write, .answer = 0});
    EXPECT_TRUE(Write({8}));
    EXPECT_EQ(line.Read(1), Bytes{8});
}

} // namespace
