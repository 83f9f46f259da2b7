#include "tests/SpoolFixture.h"

namespace nadrel {

namespace {

class StateTest : public SpoolFixture {};

// What every variable was before anything ran.
struct AtLoad {
    bool spoolIsZero = IsAllZero(SpoolBuffer);
    int32_t spoolLength = SpoolLength;
    bool frameIsZero = IsAllZero(FrameBuffer);
    const ConversionStorage *conversionBuffer = ConversionBuffer;
    int32_t serialLinkOpen = SerialLinkOpen;
    platform::PortHandle serialPortHandle = SerialPortHandle;
    int32_t wirelessLinkOpen = WirelessLinkOpen;
    platform::SocketHandle linkSocket = LinkSocket;
    int32_t framedMode = FramedMode;
    int32_t framedStatusSeen = FramedStatusSeen;
    uint32_t lastLinkError = LastLinkError;
    uint32_t notifyMessageId = NotifyMessageId;
    const platform::Thread *receiveThread = ReceiveThreadObject;
    const platform::Thread *parserThread = ParserThreadObject;
    const ReceiveRing *receiveQueue = ReceiveQueue;
    int32_t receiveThreadRunning = ReceiveThreadRunning;
    int32_t responseLength = ResponseLength;
    int32_t modelNamePending = ModelNamePending;
    int32_t statusPending = StatusPending;
    int32_t firmwarePending = FirmwarePending;
    int32_t printOutStatusArmed = PrintOutStatusArmed;
    uint8_t readByte = ReadByte;
    int32_t pageModeFlag = PageModeFlag;
    int32_t macroStartMark = MacroStartMark;
};

const AtLoad atLoad;

void SetEverything() {
    SerialPortHandle = 12;
    SpoolLength = kStorageFirst;
    SetLineSpace(1);
    SpoolLength = kFull;
    SetLineSpace(2);
    FrameBuffer.Write(100, 1)[0] = 0x55;
    FrameBuffer.Write(kStorageEnd - 1, 1)[0] = 0x55;
    SerialLinkOpen = 1;
    WirelessLinkOpen = 1;
    ReadByte = 3;
    ResponseLength = 4;
    FramedStatusSeen = 1;
    ModelNamePending = 1;
    PageModeFlag = 1;
    MacroStartMark = 5;
    StatusPending = 1;
    FirmwarePending = 1;
    ReceiveThreadRunning = 0;
    LinkSocket = 6;
    PrintOutStatusArmed = 1;
}

} // namespace

TEST(StateAtLoad, TheSpoolIsEmptyAndZeroInStandardModeWithoutAMacro) {
    EXPECT_TRUE(atLoad.spoolIsZero);
    EXPECT_EQ(atLoad.spoolLength, 0);
    EXPECT_TRUE(atLoad.frameIsZero);
    EXPECT_EQ(atLoad.pageModeFlag, 0);
    EXPECT_EQ(atLoad.macroStartMark, 0);
}

TEST(StateAtLoad, NoLinkIsOpen) {
    EXPECT_EQ(atLoad.conversionBuffer, nullptr);
    EXPECT_EQ(atLoad.serialLinkOpen, 0);
    EXPECT_EQ(atLoad.serialPortHandle, -1);
    EXPECT_EQ(atLoad.wirelessLinkOpen, 0);
    EXPECT_EQ(atLoad.linkSocket, 0);
    EXPECT_EQ(atLoad.framedMode, 0);
    EXPECT_EQ(atLoad.lastLinkError, 0U);
    EXPECT_EQ(atLoad.notifyMessageId, 0U);
    EXPECT_EQ(atLoad.receiveThread, nullptr);
    EXPECT_EQ(atLoad.parserThread, nullptr);
    EXPECT_EQ(atLoad.receiveQueue, nullptr);
}

TEST(StateAtLoad, NothingIsOutstanding) {
    EXPECT_EQ(atLoad.framedStatusSeen, 0);
    EXPECT_EQ(atLoad.responseLength, 0);
    EXPECT_EQ(atLoad.modelNamePending, 0);
    EXPECT_EQ(atLoad.statusPending, 0);
    EXPECT_EQ(atLoad.firmwarePending, 0);
    EXPECT_EQ(atLoad.printOutStatusArmed, 0);
    EXPECT_EQ(atLoad.readByte, 0);
    EXPECT_EQ(atLoad.receiveThreadRunning, 1);
}

TEST_F(StateTest, ResetLinkStateEmptiesBothBuffersWithTheirMargins) {
    SetEverything();
    ResetLinkState();
    EXPECT_EQ(SpoolLength, 0);
    EXPECT_TRUE(IsAllZero(SpoolBuffer));
    EXPECT_TRUE(IsAllZero(FrameBuffer));
}

TEST_F(StateTest, ResetLinkStateReturnsToStandardModeAndForgetsTheMacroMark) {
    SetEverything();
    ResetLinkState();
    EXPECT_EQ(PageModeFlag, 0);
    EXPECT_EQ(MacroStartMark, 0);
}

TEST_F(StateTest, ResetLinkStateForgetsTheLink) {
    SetEverything();
    ResetLinkState();
    EXPECT_EQ(SerialPortHandle, -1);
    EXPECT_EQ(SerialLinkOpen, 0);
    EXPECT_EQ(WirelessLinkOpen, 0);
    EXPECT_EQ(LinkSocket, 0);
}

TEST_F(StateTest, ResetLinkStateForgetsWhatIsOutstanding) {
    SetEverything();
    ResetLinkState();
    EXPECT_EQ(ReadByte, 0);
    EXPECT_EQ(ResponseLength, 0);
    EXPECT_EQ(FramedStatusSeen, 0);
    EXPECT_EQ(ModelNamePending, 0);
    EXPECT_EQ(StatusPending, 0);
    EXPECT_EQ(FirmwarePending, 0);
    EXPECT_EQ(PrintOutStatusArmed, 0);
}

TEST_F(StateTest, ResetLinkStateLetsTheNextThreadsRun) {
    ReceiveThreadRunning = 0;
    ResetLinkState();
    EXPECT_EQ(ReceiveThreadRunning, 1);
}

TEST_F(StateTest, ResetLinkStateLeavesModeErrorBufferQueueAndThreads) {
    OpenSerialLink();
    const ConversionStorage *const conversion = ConversionBuffer;
    const ReceiveRing *const queue = ReceiveQueue;
    const platform::Thread *const receiver = ReceiveThreadObject;
    const platform::Thread *const parser = ParserThreadObject;
    const platform::PortHandle port = SerialPortHandle;
    FramedMode = 7;
    LastLinkError = 8;
    ResetLinkState();
    EXPECT_EQ(FramedMode, 7);
    EXPECT_EQ(LastLinkError, 8U);
    EXPECT_EQ(ConversionBuffer, conversion);
    EXPECT_EQ(ReceiveQueue, queue);
    EXPECT_EQ(ReceiveThreadObject, receiver);
    EXPECT_EQ(ParserThreadObject, parser);
    SerialPortHandle = port;
    SerialLinkOpen = 1;
}

TEST_F(StateTest, ResetLinkStateLeavesTheRepliesTheCaptureTheMessageAndTheCounters) {
    NotifyMessageId = 1;
    StatusCaptureByte = 2;
    ResponseBuffer[0] = 3;
    CardDataBuffer[0] = 4;
    SendingCalls = 5;
    LinkClosing = 6;
    Counters.bytesAsked = 7;
    ResetLinkState();
    EXPECT_EQ(NotifyMessageId, 1U);
    EXPECT_EQ(StatusCaptureByte, 2);
    EXPECT_EQ(ResponseBuffer[0], 3);
    EXPECT_EQ(CardDataBuffer[0], 4);
    EXPECT_EQ(SendingCalls, 5);
    EXPECT_EQ(LinkClosing, 6);
    EXPECT_EQ(Counters.bytesAsked, 7U);
    SendingCalls = 0;
    LinkClosing = 0;
}

TEST_F(StateTest, ResetCountersPutsEveryCounterBack) {
    Counters.bytesAsked = 1;
    Counters.bytesTaken = 2;
    Counters.lastError = 3;
    Counters.errorCount = 4;
    Counters.bytesReceived = 5;
    Counters.bytesDropped = 6;
    Counters.notificationsPosted = 7;
    ResetCounters();
    EXPECT_EQ(Counters.bytesAsked, 0U);
    EXPECT_EQ(Counters.bytesTaken, 0U);
    EXPECT_EQ(Counters.lastError, 0U);
    EXPECT_EQ(Counters.errorCount, 0U);
    EXPECT_EQ(Counters.bytesReceived, 0U);
    EXPECT_EQ(Counters.bytesDropped, 0U);
    EXPECT_EQ(Counters.notificationsPosted, 0U);
}

TEST_F(StateTest, AConnectAndACloseReturnToStandardModeAndForgetTheMacroMark) {
    SetPageMode();
    SetMarco_Start();
    OpenSerialLink();
    EXPECT_EQ(PageModeFlag, 0);
    EXPECT_EQ(MacroStartMark, 0);
    EXPECT_EQ(SpoolLength, 0);
    EXPECT_TRUE(IsAllZero(SpoolBuffer));
    SetPageMode();
    SetMarco_Start();
    ClosePrinter();
    EXPECT_EQ(PageModeFlag, 0);
    EXPECT_EQ(MacroStartMark, 0);
    EXPECT_EQ(SpoolLength, 0);
    EXPECT_TRUE(IsAllZero(SpoolBuffer));
}

TEST_F(StateTest, AConnectPutsTheMinusElevenOfARefusalBackToZero) {
    SetPrintPosition(1, 2);
    SetLineSpace(3);
    ASSERT_EQ(SpoolLength, -8);
    OpenSerialLink();
    EXPECT_EQ(SpoolLength, 0);
    EXPECT_TRUE(IsAllZero(SpoolBuffer));
}

} // namespace nadrel
