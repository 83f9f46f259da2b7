#include "tests/ConnectionTest.h"

#include <iterator>
#include <thread>

namespace nadrel {
namespace {

using testing::ElementsAreArray;

// A printer that takes nothing, and a handler that closes the link on another thread.
class BlockedSendTest : public ConnectionTest {
  protected:
    // Holds the next write until another thread has closed port or socket.
    void CloseDuring(const std::string &write) {
        os.OnCall(write, [this] {
            handler = std::thread([this] {
                const scripted::WithinHandler within;
                closed = ClosePrinter();
            });
            while (os.OpenPorts() + os.OpenSockets() != 0)
                std::this_thread::yield();
        });
    }

    std::thread handler;
    int32_t closed = -1;
};

TEST_F(BlockedSendTest, AHandlerThatClosesASerialLinkReleasesAPrint) {
    OpenSerialLink();
    FillSpool(5);
    CloseDuring("WritePort");
    EXPECT_EQ(1, PrintSpool(1));
    handler.join();
    EXPECT_EQ(1, closed);
    ExpectClosedAndPutBack();
    EXPECT_EQ(scripted::kBadHandle, LastLinkError);
}

TEST_F(BlockedSendTest, AHandlerThatClosesAWirelessLinkReleasesAPrint) {
    OpenWirelessLink();
    FillSpool(5);
    CloseDuring("Send");
    EXPECT_EQ(1, PrintSpool(1));
    handler.join();
    EXPECT_EQ(1, closed);
    ExpectClosedAndPutBack();
    EXPECT_EQ(scripted::kBadHandle, LastLinkError);
}

TEST_F(BlockedSendTest, AHandlerThatClosesReleasesAStatusQuery) {
    OpenWirelessLink();
    CloseDuring("Send");
    EXPECT_EQ(-7, GetPrinterStatus(1000));
    handler.join();
    EXPECT_EQ(1, closed);
    EXPECT_EQ(1u, os.CountOf("Send"));
    ExpectClosedAndPutBack();
}

// While the host is in the middle of closing: it waits for a handler that is running, which therefore must
// not wait for it.
class ConcurrentCloseTest : public ConnectionTest {
  protected:
    // Closes, and has something done meanwhile, at the named step.
    void CloseAnd(const std::string &step, const scripted::Hook &hook) {
        bool done = false;
        os.OnCall(step, [&] {
            hook();
            done = true;
        });
        EXPECT_EQ(1, ClosePrinter());
        EXPECT_TRUE(done) << step;
    }
};

const char *const kSerialSteps[] = {"SetPortEvents", "Sleep",     "ThreadExitCode",     "TerminateThread",
                                    "DeleteThread",  "ClosePort", "CloseNotifications", "PurgePort"};
const char *const kWirelessSteps[] = {"ThreadExitCode", "TerminateThread",   "DeleteThread",
                                      "CloseSocket",    "StopSocketSupport", "CloseNotifications"};

void CloseFromAHandler() {
    const scripted::WithinHandler handler;
    EXPECT_EQ(0, ClosePrinter());
}

void ExpectEveryConnectRefused() {
    EXPECT_EQ(-1, InitPrinter(u"COM2", 9600, 0));
    EXPECT_EQ(-1, ConnectSerialPrinter(u"COM2", 9600, 0, 0));
    EXPECT_EQ(-1, ConnectSerialPrinterEx("COM2", 9600, 8, 0, 0, 0, 0));
    EXPECT_EQ(-3, InitWlanPrinter(u"printer", 9100, 0, 0));
    EXPECT_EQ(-1, ConnectWirelessPrinter(u"printer", 9100, 0, 0));
}

TEST_F(ConcurrentCloseTest, AHandlerThatClosesASerialLinkMeanwhileGets0AndDoesNothing) {
    for (const char *step : kSerialSteps) {
        OpenSerialLink();
        CloseAnd(step, CloseFromAHandler);
        EXPECT_THAT(os.Calls(), ElementsAreArray(kCloseSerial)) << step;
        os.Reset();
    }
}

TEST_F(ConcurrentCloseTest, AHandlerThatClosesAWirelessLinkMeanwhileGets0AndDoesNothing) {
    for (const char *step : kWirelessSteps) {
        OpenWirelessLink();
        CloseAnd(step, CloseFromAHandler);
        EXPECT_THAT(os.Calls(), ElementsAreArray(kCloseWireless)) << step;
        os.Reset();
    }
}

TEST_F(ConcurrentCloseTest, NoLinkIsOpenedWhileASerialOneIsBeingClosed) {
    for (const char *step : kSerialSteps) {
        OpenSerialLink();
        CloseAnd(step, ExpectEveryConnectRefused);
        EXPECT_EQ(0u, os.CountOf("OpenPort")) << step;
        EXPECT_EQ(0u, os.CountOf("Create")) << step;
        ExpectClosedAndPutBack();
        os.Reset();
    }
}

TEST_F(ConcurrentCloseTest, NoLinkIsOpenedWhileAWirelessOneIsBeingClosed) {
    for (const char *step : kWirelessSteps) {
        OpenWirelessLink();
        CloseAnd(step, ExpectEveryConnectRefused);
        EXPECT_EQ(0u, os.CountOf("OpenPort")) << step;
        EXPECT_EQ(0u, os.CountOf("Create")) << step;
        ExpectClosedAndPutBack();
        os.Reset();
    }
}

TEST_F(ConcurrentCloseTest, ALinkCanBeOpenedAfterACloseThatFailed) {
    OpenSerialLink();
    os.Fail("ClosePort", 6);
    EXPECT_EQ(0, ClosePrinter());
    EXPECT_EQ(1, InitPrinter(u"COM2", 9600, 0));
    keptPorts = 1;
}

TEST_F(ConcurrentCloseTest, AThreadThatIsNoHandlerWaitsUntilTheLinkIsClosed) {
    OpenWirelessLink();
    std::thread other;
    CloseAnd("CloseSocket", [&] {
        other = std::thread([this] {
            EXPECT_EQ(0, ClosePrinter());
            EXPECT_EQ(nullptr, ReceiveQueue);
            EXPECT_EQ(0, os.LiveThreads());
            EXPECT_EQ(1u, os.CountOf("CloseNotifications"));
        });
        while (os.CountOf("Sleep") == 0)
            std::this_thread::yield();
    });
    other.join();
}

TEST_F(ConcurrentCloseTest, OfTwoThreadsThatCloseOneClosesTheLink) {
    for (int round = 0; round < 50; ++round) {
        if (round % 2 == 0)
            OpenSerialLink();
        else
            OpenWirelessLink();
        int32_t results[2] = {};
        std::thread other([&results] { results[0] = ClosePrinter(); });
        results[1] = ClosePrinter();
        EXPECT_EQ(nullptr, ReceiveQueue);
        other.join();
        EXPECT_EQ(1, results[0] + results[1]);
        EXPECT_EQ(0, os.LiveThreads());
    }
}

TEST_F(ConcurrentCloseTest, AStatusQueryEndsWhenAHandlerClosesTheLink) {
    OpenSerialLink();
    os.OnCall(
        "Wait", [] { EXPECT_EQ(1, ClosePrinter()); }, 2);
    EXPECT_EQ(-7, GetPrinterStatus(1000));
    EXPECT_EQ(2u, os.CountOf("WritePort"));
    EXPECT_EQ(2u, os.CountOf("Wait"));
}

} // namespace
} // namespace nadrel
