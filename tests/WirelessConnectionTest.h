#pragma once

#include "tests/LibraryTest.h"

// The steps that both wireless connects have in common.
namespace nadrel {

inline constexpr uint32_t kRefused = 10061;
inline constexpr uint32_t kInvalid = 10022;

inline const Calls kSocket = {"StartSocketSupport()", "Create(0, 1, 63, null)", "IOCtl(3, nonBlocking, 1)"};
inline const Calls kThreads = {"RegisterNotification(\"NADREL_PRT_OK\")", "OpenNotifications()",
                               "StartThread(highest)", "StartThread(normal)"};
inline const Calls kDisposal = {"DestroySocket(3)", "StopSocketSupport()"};

inline const Calls kInitToSelect =
    kSocket + Calls{"Connect(3, \"printer\", 9100)", "SelectWritable(4, 3, 1 s 0 us)"};
inline const Calls kAttempt = {"Wait(200)", "Connect(3, \"printer\", 9100)",
                               "SelectWritable(4, 3, 0 s 200 us)"};

class WirelessConnectionTest : public LibraryTest {
  protected:
    void ExpectClosed() const {
        EXPECT_FALSE(LinkIsOpen());
        EXPECT_EQ(0, LinkSocket);
        EXPECT_EQ(nullptr, WirelessSocket);
        EXPECT_EQ(nullptr, ConversionBuffer);
        EXPECT_EQ(nullptr, ReceiveQueue);
        EXPECT_EQ(0, os.OpenSockets());
        EXPECT_EQ(0, os.SocketSupport());
        EXPECT_EQ(0, os.LiveThreads());
    }
};

} // namespace nadrel
