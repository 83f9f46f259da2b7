#include "link/ReceiveThread.h"
#include "link/ResponseParser.h"
#include "tests/LibraryTest.h"

namespace nadrel {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

constexpr uint32_t kAccessDenied = 5;

// The three functions in the form of their differences.
struct Variant {
    std::string name;
    int32_t (*connect)(int32_t framed);
    Calls before; // up to the opened port
    Calls eventsAndPurge;
    std::string timeouts;
    bool newer;

    friend void PrintTo(const Variant &variant, std::ostream *out) { *out << variant.name; }
};

int32_t Init(int32_t framed) {
    return InitPrinter(u"COM1", 115200, framed);
}
int32_t Connect(int32_t framed) {
    return ConnectSerialPrinter(u"COM1", 115200, 200, framed);
}
int32_t ConnectEx(int32_t framed) {
    return ConnectSerialPrinterEx("COM1", 115200, 8, 0, 0, 200, framed);
}

const Calls kOpenAfterPause = {"CreateTimedEvent()", "Wait(200)", "OpenPort(\"COM1\", 0x40000080)"};
const Calls kEventsAndPurge = {"SetPortEvents(3, received)", "PurgePort(3, 15)"};

const Variant kVariants[] = {
    {"InitPrinter", Init, {"OpenPort(\"COM1\", 0x80)"}, {}, "65535 100 10 100 0", false},
    {"ConnectSerialPrinter", Connect, kOpenAfterPause, kEventsAndPurge, "65535 100 10 100 0", true},
    {"ConnectSerialPrinterEx", ConnectEx, kOpenAfterPause, kEventsAndPurge, "65535 100 100 100 0", true},
};

Calls ToTheSettings(const Variant &variant) {
    return variant.before +
           Calls{"GetLineSettings(3)", "SetLineSettings(3, baud=115200 size=8 parity=0 stop=0)"};
}

Calls ToTheTimeouts(const Variant &variant) {
    return ToTheSettings(variant) + variant.eventsAndPurge +
           Calls{"GetPortTimeouts(3)", "SetPortTimeouts(3, " + variant.timeouts + ")"};
}

Calls ToTheThreads(const Variant &variant) {
    return ToTheTimeouts(variant) +
           Calls{"SignalPort(3, setDtr)", "SignalPort(3, setRts)", "RegisterNotification(\"NADREL_PRT_OK\")",
                 "OpenNotifications()",   "StartThread(highest)",  "StartThread(normal)"};
}

class EverySerialConnectTest : public LibraryTest, public testing::WithParamInterface<Variant> {
  protected:
    int32_t Connect(int32_t framed = 0) const { return GetParam().connect(framed); }
};

INSTANTIATE_TEST_SUITE_P(By, EverySerialConnectTest, testing::ValuesIn(kVariants),
                         [](const auto &variant) { return variant.param.name; });

TEST_P(EverySerialConnectTest, TakesItsStepsInOrder) {
    EXPECT_EQ(1, Connect());
    EXPECT_THAT(Steps(), ElementsAreArray(ToTheThreads(GetParam())));
    EXPECT_EQ(1, SerialLinkOpen);
    EXPECT_EQ(0, WirelessLinkOpen);
    EXPECT_EQ(3, GetPortHandle());
    EXPECT_EQ(0xC0DEu, NotifyMessageId);
}

TEST_P(EverySerialConnectTest, RefusesWhileASerialLinkIsOpen) {
    OpenSerialLink();
    FillSpool(5);
    LastLinkError = 77;
    EXPECT_EQ(-1, Connect());
    EXPECT_THAT(Steps(), ElementsAreArray(GetParam().newer ? Calls{"CreateTimedEvent()"} : Calls{}));
    EXPECT_EQ(5, SpoolLength);
    EXPECT_EQ(3, GetPortHandle());
    EXPECT_EQ(1, SerialLinkOpen);
    EXPECT_EQ(77u, LastLinkError);
}

TEST_P(EverySerialConnectTest, RefusesWhileAWirelessLinkIsOpen) {
    OpenWirelessLink();
    FillSpool(5);
    EXPECT_EQ(-1, Connect());
    EXPECT_THAT(Steps(), ElementsAreArray(GetParam().newer ? Calls{"CreateTimedEvent()"} : Calls{}));
    EXPECT_EQ(5, SpoolLength);
    EXPECT_EQ(1, WirelessLinkOpen);
    EXPECT_EQ(0, SerialLinkOpen);
    EXPECT_EQ(3, LinkSocket);
}

TEST_P(EverySerialConnectTest, PutsTheStateBackBeforeItOpensThePort) {
    FillSpool(5);
    PageModeFlag = 1;
    MacroStartMark = 3;
    StatusPending = 1;
    os.OnCall("OpenPort", [] {
        EXPECT_EQ(0, SpoolLength);
        EXPECT_TRUE(IsAllZero(SpoolBuffer));
        EXPECT_EQ(0, PageModeFlag);
        EXPECT_EQ(0, MacroStartMark);
        EXPECT_EQ(0, StatusPending);
        EXPECT_EQ(0, SerialLinkOpen);
    });
    EXPECT_EQ(1, Connect());
    EXPECT_EQ(1u, os.CountOf("OpenPort"));
}

TEST_P(EverySerialConnectTest, GivesMinus2WhenThePortCannotBeOpened) {
    os.FailAlways("OpenPort", kAccessDenied);
    EXPECT_EQ(-2, Connect());
    EXPECT_THAT(Steps(), ElementsAreArray(GetParam().before));
    EXPECT_EQ(kAccessDenied, LastLinkError);
    EXPECT_FALSE(LinkIsOpen());
    EXPECT_EQ(NADREL_INVALID_HANDLE, GetPortHandle());
    EXPECT_EQ(nullptr, ConversionBuffer);
    EXPECT_EQ(nullptr, ReceiveQueue);
}

TEST_P(EverySerialConnectTest, GivesMinus3WhenThePortDoesNotTakeItsSettings) {
    os.Fail("SetLineSettings", 87);
    EXPECT_EQ(-3, Connect());
    EXPECT_THAT(Steps(), ElementsAreArray(ToTheSettings(GetParam())));
    EXPECT_EQ(87u, LastLinkError);
    EXPECT_FALSE(LinkIsOpen());
    EXPECT_EQ(nullptr, ConversionBuffer);
    keptPorts = 1;
}

TEST_P(EverySerialConnectTest, GivesMinus4WhenThePortDoesNotTakeItsTimeouts) {
    os.Fail("SetPortTimeouts", 88);
    EXPECT_EQ(-4, Connect());
    EXPECT_THAT(Steps(), ElementsAreArray(ToTheTimeouts(GetParam())));
    EXPECT_EQ(88u, LastLinkError);
    EXPECT_FALSE(LinkIsOpen());
    EXPECT_EQ(nullptr, ConversionBuffer);
    keptPorts = 1;
}

TEST_P(EverySerialConnectTest, CannotOpenAPortAgainThatRefusedItsSettings) {
    os.Fail("SetLineSettings", 87);
    EXPECT_EQ(-3, Connect());
    EXPECT_EQ(3, GetPortHandle());
    EXPECT_EQ(0, ClosePrinter());
    EXPECT_EQ(0u, os.CountOf("ClosePort"));
    EXPECT_EQ(-2, Connect());
    EXPECT_EQ(NADREL_INVALID_HANDLE, GetPortHandle());
    keptPorts = 1;
}

TEST_P(EverySerialConnectTest, CannotOpenAPortAgainThatRefusedItsTimeouts) {
    os.Fail("SetPortTimeouts", 88);
    EXPECT_EQ(-4, Connect());
    EXPECT_EQ(0, ClosePrinter());
    EXPECT_EQ(0u, os.CountOf("ClosePort"));
    EXPECT_EQ(-2, Connect());
    keptPorts = 1;
}

TEST_P(EverySerialConnectTest, SetsEveryLineSettingThatItNames) {
    os.lineSettings = {.length = 1,
                       .baudRate = 300,
                       .binary = false,
                       .parityCheck = false,
                       .ctsFlow = true,
                       .dsrFlow = true,
                       .dtrControl = 2,
                       .dsrSensitivity = true,
                       .xonXoffOut = true,
                       .xonXoffIn = true,
                       .errorCharacter = true,
                       .dropNull = true,
                       .rtsControl = 2,
                       .abortOnError = true,
                       .byteSize = 7,
                       .parity = 2,
                       .stopBits = 2};
    EXPECT_EQ(1, Connect());
    const platform::LineSettings wanted = {.length = 28,
                                           .baudRate = 115200,
                                           .binary = true,
                                           .parityCheck = true,
                                           .ctsFlow = false,
                                           .dsrFlow = false,
                                           .dtrControl = 0,
                                           .dsrSensitivity = false,
                                           .xonXoffOut = false,
                                           .xonXoffIn = false,
                                           .errorCharacter = false,
                                           .dropNull = false,
                                           .rtsControl = 0,
                                           .abortOnError = false,
                                           .byteSize = 8,
                                           .parity = 0,
                                           .stopBits = 0};
    EXPECT_EQ(wanted, os.LineSettingsOf(3));
}

TEST_P(EverySerialConnectTest, DoesNotTestWhatItReadsSignalsAndPurges) {
    os.Fail("GetLineSettings", 1);
    os.Fail("GetPortTimeouts", 1);
    os.FailAlways("SignalPort", 1);
    if (GetParam().newer) {
        os.Fail("SetPortEvents", 1);
        os.Fail("PurgePort", 1);
    }
    EXPECT_EQ(1, Connect());
    EXPECT_THAT(Steps(), ElementsAreArray(ToTheThreads(GetParam())));
    EXPECT_EQ(0u, LastLinkError);
}

TEST_P(EverySerialConnectTest, HasEverythingInPlaceWhenTheReceiveThreadStarts) {
    ReceiveThreadRunning = 0;
    os.OnCall("StartThread", [] {
        EXPECT_EQ(1, SerialLinkOpen);
        EXPECT_EQ(3, SerialPortHandle);
        EXPECT_EQ(1, ReceiveThreadRunning);
        EXPECT_EQ(0xC0DEu, NotifyMessageId);
        EXPECT_NE(nullptr, ConversionBuffer);
        ASSERT_NE(nullptr, ReceiveQueue);
        EXPECT_EQ(0, ReceiveQueue->Count());
    });
    EXPECT_EQ(1, Connect());
}

TEST_P(EverySerialConnectTest, StartsTheReceiveThreadAndThenTheParserThread) {
    os.OnCall(
        "StartThread", [] { EXPECT_NE(nullptr, ReceiveThreadObject); }, 2);
    EXPECT_EQ(1, Connect());
    EXPECT_THAT(os.StartedThreads(), ElementsAre(ReceiveThreadBody, ParserThreadBody));
    EXPECT_NE(nullptr, ReceiveThreadObject);
    EXPECT_NE(nullptr, ParserThreadObject);
    EXPECT_NE(ReceiveThreadObject, ParserThreadObject);
}

TEST_P(EverySerialConnectTest, SendsNothingOnAPlainLink) {
    EXPECT_EQ(1, Connect());
    EXPECT_THAT(WrittenHex(), IsEmpty());
    EXPECT_EQ(0, FramedMode);
}

TEST_P(EverySerialConnectTest, AsksWithTheQueryFrameOnAFramedLink) {
    os.OnCall("Sleep", [] { FramedStatusSeen = 1; });
    EXPECT_EQ(1, Connect(7));
    EXPECT_THAT(Steps(), ElementsAreArray(ToTheThreads(GetParam()) +
                                          Calls{"WritePort(3, 00 C0 51 C1)", "Sleep(400)"}));
    EXPECT_EQ(7, FramedMode);
}

TEST_P(EverySerialConnectTest, GivesMinus5AndClosesWhenAFramedPrinterIsSilent) {
    EXPECT_EQ(-5, Connect(1));
    const std::string query = "WritePort(3, 00 C0 51 C1)";
    EXPECT_THAT(os.CallsOf({"WritePort", "Sleep", "ClosePort"}),
                ElementsAre(query, "Sleep(400)", query, "Sleep(400)", query, "Sleep(400)", query,
                            "Sleep(400)", "Sleep(10)", "ClosePort(3)"));
    EXPECT_FALSE(LinkIsOpen());
    EXPECT_EQ(NADREL_INVALID_HANDLE, GetPortHandle());
    EXPECT_EQ(nullptr, ConversionBuffer);
    EXPECT_EQ(nullptr, ReceiveQueue);
    EXPECT_EQ(1, FramedMode);
    EXPECT_EQ(0u, LastLinkError);
}

TEST_P(EverySerialConnectTest, GoesOnWithoutARingWhenThereIsNoMemoryForIt) {
    if (!allocation::CanFail())
        GTEST_SKIP();
    allocation::FailNext(sizeof(ReceiveRing), sizeof(ReceiveRing));
    EXPECT_EQ(1, Connect());
    EXPECT_EQ(nullptr, ReceiveQueue);
    EXPECT_EQ(1, ClosePrinter());
}

TEST_P(EverySerialConnectTest, GoesOnWithoutThreadsWhenTheSystemHasNone) {
    os.FailAlways("StartThread", 11);
    EXPECT_EQ(1, Connect());
    EXPECT_EQ(nullptr, ReceiveThreadObject);
    EXPECT_EQ(nullptr, ParserThreadObject);
    EXPECT_EQ(1, ClosePrinter());
}

TEST_P(EverySerialConnectTest, GoesOnWithoutAMessageNumber) {
    os.Fail("RegisterNotification", 1);
    EXPECT_EQ(1, Connect());
    EXPECT_EQ(0u, NotifyMessageId);
}

TEST_P(EverySerialConnectTest, CreatesAnEmptyConversionBuffer) {
    OpenSerialLink();
    U2A(u"left from the link before");
    ClosePrinter();
    EXPECT_EQ(nullptr, U2A(u"text"));
    EXPECT_EQ(1, Connect());
    const ConversionStorage *const buffer = ConversionBuffer;
    ASSERT_NE(nullptr, buffer);
    EXPECT_TRUE(std::all_of(buffer->At(0), buffer->At(409600), [](uint8_t byte) { return byte == 0; }));
}

TEST_P(EverySerialConnectTest, CountsAnewWhatBecomesOfTheBytes) {
    Counters.bytesAsked = 5;
    Counters.bytesReceived = 6;
    Counters.errorCount = 7;
    EXPECT_EQ(1, Connect());
    EXPECT_EQ(0u, Counters.bytesAsked);
    EXPECT_EQ(0u, Counters.bytesReceived);
    EXPECT_EQ(0u, Counters.errorCount);
}

TEST_P(EverySerialConnectTest, TakesAPortWhoseHandleIsZero) {
    os.SetNextHandle(0);
    EXPECT_EQ(1, Connect());
    EXPECT_EQ(0, GetPortHandle());
    CardCancel();
    EXPECT_THAT(os.CallsOf({"WritePort"}), ElementsAre("WritePort(0, 04)"));
    EXPECT_EQ(1, ClosePrinter());
    EXPECT_EQ(0, os.OpenPorts());
}

TEST_P(EverySerialConnectTest, OpensAgainAfterAClose) {
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(1, Connect());
        EXPECT_EQ(1, ClosePrinter());
    }
    EXPECT_EQ(0, os.OpenPorts());
    EXPECT_EQ(0, os.LiveThreads());
}

// What an earlier link that would not close has left in the queue is nothing that this printer has said.
TEST_P(EverySerialConnectTest, BeginsWithAnEmptyRingAfterACloseThatFailed) {
    OpenSerialLink();
    ReceiveQueue->Put('x');
    os.Fail("ClosePort", 6);
    EXPECT_EQ(0, ClosePrinter());
    os.ChangePort(3, [](scripted::Platform::Port &port) { port.open = false; });
    EXPECT_EQ(1, Connect());
    EXPECT_EQ(0, ReceiveQueue->Count());
}

TEST_P(EverySerialConnectTest, SurvivesTheFailureOfAnyOneCall) {
    for (int nth = 1; nth <= 25; ++nth) {
        SCOPED_TRACE("call " + std::to_string(nth) + " fails");
        os.Reset();
        os.FailCall(nth, 5);
        const int32_t result = Connect(1);
        EXPECT_THAT(result, testing::AnyOf(-2, -3, -4, -5));
        EXPECT_FALSE(LinkIsOpen());
        EXPECT_EQ(0, os.LiveThreads());
        EXPECT_EQ(0, ClosePrinter());
        SerialPortHandle = platform::kInvalidPort;
    }
    os.Reset();
}

} // namespace
} // namespace nadrel
