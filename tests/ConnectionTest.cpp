#include "link/Connection.h"
#include "link/Pacing.h"
#include "link/ResponseParser.h"
#include "link/Write.h"
#include "tests/ConnectionTest.h"

namespace nadrel {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

TEST_F(ConnectionTest, ClosingWithNothingOpenGives0AndDoesNothing) {
    FillSpool(5);
    EXPECT_EQ(0, ClosePrinter());
    EXPECT_THAT(os.Calls(), IsEmpty());
    EXPECT_EQ(5, SpoolLength);
}

TEST_F(ConnectionTest, ClosingASerialLinkTakesItsStepsInOrder) {
    OpenSerialLink();
    EXPECT_EQ(1, ClosePrinter());
    EXPECT_THAT(os.Calls(), ElementsAreArray(kCloseSerial));
    EXPECT_EQ(10u, os.Now());
}

TEST_F(ConnectionTest, ClosingASerialLinkPutsTheStateBack) {
    OpenSerialLink();
    DirtyTheState();
    EXPECT_EQ(1, ClosePrinter());
    ExpectClosedAndPutBack();
    EXPECT_EQ(77u, LastLinkError);
}

TEST_F(ConnectionTest, ClosingASerialLinkClearsTheFlagFirst) {
    OpenSerialLink();
    os.OnCall("SetPortEvents", [] {
        EXPECT_EQ(0, SerialLinkOpen);
        EXPECT_EQ(3, SerialPortHandle);
        EXPECT_EQ(1, ReceiveThreadRunning);
    });
    EXPECT_EQ(1, ClosePrinter());
}

TEST_F(ConnectionTest, TheThreadsAreToldToStopBetweenTheExitCodeAndTheirEnd) {
    OpenSerialLink();
    os.OnCall("ThreadExitCode", [] { EXPECT_EQ(1, ReceiveThreadRunning); });
    os.OnCall("TerminateThread", [] { EXPECT_EQ(0, ReceiveThreadRunning); });
    EXPECT_EQ(1, ClosePrinter());
}

TEST_F(ConnectionTest, WhatTheThreadsUseStandsUntilBothHaveEnded) {
    OpenSerialLink();
    os.OnEveryCall("DeleteThread", [] {
        EXPECT_NE(nullptr, ReceiveQueue);
        EXPECT_EQ(3, SerialPortHandle);
    });
    EXPECT_EQ(1, ClosePrinter());
    EXPECT_EQ(2u, os.CountOf("DeleteThread"));
}

TEST_F(ConnectionTest, AReceiveThreadThatHasEndedIsNotTerminated) {
    OpenSerialLink();
    os.EndThread(0, 1);
    EXPECT_EQ(1, ClosePrinter());
    EXPECT_EQ(0u, os.CountOf("TerminateThread"));
    EXPECT_EQ(0, os.LiveThreads());
}

TEST_F(ConnectionTest, ClosingWithoutAReceiveThreadAsksNoExitCode) {
    os.Fail("StartThread", 11);
    ASSERT_EQ(1, InitPrinter(u"COM1", 9600, 0));
    ASSERT_EQ(nullptr, ReceiveThreadObject);
    EXPECT_EQ(1, ClosePrinter());
    EXPECT_EQ(0u, os.CountOf("ThreadExitCode"));
    EXPECT_EQ(0u, os.CountOf("TerminateThread"));
    EXPECT_EQ(0, os.LiveThreads());
}

TEST_F(ConnectionTest, ClosingWithoutAParserThreadEndsTheReceiveThread) {
    os.Fail("StartThread", 11, 2);
    ASSERT_EQ(1, InitPrinter(u"COM1", 9600, 0));
    ASSERT_EQ(nullptr, ParserThreadObject);
    EXPECT_EQ(1, ClosePrinter());
    EXPECT_THAT(os.CallsOf({"TerminateThread"}), testing::Contains("TerminateThread(thread 1, 0)"));
    EXPECT_EQ(0, os.LiveThreads());
}

TEST_F(ConnectionTest, APortThatDoesNotCloseGives0AndResetsNothing) {
    OpenSerialLink();
    DirtyTheState();
    os.Fail("ClosePort", 6);
    EXPECT_EQ(0, ClosePrinter());
    EXPECT_EQ(6u, LastLinkError);
    EXPECT_EQ(0, SerialLinkOpen);
    EXPECT_EQ(3, GetPortHandle());
    EXPECT_EQ(5, SpoolLength);
    EXPECT_EQ(1, PageModeFlag);
    EXPECT_EQ(2, MacroStartMark);
    EXPECT_NE(nullptr, ConversionBuffer);
    EXPECT_NE(nullptr, ReceiveQueue);
    EXPECT_EQ(0u, os.CountOf("SignalPort"));
    EXPECT_EQ(0u, os.CountOf("PurgePort"));
    keptPorts = 1;
}

TEST_F(ConnectionTest, APortThatDoesNotCloseLeavesNoThreadBehind) {
    OpenSerialLink();
    os.Fail("ClosePort", 6);
    EXPECT_EQ(0, ClosePrinter());
    EXPECT_EQ(0, os.LiveThreads());
    EXPECT_EQ(1u, os.CountOf("CloseNotifications"));
    keptPorts = 1;
}

TEST_F(ConnectionTest, APortThatDidNotCloseIsNotClosedByAnotherCall) {
    OpenSerialLink();
    os.Fail("ClosePort", 6);
    EXPECT_EQ(0, ClosePrinter());
    os.ForgetCalls();
    EXPECT_EQ(0, ClosePrinter());
    EXPECT_THAT(os.Calls(), IsEmpty());
    keptPorts = 1;
}

TEST_F(ConnectionTest, AWirelessLinkOpensAfterASerialPortThatDidNotClose) {
    OpenSerialLink();
    os.Fail("ClosePort", 6);
    EXPECT_EQ(0, ClosePrinter());
    EXPECT_EQ(1, InitWlanPrinter(u"printer", 9100, 0, 0));
    os.ForgetCalls();
    EXPECT_EQ(1, ClosePrinter());
    EXPECT_EQ(0u, os.CountOf("ClosePort"));
    EXPECT_EQ(1u, os.CountOf("CloseSocket"));
    keptPorts = 1;
}

TEST_F(ConnectionTest, TheRestOfASerialCloseIsNotTested) {
    OpenSerialLink();
    os.Fail("SetPortEvents", 1);
    os.FailAlways("SignalPort", 1);
    os.FailAlways("PurgePort", 1);
    EXPECT_EQ(1, ClosePrinter());
    EXPECT_EQ(0u, LastLinkError);
    ExpectClosedAndPutBack();
}

TEST_F(ConnectionTest, ClosingAWirelessLinkTakesItsStepsInOrder) {
    OpenWirelessLink();
    EXPECT_EQ(1, ClosePrinter());
    EXPECT_THAT(os.Calls(), ElementsAreArray(kCloseWireless));
}

TEST_F(ConnectionTest, ClosingAWirelessLinkPutsTheStateBack) {
    OpenWirelessLink();
    DirtyTheState();
    EXPECT_EQ(1, ClosePrinter());
    ExpectClosedAndPutBack();
    EXPECT_EQ(nullptr, WirelessSocket);
    EXPECT_EQ(77u, LastLinkError);
}

TEST_F(ConnectionTest, ClosingAWirelessLinkClearsTheFlagFirst) {
    OpenWirelessLink();
    os.OnCall("ThreadExitCode", [] {
        EXPECT_EQ(0, WirelessLinkOpen);
        EXPECT_EQ(3, LinkSocket);
        EXPECT_EQ(1, ReceiveThreadRunning);
    });
    os.OnCall("TerminateThread", [] { EXPECT_EQ(0, ReceiveThreadRunning); });
    os.OnCall("StopSocketSupport", [] { EXPECT_EQ(0, LinkSocket); });
    EXPECT_EQ(1, ClosePrinter());
}

TEST_F(ConnectionTest, AWirelessReceiveThreadThatHasEndedIsNotTerminated) {
    OpenWirelessLink();
    os.EndThread(0, 1);
    EXPECT_EQ(1, ClosePrinter());
    EXPECT_EQ(0u, os.CountOf("TerminateThread"));
}

TEST_F(ConnectionTest, ASocketThatDoesNotCloseIsNotReported) {
    OpenWirelessLink();
    os.Fail("CloseSocket", 1);
    EXPECT_EQ(1, ClosePrinter());
    EXPECT_EQ(0u, LastLinkError);
    ExpectClosedAndPutBack();
}

TEST_F(ConnectionTest, ALinkIsClosedOnce) {
    OpenSerialLink();
    EXPECT_EQ(1, ClosePrinter());
    EXPECT_EQ(0, ClosePrinter());
    OpenWirelessLink();
    EXPECT_EQ(1, ClosePrinter());
    EXPECT_EQ(0, ClosePrinter());
}

TEST_F(ConnectionTest, ClosePrinterConnectionIsClosePrinter) {
    EXPECT_EQ(0, ClosePrinterConnection());
    OpenSerialLink();
    EXPECT_EQ(1, ClosePrinterConnection());
    EXPECT_THAT(os.Calls(), ElementsAreArray(kCloseSerial));
    EXPECT_EQ(0, ClosePrinterConnection());
}

TEST_F(ConnectionTest, ClosingKeepsFramedMode) {
    OpenSerialLink(1);
    EXPECT_EQ(1, ClosePrinter());
    EXPECT_EQ(1, FramedMode);
}

TEST_F(ConnectionTest, ASerialFlagWithoutAPortIsNoSerialLink) {
    SerialLinkOpen = 1;
    EXPECT_EQ(0, ClosePrinter());
    EXPECT_THAT(os.Calls(), IsEmpty());
    SerialLinkOpen = 0;
}

TEST_F(ConnectionTest, ThePortHandleIsThatOfTheOpenSerialPort) {
    EXPECT_EQ(NADREL_INVALID_HANDLE, GetPortHandle());
    OpenSerialLink();
    EXPECT_EQ(3, GetPortHandle());
    ClosePrinter();
    EXPECT_EQ(NADREL_INVALID_HANDLE, GetPortHandle());
    OpenWirelessLink();
    EXPECT_EQ(NADREL_INVALID_HANDLE, GetPortHandle());
}

TEST_F(ConnectionTest, ATimeoutStandsForAtLeastOneAttempt) {
    EXPECT_EQ(1, AttemptsWithin(INT32_MIN));
    EXPECT_EQ(1, AttemptsWithin(0));
    EXPECT_EQ(1, AttemptsWithin(199));
    EXPECT_EQ(1, AttemptsWithin(200));
    EXPECT_EQ(1, AttemptsWithin(399));
    EXPECT_EQ(2, AttemptsWithin(400));
    EXPECT_EQ(2, AttemptsWithin(450));
    EXPECT_EQ(10737418, AttemptsWithin(INT32_MAX));
}

TEST_F(ConnectionTest, AFailedConnectKeepsTheReasonBeforeItCloses) {
    OpenSerialLink();
    os.Fail("GetModemStatus", 31);
    uint32_t status = 0;
    platform::GetModemStatus(3, status);
    EXPECT_EQ(-9, FailConnect(-9));
    EXPECT_EQ(31u, LastLinkError);
    EXPECT_FALSE(LinkIsOpen());
}

TEST_F(ConnectionTest, ClosingWaitsForACallThatIsSending) {
    OpenSerialLink();
    FillSpool(5);
    SendingCalls.Add(1);
    os.OnCall(
        "Sleep",
        [] {
            EXPECT_EQ(5, SpoolLength);
            EXPECT_NE(nullptr, ConversionBuffer);
            SendingCalls.Add(-1);
        },
        4);
    EXPECT_EQ(1, ClosePrinter());
    EXPECT_THAT(os.CallsOf({"Sleep"}), ElementsAre("Sleep(10)", "Sleep(1)", "Sleep(1)", "Sleep(1)"));
    ExpectClosedAndPutBack();
}

} // namespace
} // namespace nadrel
