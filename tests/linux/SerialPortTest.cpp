#include "platform/SerialPort.h"

#include "platform/Error.h"
#include "platform/linux/HandleTable.h"
#include "tests/linux/PseudoTerminal.h"
#include "tests/linux/Support.h"

#include <gtest/gtest.h>

#include <asm/termbits.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/wait.h>

namespace {

using platform::Descriptor;
using platform::kInvalidPort;
using platform::LineSettings;
using platform::PortAccess;
using platform::PortHandle;

constexpr uint8_t kTwoStopBits = 2;
constexpr uint8_t kEvenParity = 2;

PortHandle Open(const std::u16string &name) {
    return platform::OpenPort(name.c_str(), PortAccess::plain);
}

PortHandle Open(const PseudoTerminal &line) {
    return Open(line.Name());
}

// The device as another program of the same user opens it.
Descriptor OpenAside(const PseudoTerminal &line) {
    return Descriptor(open(line.Path().c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC));
}

LineSettings Plain(uint32_t baud, uint8_t bits = 8, uint8_t parity = 0, uint8_t stop = 0) {
    LineSettings settings;
    settings.length = 28;
    settings.baudRate = baud;
    settings.binary = true;
    settings.parityCheck = true;
    settings.byteSize = bits;
    settings.parity = parity;
    settings.stopBits = stop;
    return settings;
}

void ExpectRefused(const std::u16string &name, int reason) {
    EXPECT_EQ(Open(name), kInvalidPort);
    EXPECT_EQ(platform::LastError(), static_cast<uint32_t>(reason));
}

TEST(SerialPort, OpensADeviceByItsPath) {
    const PseudoTerminal line;
    const PortHandle port = Open(line);
    ASSERT_NE(port, kInvalidPort);
    EXPECT_TRUE(platform::ClosePort(port));
}

TEST(SerialPort, OpensBothKindsOfAccessAndANameWithAPrefix) {
    const PseudoTerminal line;
    const PortHandle port = platform::OpenPort((u"\\\\.\\" + line.Name()).c_str(), PortAccess::overlapped);
    ASSERT_NE(port, kInvalidPort);
    EXPECT_TRUE(platform::ClosePort(port));
}

TEST(SerialPort, WhatIsNoPortIsNotOpened) {
    ExpectRefused(u"/dev/no-such-port", ENOENT);
    ExpectRefused(u"", ENOENT);
    ExpectRefused(u"/", ENOTTY);
    ExpectRefused(u"/dev/null", ENOTTY);
    ExpectRefused(std::u16string(10'000, u'x'), ENAMETOOLONG);
    EXPECT_EQ(platform::OpenPort(nullptr, PortAccess::plain), kInvalidPort);
}

TEST(SerialPort, AFileIsNoPort) {
    const std::string path = testing::TempDir() + "no-port";
    Descriptor(open(path.c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600));
    ExpectRefused({path.begin(), path.end()}, ENOTTY);
    unlink(path.c_str());
}

TEST(SerialPort, WithoutDescriptorsNothingIsOpened) {
    const PseudoTerminal line;
    {
        const NoDescriptorsLeft none;
        ExpectRefused(line.Name(), EMFILE);
    }
    const auto before = OpenDescriptors();
    rlimit limit;
    getrlimit(RLIMIT_NOFILE, &limit);
    for (rlim_t few = 1; few < 4; ++few) {
        const DescriptorsTakenBelow taken(64);
        const rlimit tight = {64 + few, limit.rlim_max};
        setrlimit(RLIMIT_NOFILE, &tight);
        ExpectRefused(line.Name(), EMFILE);
        setrlimit(RLIMIT_NOFILE, &limit);
    }
    EXPECT_TRUE(NoDescriptorIsLost(before));
}

TEST(SerialPort, IsNotInheritedByProgramsThatTheHostStarts) {
    const PseudoTerminal line;
    const PortHandle port = Open(line);
    EXPECT_EQ(fcntl(static_cast<int>(port), F_GETFD) & FD_CLOEXEC, FD_CLOEXEC);
    platform::ClosePort(port);
}

TEST(SerialPort, DoesNotBecomeTheControllingTerminal) {
    const PseudoTerminal line;
    const pid_t child = fork();
    if (child == 0) {
        setsid();
        const bool opened = Open(line) != kInvalidPort;
        const bool controls = open("/dev/tty", O_RDONLY | O_CLOEXEC) >= 0;
        _exit(opened && !controls ? 0 : 1);
    }
    int status = -1;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
}

TEST(SerialPort, IsThisProcesssAloneAlsoForRoot) {
    const PseudoTerminal line;
    const PortHandle port = Open(line);
    ASSERT_NE(port, kInvalidPort);
    ExpectRefused(line.Name(), EBUSY);
    EXPECT_TRUE(platform::ClosePort(port));
    const PortHandle again = Open(line);
    EXPECT_NE(again, kInvalidPort);
    EXPECT_TRUE(platform::ClosePort(again));
}

TEST(SerialPort, IsClosedToOtherProgramsWhileOpen) {
    const PseudoTerminal line;
    const Descriptor aside = OpenAside(line);
    const PortHandle port = Open(line);
    int exclusive = 0;
    ioctl(aside.Number(), TIOCGEXCL, &exclusive);
    EXPECT_NE(exclusive, 0);
    EXPECT_NE(flock(aside.Number(), LOCK_EX | LOCK_NB), 0);
    platform::ClosePort(port);
    ioctl(aside.Number(), TIOCGEXCL, &exclusive);
    EXPECT_EQ(exclusive, 0);
    EXPECT_EQ(flock(aside.Number(), LOCK_EX | LOCK_NB), 0);
}

TEST(SerialPort, APortThatAnotherProgramHasMadeItsOwnIsLeftToIt) {
    const PseudoTerminal line;
    const Descriptor aside = OpenAside(line);
    ioctl(aside.Number(), TIOCEXCL);
    ExpectRefused(line.Name(), EBUSY);
    int exclusive = 0;
    ioctl(aside.Number(), TIOCGEXCL, &exclusive);
    EXPECT_NE(exclusive, 0) << "still the other program's";
    ioctl(aside.Number(), TIOCNXCL);
    const PortHandle port = Open(line);
    EXPECT_NE(port, kInvalidPort);
    platform::ClosePort(port);
}

TEST(SerialPort, APortThatAnotherProgramHasLockedIsLeftToIt) {
    const PseudoTerminal line;
    const Descriptor aside = OpenAside(line);
    flock(aside.Number(), LOCK_EX);
    ExpectRefused(line.Name(), EBUSY);
    int exclusive = 0;
    ioctl(aside.Number(), TIOCGEXCL, &exclusive);
    EXPECT_EQ(exclusive, 0);
}

TEST(SerialPort, IsFreeAgainAlsoWhileAForkedProcessHasACopyOfIt) {
    const PseudoTerminal line;
    const PortHandle port = Open(line);
    int hold[2];
    ASSERT_EQ(pipe(hold), 0);
    const pid_t child = fork();
    if (child == 0) {
        close(hold[1]);
        char byte;
        _exit(read(hold[0], &byte, 1) == 0 ? 0 : 1);
    }
    platform::ClosePort(port);
    const PortHandle again = Open(line);
    EXPECT_NE(again, kInvalidPort);
    platform::ClosePort(again);
    close(hold[0]);
    close(hold[1]);
    waitpid(child, nullptr, 0);
}

class OpenSerialPort : public testing::Test {
  protected:
    void SetUp() override {
        port = Open(line);
        ASSERT_NE(port, kInvalidPort);
    }
    void TearDown() override { platform::ClosePort(port); }

    PseudoTerminal line;
    PortHandle port = kInvalidPort;
};

TEST_F(OpenSerialPort, TakesAnyRate) {
    for (const uint32_t rate : {300U, 1200U, 9600U, 12345U, 57600U, 115200U, 250000U, 921600U, 3000000U}) {
        EXPECT_TRUE(platform::SetLineSettings(port, Plain(rate))) << rate;
        LineSettings got;
        EXPECT_TRUE(platform::GetLineSettings(port, got));
        EXPECT_EQ(got.baudRate, rate);
    }
}

TEST_F(OpenSerialPort, ReadsBackWhatWasSet) {
    ASSERT_TRUE(platform::SetLineSettings(port, Plain(19200, 8, 0, kTwoStopBits)));
    LineSettings got;
    ASSERT_TRUE(platform::GetLineSettings(port, got));
    LineSettings expected = Plain(19200, 8, 0, kTwoStopBits);
    expected.parityCheck = false;
    EXPECT_EQ(got, expected);
}

TEST_F(OpenSerialPort, FailsWhenTheDriverTakesSomethingElse) {
    // A pseudo-terminal has eight bits without parity, whatever it is asked for, and reports no error.
    EXPECT_FALSE(platform::SetLineSettings(port, Plain(9600, 7, kEvenParity)));
    EXPECT_EQ(platform::LastError(), static_cast<uint32_t>(EINVAL));
    EXPECT_FALSE(platform::SetLineSettings(port, Plain(9600, 7)));
    EXPECT_FALSE(platform::SetLineSettings(port, Plain(9600, 8, kEvenParity)));
    EXPECT_FALSE(platform::SetLineSettings(port, Plain(9600, 5, 0, 1)));
    EXPECT_TRUE(platform::SetLineSettings(port, Plain(9600)));
}

TEST_F(OpenSerialPort, FailsForSettingsThatNoDriverHas) {
    EXPECT_FALSE(platform::SetLineSettings(port, Plain(0)));
    EXPECT_EQ(platform::LastError(), static_cast<uint32_t>(EINVAL));
    EXPECT_FALSE(platform::SetLineSettings(port, Plain(9600, 9)));
    EXPECT_FALSE(platform::SetLineSettings(port, Plain(9600, 8, 5)));
    EXPECT_FALSE(platform::SetLineSettings(port, Plain(9600, 8, 0, 1)));
}

TEST_F(OpenSerialPort, TheLineIsRawAfterwards) {
    const Descriptor aside = OpenAside(line);
    ASSERT_TRUE(platform::SetLineSettings(port, Plain(115200)));
    termios2 terminal;
    ASSERT_EQ(ioctl(static_cast<int>(port), TCGETS2, &terminal), 0);
    EXPECT_EQ(terminal.c_iflag, static_cast<tcflag_t>(IGNBRK));
    EXPECT_EQ(terminal.c_oflag, 0U);
    EXPECT_EQ(terminal.c_lflag, 0U);
    EXPECT_EQ(terminal.c_cflag & (CRTSCTS | CLOCAL | CREAD), static_cast<tcflag_t>(CLOCAL | CREAD));
}

TEST_F(OpenSerialPort, RemembersTheTimeouts) {
    platform::PortTimeouts got;
    EXPECT_TRUE(platform::GetPortTimeouts(port, got));
    EXPECT_EQ(got, platform::PortTimeouts());
    const platform::PortTimeouts set = {65535, 100, 10, 100, 1};
    EXPECT_TRUE(platform::SetPortTimeouts(port, set));
    EXPECT_TRUE(platform::GetPortTimeouts(port, got));
    EXPECT_EQ(got, set);
}

TEST_F(OpenSerialPort, ModemLinesThatTheDeviceLacksAreAnOrdinaryFailure) {
    EXPECT_FALSE(platform::SignalPort(port, platform::PortSignal::setDtr));
    EXPECT_NE(platform::LastError(), 0U);
    for (const auto signal :
         {platform::PortSignal::clearDtr, platform::PortSignal::setRts, platform::PortSignal::clearRts})
        EXPECT_FALSE(platform::SignalPort(port, signal));
    uint32_t status = 0;
    EXPECT_FALSE(platform::GetModemStatus(port, status));
}

TEST_F(OpenSerialPort, PurgingDropsWhatWasReceived) {
    ASSERT_TRUE(platform::SetLineSettings(port, Plain(115200)));
    ASSERT_TRUE(line.Write({1, 2, 3}));
    int unread = 0;
    ASSERT_TRUE(Await([&] { return ioctl(static_cast<int>(port), FIONREAD, &unread) == 0 && unread == 3; }));
    EXPECT_TRUE(platform::PurgePort(port, platform::kPurgeAll));
    ioctl(static_cast<int>(port), FIONREAD, &unread);
    EXPECT_EQ(unread, 0);
}

TEST_F(OpenSerialPort, AHandleThatIsNotOpenFailsAndTouchesNothing) {
    const PortHandle closed = port;
    int ends[2];
    ASSERT_EQ(pipe2(ends, O_NONBLOCK | O_CLOEXEC), 0);
    ASSERT_TRUE(platform::ClosePort(closed));
    ASSERT_EQ(dup2(ends[1], static_cast<int>(closed)), closed)
        << "the system gives the number to something else";

    const auto badHandle = [](bool result) { return !result && platform::LastError() == EBADF; };
    LineSettings settings = Plain(9600);
    platform::PortTimeouts timeouts;
    platform::PortEvents events = platform::PortEvents::received;
    uint8_t byte = 'x';
    uint32_t count = 1;
    EXPECT_TRUE(badHandle(platform::GetLineSettings(closed, settings)));
    EXPECT_TRUE(badHandle(platform::SetLineSettings(closed, settings)));
    EXPECT_TRUE(badHandle(platform::GetPortTimeouts(closed, timeouts)));
    EXPECT_TRUE(badHandle(platform::SetPortTimeouts(closed, timeouts)));
    EXPECT_TRUE(badHandle(platform::SetPortEvents(closed, events)));
    EXPECT_TRUE(badHandle(platform::WaitPortEvent(closed, events)));
    EXPECT_EQ(events, platform::PortEvents::none);
    EXPECT_TRUE(badHandle(platform::ReadPort(closed, &byte, 1, count)));
    EXPECT_EQ(count, 0U);
    count = 1;
    EXPECT_TRUE(badHandle(platform::WritePort(closed, &byte, 1, count)));
    EXPECT_EQ(count, 0U);
    EXPECT_TRUE(badHandle(platform::GetModemStatus(closed, count)));
    EXPECT_TRUE(badHandle(platform::SignalPort(closed, platform::PortSignal::setDtr)));
    EXPECT_TRUE(badHandle(platform::PurgePort(closed, platform::kPurgeAll)));
    EXPECT_TRUE(badHandle(platform::ClosePort(closed)));

    EXPECT_EQ(read(ends[0], &byte, 1), -1) << "nothing was written";
    EXPECT_EQ(fcntl(static_cast<int>(closed), F_GETFD), 0) << "nothing was closed";
    for (const int number : {ends[0], ends[1], static_cast<int>(closed)})
        close(number);
}

TEST(SerialPort, NoPortIsAHandleLikeAnyOtherThatIsNotOpen) {
    for (const PortHandle handle :
         {kInvalidPort, PortHandle{0}, PortHandle{-7}, PortHandle{INTPTR_MAX / 2 + 1}})
        EXPECT_FALSE(platform::ClosePort(handle));
}

// Opens, sends a byte through and closes.
void ExpectPortWorks(PseudoTerminal &line, PortHandle port) {
    ASSERT_TRUE(platform::SetLineSettings(port, Plain(115200)));
    ASSERT_TRUE(platform::SetPortTimeouts(port, {0, 0, 0, 0, 10'000}));
    const uint8_t byte = 0x1B;
    uint32_t taken = 0;
    EXPECT_TRUE(platform::WritePort(port, &byte, 1, taken));
    EXPECT_EQ(taken, 1U);
    EXPECT_EQ(line.Read(1), std::vector<uint8_t>{0x1B});
    EXPECT_TRUE(platform::ClosePort(port));
}

TEST(SerialPort, DescriptorZeroIsAPortLikeAnyOther) {
    PseudoTerminal line;
    const StandardInputClosed closed;
    const PortHandle port = Open(line);
    EXPECT_EQ(port, 0);
    ExpectPortWorks(line, port);
}

TEST(SerialPort, DescriptorsAboveAThousandWork) {
    PseudoTerminal line;
    const DescriptorsTakenBelow taken(1100);
    const PortHandle port = Open(line);
    EXPECT_GE(port, 1100);
    ExpectPortWorks(line, port);
}

TEST(SerialPort, AThousandTimesOpenAndClosedLeavesNothing) {
    PseudoTerminal line;
    ASSERT_TRUE(platform::ClosePort(Open(line)));
    const auto descriptors = OpenDescriptors();
    const auto threads = RunningThreads();
    for (int i = 0; i < 1000; ++i) {
        const PortHandle port = Open(line);
        ASSERT_NE(port, kInvalidPort);
        ASSERT_TRUE(platform::ClosePort(port));
    }
    EXPECT_TRUE(NoDescriptorIsLost(descriptors));
    EXPECT_TRUE(Await([&] { return RunningThreads() <= threads; })) << RunningThreads() << " of " << threads;
}

} // namespace
