#pragma once

#include "tests/LibraryTest.h"

// What closing a link does and leaves.
namespace nadrel {

class ConnectionTest : public LibraryTest {
  protected:
    void DirtyTheState() {
        FillSpool(5);
        PageModeFlag = 1;
        MacroStartMark = 2;
        StatusPending = 1;
        ResponseLength = 7;
        LastLinkError = 77;
    }

    void ExpectClosedAndPutBack() {
        EXPECT_FALSE(LinkIsOpen());
        EXPECT_EQ(NADREL_INVALID_HANDLE, GetPortHandle());
        EXPECT_EQ(0, LinkSocket);
        EXPECT_EQ(nullptr, ConversionBuffer);
        EXPECT_EQ(nullptr, ReceiveQueue);
        EXPECT_EQ(0, SpoolLength);
        EXPECT_TRUE(IsAllZero(SpoolBuffer));
        EXPECT_EQ(0, PageModeFlag);
        EXPECT_EQ(0, MacroStartMark);
        EXPECT_EQ(0, StatusPending);
        EXPECT_EQ(0, ResponseLength);
        EXPECT_EQ(1, ReceiveThreadRunning);
    }
};

inline const Calls kCloseSerial = {
    "SetPortEvents(3, none)",       "Sleep(10)",
    "ThreadExitCode(thread 1)",     "TerminateThread(thread 1, 0)",
    "TerminateThread(thread 2, 0)", "DeleteThread(thread 2)",
    "DeleteThread(thread 1)",       "ClosePort(3)",
    "CloseNotifications()",         "SignalPort(3, clearDtr)",
    "SignalPort(3, clearRts)",      "PurgePort(3, 15)",
};

inline const Calls kCloseWireless = {
    "ThreadExitCode(thread 1)", "TerminateThread(thread 1, 0)", "TerminateThread(thread 2, 0)",
    "DeleteThread(thread 2)",   "DeleteThread(thread 1)",       "CloseSocket(3)",
    "DestroySocket(3)",         "StopSocketSupport()",          "CloseNotifications()",
};

} // namespace nadrel
