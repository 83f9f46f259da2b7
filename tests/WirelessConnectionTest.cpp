#include "tests/WirelessConnectionTest.h"
#include "link/ReceiveThread.h"
#include "link/ResponseParser.h"

namespace nadrel {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

int32_t Init(int32_t framed) {
    return InitWlanPrinter(u"printer", 9100, 1000, framed);
}
int32_t Connect(int32_t framed) {
    return ConnectWirelessPrinter(u"printer", 9100, 200, framed);
}

struct Variant {
    std::string name;
    int32_t (*connect)(int32_t framed);
    Calls toSelect;

    friend void PrintTo(const Variant &variant, std::ostream *out) { *out << variant.name; }
};

const Variant kVariants[] = {
    {"InitWlanPrinter", Init, kInitToSelect},
    {"ConnectWirelessPrinter", Connect, Calls{"CreateTimedEvent()"} + kSocket + kAttempt},
};

class EveryWirelessConnectTest : public WirelessConnectionTest, public testing::WithParamInterface<Variant> {
  protected:
    int32_t Connect(int32_t framed = 0) const { return GetParam().connect(framed); }
};

INSTANTIATE_TEST_SUITE_P(By, EveryWirelessConnectTest, testing::ValuesIn(kVariants),
                         [](const auto &variant) { return variant.param.name; });

TEST_P(EveryWirelessConnectTest, TakesItsStepsInOrder) {
    EXPECT_EQ(1, Connect());
    EXPECT_THAT(Steps(),
                ElementsAreArray(GetParam().toSelect + Calls{"IOCtl(3, nonBlocking, 0)"} + kThreads));
    EXPECT_EQ(1, WirelessLinkOpen);
    EXPECT_EQ(0, SerialLinkOpen);
    EXPECT_EQ(3, LinkSocket);
    EXPECT_EQ(0xC0DEu, NotifyMessageId);
    EXPECT_EQ(NADREL_INVALID_HANDLE, GetPortHandle());
}

TEST_P(EveryWirelessConnectTest, HasEverythingInPlaceWhenTheReceiveThreadStarts) {
    os.OnCall("StartThread", [] {
        EXPECT_EQ(1, WirelessLinkOpen);
        EXPECT_EQ(3, LinkSocket);
        EXPECT_EQ(1, ReceiveThreadRunning);
        EXPECT_EQ(0xC0DEu, NotifyMessageId);
        EXPECT_NE(nullptr, ConversionBuffer);
        ASSERT_NE(nullptr, ReceiveQueue);
        EXPECT_EQ(0, ReceiveQueue->Count());
    });
    EXPECT_EQ(1, Connect());
    EXPECT_THAT(os.StartedThreads(), ElementsAre(ReceiveThreadBody, ParserThreadBody));
}

TEST_P(EveryWirelessConnectTest, SendsNothingOnAPlainLink) {
    FramedMode = 1;
    EXPECT_EQ(1, Connect());
    EXPECT_EQ(0, FramedMode);
    EXPECT_THAT(WrittenHex(), IsEmpty());
}

TEST_P(EveryWirelessConnectTest, AsksWithTheQueryFrameOnAFramedLink) {
    os.OnCall(
        "Sleep", [] { FramedStatusSeen = 1; }, 2);
    EXPECT_EQ(1, Connect(8));
    EXPECT_EQ(8, FramedMode);
    EXPECT_THAT(os.CallsOf({"Send", "Sleep"}),
                ElementsAre("Send(3, 00 C0 51 C1)", "Sleep(400)", "Send(3, 00 C0 51 C1)", "Sleep(400)"));
}

TEST_P(EveryWirelessConnectTest, GivesMinus5AndClosesWhenAFramedPrinterIsSilent) {
    LastLinkError = 77;
    EXPECT_EQ(-5, Connect(1));
    const std::string query = "Send(3, 00 C0 51 C1)";
    EXPECT_THAT(os.CallsOf({"Send", "Sleep", "CloseSocket"}),
                ElementsAre(query, "Sleep(400)", query, "Sleep(400)", query, "Sleep(400)", query,
                            "Sleep(400)", "CloseSocket(3)"));
    ExpectClosed();
    EXPECT_EQ(77u, LastLinkError);
}

TEST_P(EveryWirelessConnectTest, DoesNotTestWhetherTheSocketCouldBeCreated) {
    os.Fail("Create", 10050);
    os.Answer("IOCtl", {.result = 1});
    EXPECT_THAT(Connect(), testing::AnyOf(-1, -2));
    EXPECT_EQ(1u, os.CountOf("Connect"));
    EXPECT_EQ(1u, os.CountOf("SelectWritable"));
    ExpectClosed();
}

TEST_P(EveryWirelessConnectTest, GoesOnWithoutARingWhenThereIsNoMemoryForIt) {
    if (!allocation::CanFail())
        GTEST_SKIP();
    allocation::FailNext(sizeof(ReceiveRing), sizeof(ReceiveRing));
    EXPECT_EQ(1, Connect());
    EXPECT_EQ(nullptr, ReceiveQueue);
    EXPECT_EQ(1, ClosePrinter());
}

TEST_P(EveryWirelessConnectTest, Gives0AndClosesWithoutMemoryForTheSocket) {
    if (!allocation::CanFail())
        GTEST_SKIP();
    allocation::FailNext(sizeof(MySocket), sizeof(MySocket));
    EXPECT_EQ(0, Connect());
    EXPECT_EQ(0u, os.CountOf("Create"));
    ExpectClosed();
}

TEST_P(EveryWirelessConnectTest, Gives0WhenTheSystemRunsOutOfMemoryAndGivesTheSocketBackAtTheNextConnect) {
    os.OnCall("Connect", [] { throw std::bad_alloc(); });
    EXPECT_EQ(0, Connect());
    EXPECT_FALSE(LinkIsOpen());
    EXPECT_EQ(1, Connect());
    EXPECT_EQ(1, os.OpenSockets());
    EXPECT_EQ(1, os.SocketSupport());
    EXPECT_EQ(1, ClosePrinter());
    ExpectClosed();
}

TEST_P(EveryWirelessConnectTest, GoesOnWithoutThreadsWhenTheSystemHasNone) {
    os.FailAlways("StartThread", 11);
    EXPECT_EQ(1, Connect());
    EXPECT_EQ(1, ClosePrinter());
}

TEST_P(EveryWirelessConnectTest, ShowsAnErrorOfSocketSupportAtTheSocketOnly) {
    os.Fail("StartSocketSupport", 10091);
    EXPECT_THAT(Connect(), testing::AnyOf(-1, -2));
    EXPECT_EQ(1u, os.CountOf("Create"));
    ExpectClosed();
}

TEST_P(EveryWirelessConnectTest, CountsAnewWhatBecomesOfTheBytes) {
    Counters.bytesAsked = 5;
    Counters.bytesDropped = 6;
    EXPECT_EQ(1, Connect());
    EXPECT_EQ(0u, Counters.bytesAsked);
    EXPECT_EQ(0u, Counters.bytesDropped);
}

TEST_P(EveryWirelessConnectTest, TakesASocketWhoseHandleIsZero) {
    os.SetNextHandle(0);
    EXPECT_EQ(1, Connect());
    CardCancel();
    EXPECT_THAT(os.CallsOf({"SelectWritable"}), ElementsAre(testing::StartsWith("SelectWritable(1, 0, ")));
    EXPECT_THAT(os.CallsOf({"Send"}), ElementsAre("Send(0, 04)"));
    EXPECT_EQ(1, ClosePrinter());
    EXPECT_EQ(1u, os.CountOf("CloseSocket"));
}

TEST_P(EveryWirelessConnectTest, OpensAgainAfterACloseAnyNumberOfTimes) {
    for (int round = 0; round < 100; ++round) {
        ASSERT_EQ(1, Connect());
        ASSERT_EQ(1, os.SocketSupport());
        ASSERT_EQ(1, ClosePrinter());
        ExpectClosed();
    }
}

TEST_P(EveryWirelessConnectTest, OpensAfterAFailure) {
    os.FailAlways("SelectWritable", kInvalid);
    EXPECT_LT(Connect(), 0);
    os.ForgetScript();
    EXPECT_EQ(1, Connect());
    EXPECT_EQ(4, LinkSocket);
}

TEST_P(EveryWirelessConnectTest, SurvivesTheFailureOfAnyOneCall) {
    for (int nth = 1; nth <= 20; ++nth) {
        SCOPED_TRACE("call " + std::to_string(nth) + " fails");
        os.Reset();
        os.FailCall(nth, 5);
        EXPECT_THAT(Connect(1), testing::AnyOf(-1, -2, -5, -7));
        ExpectClosed();
        EXPECT_EQ(0, ClosePrinter());
    }
    os.ForgetScript();
}

TEST_F(WirelessConnectionTest, InitRefusesWithMinus3WhileALinkIsOpen) {
    OpenSerialLink();
    FramedMode = 1;
    FillSpool(5);
    EXPECT_EQ(-3, InitWlanPrinter(u"printer", 9100, 1000, 0));
    EXPECT_EQ(1, SerialLinkOpen);
    EXPECT_EQ(3, GetPortHandle());
    ClosePrinter();
    os.ForgetCalls();
    OpenWirelessLink();
    FramedMode = 1;
    FillSpool(5);
    EXPECT_EQ(-3, InitWlanPrinter(u"printer", 9100, 1000, 0));
    EXPECT_EQ(1, WirelessLinkOpen);
    EXPECT_THAT(os.Calls(), IsEmpty());
    EXPECT_EQ(1, FramedMode);
    EXPECT_EQ(5, SpoolLength);
    EXPECT_EQ(0u, LastLinkError);
}

TEST_F(WirelessConnectionTest, ConnectRefusesWithMinus1WhileALinkIsOpen) {
    OpenSerialLink();
    FramedMode = 1;
    FillSpool(5);
    EXPECT_EQ(-1, ConnectWirelessPrinter(u"printer", 9100, 1000, 0));
    EXPECT_THAT(os.Calls(), ElementsAre("CreateTimedEvent()", "CloseTimedEvent()"));
    EXPECT_EQ(1, SerialLinkOpen);
    EXPECT_EQ(3, GetPortHandle());
    EXPECT_EQ(1, FramedMode);
    EXPECT_EQ(5, SpoolLength);
    ClosePrinter();
    OpenWirelessLink();
    EXPECT_EQ(-1, ConnectWirelessPrinter(u"printer", 9100, 1000, 0));
    EXPECT_EQ(1, WirelessLinkOpen);
}

TEST_F(WirelessConnectionTest, InitPutsNoStateBack) {
    FillSpool(5);
    PageModeFlag = 1;
    MacroStartMark = 3;
    ModelNamePending = 1;
    EXPECT_EQ(1, InitWlanPrinter(u"printer", 9100, 1000, 0));
    EXPECT_EQ("78 78 78 78 78", SpoolHex());
    EXPECT_EQ(1, PageModeFlag);
    EXPECT_EQ(3, MacroStartMark);
    EXPECT_EQ(1, ModelNamePending);
}

TEST_F(WirelessConnectionTest, InitThatFailsPutsNoStateBackEither) {
    FillSpool(5);
    PageModeFlag = 1;
    os.FailAlways("SelectWritable", kInvalid);
    EXPECT_EQ(-1, InitWlanPrinter(u"printer", 9100, 1000, 1));
    EXPECT_EQ(5, SpoolLength);
    EXPECT_EQ(1, PageModeFlag);
    EXPECT_EQ(1, FramedMode);
}

TEST_F(WirelessConnectionTest, ConnectPutsTheStateBackBeforeItMakesTheSocket) {
    FillSpool(5);
    PageModeFlag = 1;
    MacroStartMark = 3;
    os.OnCall("Create", [] {
        EXPECT_EQ(0, SpoolLength);
        EXPECT_TRUE(IsAllZero(SpoolBuffer));
        EXPECT_EQ(0, PageModeFlag);
        EXPECT_EQ(0, MacroStartMark);
        EXPECT_EQ(4, FramedMode);
    });
    os.OnCall("Sleep", [] { FramedStatusSeen = 1; });
    EXPECT_EQ(1, ConnectWirelessPrinter(u"printer", 9100, 200, 4));
}

TEST_F(WirelessConnectionTest, InitWaitsForWholeSeconds) {
    const struct {
        int32_t timeout;
        const char *seconds;
    } cases[] = {{0, "0 s"},    {1, "0 s"},    {999, "0 s"},  {1000, "1 s"},
                 {1999, "1 s"}, {2000, "2 s"}, {-999, "0 s"}, {INT32_MAX, "2147483 s"}};
    for (const auto &one : cases) {
        os.ForgetCalls();
        EXPECT_EQ(1, InitWlanPrinter(u"printer", 9100, one.timeout, 0));
        EXPECT_THAT(os.CallsOf({"SelectWritable"}),
                    ElementsAre(testing::HasSubstr(std::string(", ") + one.seconds + " 0 us)")));
        ClosePrinter();
    }
}

TEST_F(WirelessConnectionTest, InitPassesTheAddressAndThePortOn) {
    EXPECT_EQ(1, InitWlanPrinter(u"192.168.0.77", 65536, 0, 0));
    EXPECT_THAT(os.CallsOf({"Connect"}), ElementsAre("Connect(3, \"192.168.0.77\", 65536)"));
}

TEST_F(WirelessConnectionTest, ANullAddressIsAHostThatIsNotFound) {
    os.Answer("SelectWritable", {.result = 0});
    EXPECT_EQ(-2, InitWlanPrinter(nullptr, 9100, 0, 0));
    os.Answer("SelectWritable", {.result = 0});
    EXPECT_EQ(-7, ConnectWirelessPrinter(nullptr, 9100, 0, 0));
    EXPECT_THAT(os.CallsOf({"Connect"}), ElementsAre("Connect(3, null, 9100)", "Connect(4, null, 9100)"));
}

} // namespace
} // namespace nadrel
