#include "link/ReceiveThread.h"
#include "tests/LibraryTest.h"

namespace nadrel {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

class ReceiveThreadTest : public LibraryTest {
  protected:
    std::optional<uint32_t> Run(uint64_t milliseconds) {
        return os.RunThread(ReceiveThreadBody, milliseconds);
    }

    static std::vector<uint8_t> Queued() {
        std::vector<uint8_t> bytes;
        while (ReceiveQueue->Count() != 0) {
            bytes.push_back(0);
            ReceiveQueue->Get(bytes.back());
        }
        return bytes;
    }

    static void LeaveRoomFor(int32_t bytes) {
        for (int32_t i = ReceiveQueue->Count(); i < ReceiveRing::kMostQueued - bytes; ++i)
            ASSERT_EQ(1, ReceiveQueue->Put('x'));
    }
};

TEST_F(ReceiveThreadTest, EndsWith1WhenNoLinkIsOpen) {
    EXPECT_EQ(1u, Run(10));
    EXPECT_THAT(os.Calls(), IsEmpty());
}

class SerialReceiveThreadTest : public ReceiveThreadTest {
  protected:
    SerialReceiveThreadTest() { OpenSerialLink(); }
};

TEST_F(SerialReceiveThreadTest, TakesItsStepsInOrder) {
    os.PrinterSends({0x41, 0x42}, 10);
    EXPECT_EQ(std::nullopt, Run(20));
    EXPECT_THAT(os.Calls(), ElementsAre("SetPortEvents(3, received)", "WaitPortEvent(3)",
                                        "SetPortEvents(3, received)", "ReadPort(3, 1)", "ReadPort(3, 1)",
                                        "ReadPort(3, 1)", "GetModemStatus(3)", "WaitPortEvent(3)"));
    EXPECT_THAT(Queued(), ElementsAre(0x41, 0x42));
}

TEST_F(SerialReceiveThreadTest, SetsTheRunningFlagAfterTheEventMask) {
    ReceiveThreadRunning = 0;
    os.OnCall("SetPortEvents", [] { EXPECT_EQ(0, ReceiveThreadRunning); });
    os.OnCall("WaitPortEvent", [] { EXPECT_EQ(1, ReceiveThreadRunning); });
    Run(10);
    EXPECT_EQ(1, ReceiveThreadRunning);
}

TEST_F(SerialReceiveThreadTest, QueuesEveryByteInOrder) {
    std::vector<uint8_t> sent;
    for (int value = 0; value < 256; ++value)
        sent.push_back(static_cast<uint8_t>(value));
    os.PrinterSends(sent, 5);
    os.PrinterSends({0x00, 0xFF}, 7);
    Run(20);
    sent.insert(sent.end(), {0x00, 0xFF});
    EXPECT_THAT(Queued(), ElementsAreArray(sent));
}

TEST_F(SerialReceiveThreadTest, ReadsNothingWhenTheWaitWasReleased) {
    os.After(5, [] { platform::SetPortEvents(3, platform::PortEvents::none); });
    EXPECT_EQ(std::nullopt, Run(20));
    EXPECT_THAT(os.CallsOf({"ReadPort"}), IsEmpty());
    EXPECT_EQ(1u, os.CountOf("GetModemStatus"));
    EXPECT_EQ(2u, os.CountOf("WaitPortEvent"));
}

TEST_F(SerialReceiveThreadTest, EndsWith1WhenTheLinkFlagIsCleared) {
    os.After(5, [] {
        SerialLinkOpen = 0;
        platform::SetPortEvents(3, platform::PortEvents::none);
    });
    EXPECT_EQ(1u, Run(20));
    EXPECT_EQ(5u, os.Now());
    SerialLinkOpen = 1;
}

TEST_F(SerialReceiveThreadTest, EndsWith1WhenTheHandleBecomesInvalid) {
    os.After(5, [] {
        SerialPortHandle = platform::kInvalidPort;
        platform::SetPortEvents(3, platform::PortEvents::none);
    });
    EXPECT_EQ(1u, Run(20));
    SerialPortHandle = 3;
}

TEST_F(SerialReceiveThreadTest, EndsWith1AtOnceWhenTheHandleIsInvalid) {
    SerialPortHandle = platform::kInvalidPort;
    EXPECT_EQ(1u, Run(20));
    EXPECT_EQ(0u, os.CountOf("WaitPortEvent"));
    SerialPortHandle = 3;
}

TEST_F(SerialReceiveThreadTest, AWaitThatFailsIsAskedAgain) {
    os.Fail("WaitPortEvent", 31, 1);
    os.Fail("WaitPortEvent", 31, 2);
    os.PrinterSends({0x41});
    Run(300);
    EXPECT_THAT(Queued(), ElementsAre(0x41));
    EXPECT_EQ(4u, os.CountOf("WaitPortEvent"));
    EXPECT_EQ(0u, LastLinkError);
}

TEST_F(SerialReceiveThreadTest, AReadThatFailsEndsTheReadingUntilTheNextEvent) {
    os.PrinterSends({0x41, 0x42}, 5);
    os.Fail("ReadPort", 31, 2);
    Run(20);
    EXPECT_THAT(os.CallsOf({"WaitPortEvent", "ReadPort"}),
                ElementsAre("WaitPortEvent(3)", "ReadPort(3, 1)", "ReadPort(3, 1)", "WaitPortEvent(3)",
                            "ReadPort(3, 1)", "ReadPort(3, 1)", "WaitPortEvent(3)"));
    EXPECT_THAT(Queued(), ElementsAre(0x41, 0x42));
    EXPECT_EQ(0u, LastLinkError);
}

TEST_F(SerialReceiveThreadTest, DoesNotTestTheEventMaskAndTheModemStatus) {
    os.Fail("SetPortEvents", 31, 2);
    os.FailAlways("GetModemStatus", 31);
    os.PrinterSends({0x41}, 5);
    Run(20);
    EXPECT_THAT(Queued(), ElementsAre(0x41));
}

TEST_F(SerialReceiveThreadTest, CapturesTheFirstByteSinceItWasArmed) {
    StatusCaptureByte = 0xFF;
    os.PrinterSends({0x16, 0x17, 0x18}, 5);
    Run(20);
    EXPECT_EQ(0x16, StatusCaptureByte);
    EXPECT_THAT(Queued(), ElementsAre(0x16, 0x17, 0x18));
}

TEST_F(SerialReceiveThreadTest, CapturesAZero) {
    StatusCaptureByte = 0xFF;
    os.PrinterSends({0x00}, 5);
    Run(20);
    EXPECT_EQ(0x00, StatusCaptureByte);
}

TEST_F(SerialReceiveThreadTest, AnFFLeavesTheCaptureArmed) {
    StatusCaptureByte = 0xFF;
    os.PrinterSends({0xFF}, 5);
    os.PrinterSends({0xFF, 0x21}, 10);
    os.After(7, [] { EXPECT_EQ(0xFF, StatusCaptureByte); });
    Run(20);
    EXPECT_EQ(0x21, StatusCaptureByte);
}

TEST_F(SerialReceiveThreadTest, CapturesNothingUnlessArmed) {
    StatusCaptureByte = 0x05;
    os.PrinterSends({0x16}, 5);
    Run(20);
    EXPECT_EQ(0x05, StatusCaptureByte);
}

TEST_F(SerialReceiveThreadTest, DropsWhatFindsFewerThanTwoFreeSlots) {
    LeaveRoomFor(1);
    os.PrinterSends({0x41, 0x42, 0x43}, 5);
    Run(20);
    EXPECT_EQ(409599, ReceiveQueue->Count());
    EXPECT_EQ(0x41, Queued().back());
    EXPECT_EQ(3u, Counters.bytesReceived);
    EXPECT_EQ(2u, Counters.bytesDropped);
}

TEST_F(SerialReceiveThreadTest, CapturesNoByteThatWasDropped) {
    LeaveRoomFor(0);
    StatusCaptureByte = 0xFF;
    os.PrinterSends({0x41}, 5);
    Run(20);
    EXPECT_EQ(0xFF, StatusCaptureByte);
}

TEST_F(SerialReceiveThreadTest, CapturesTheFirstByteThatIsStoredAgain) {
    LeaveRoomFor(0);
    StatusCaptureByte = 0xFF;
    os.PrinterSends({0x41}, 5);
    os.After(7, [] { ReceiveQueue->Skip(1); });
    os.PrinterSends({0x42}, 10);
    Run(20);
    EXPECT_EQ(0x42, StatusCaptureByte);
}

TEST_F(SerialReceiveThreadTest, ClearsItsOneByteAfterItWasStored) {
    os.PrinterSends({0x41}, 5);
    os.OnCall(
        "ReadPort", [] { EXPECT_EQ(0, ReadByte); }, 2);
    Run(20);
    EXPECT_EQ(0, ReadByte);
}

TEST_F(SerialReceiveThreadTest, KeepsItsOneByteWhenItWasDropped) {
    LeaveRoomFor(0);
    os.PrinterSends({0x41}, 5);
    Run(20);
    EXPECT_EQ(0x41, ReadByte);
}

TEST_F(SerialReceiveThreadTest, DropsEverythingWithoutARing) {
    delete ReceiveQueue;
    ReceiveQueue = nullptr;
    StatusCaptureByte = 0xFF;
    os.PrinterSends({0x41}, 5);
    EXPECT_EQ(std::nullopt, Run(20));
    EXPECT_EQ(1u, Counters.bytesDropped);
    EXPECT_EQ(0xFF, StatusCaptureByte);
}

class WirelessReceiveThreadTest : public ReceiveThreadTest {
  protected:
    WirelessReceiveThreadTest() { OpenWirelessLink(); }
};

TEST_F(WirelessReceiveThreadTest, TakesItsStepsInOrder) {
    os.PrinterSends({0x41, 0x42});
    Run(20);
    EXPECT_THAT(os.Calls(), ElementsAre("Sleep(1)", "Receive(3, 255)", "Sleep(1)", "Receive(3, 255)"));
    EXPECT_THAT(Queued(), ElementsAre(0x41, 0x42));
}

TEST_F(WirelessReceiveThreadTest, SetsTheRunningFlag) {
    ReceiveThreadRunning = 0;
    os.OnCall("Sleep", [] { EXPECT_EQ(1, ReceiveThreadRunning); });
    Run(10);
    EXPECT_EQ(1, ReceiveThreadRunning);
}

TEST_F(WirelessReceiveThreadTest, QueuesLongSegmentsInChunksOf255) {
    std::vector<uint8_t> sent;
    for (int i = 0; i < 600; ++i)
        sent.push_back(static_cast<uint8_t>(i & 0xFF));
    os.PrinterSends(sent);
    Run(20);
    EXPECT_EQ(4u, os.CountOf("Receive"));
    EXPECT_THAT(Queued(), ElementsAreArray(sent));
}

TEST_F(WirelessReceiveThreadTest, EndsWith1WhenTheLinkFlagIsCleared) {
    os.After(5, [] { WirelessLinkOpen = 0; });
    os.PrinterSends({0x41}, 6);
    EXPECT_EQ(1u, Run(20));
    EXPECT_THAT(Queued(), ElementsAre(0x41));
    WirelessLinkOpen = 1;
}

TEST_F(WirelessReceiveThreadTest, PollsAgainWhenTheConnectionIsOver) {
    os.PrinterHangsUp();
    EXPECT_EQ(std::nullopt, Run(1000));
    EXPECT_EQ(10u, os.CountOf("Receive"));
    EXPECT_THAT(Queued(), IsEmpty());
    EXPECT_EQ(1, WirelessLinkOpen);
    EXPECT_EQ(0u, LastLinkError);
}

TEST_F(WirelessReceiveThreadTest, PollsAgainWhenReceivingFails) {
    os.Fail("Receive", 10054);
    os.PrinterSends({0x41});
    EXPECT_EQ(std::nullopt, Run(300));
    EXPECT_THAT(Queued(), ElementsAre(0x41));
    EXPECT_EQ(0u, LastLinkError);
}

TEST_F(WirelessReceiveThreadTest, CapturesTheFirstByteOfTheChunk) {
    StatusCaptureByte = 0xFF;
    os.PrinterSends({0x16, 0x17, 0x18});
    Run(20);
    EXPECT_EQ(0x16, StatusCaptureByte);
}

TEST_F(WirelessReceiveThreadTest, CapturesAZero) {
    StatusCaptureByte = 0xFF;
    os.PrinterSends({0x00});
    Run(20);
    EXPECT_EQ(0x00, StatusCaptureByte);
}

TEST_F(WirelessReceiveThreadTest, CapturesNothingUnlessArmed) {
    StatusCaptureByte = 0x05;
    os.PrinterSends({0x16});
    Run(20);
    EXPECT_EQ(0x05, StatusCaptureByte);
}

// Only the first byte of a chunk is looked at.
TEST_F(WirelessReceiveThreadTest, AChunkThatBeginsWithFFLeavesTheCaptureArmed) {
    StatusCaptureByte = 0xFF;
    os.PrinterSends({0xFF, 0x21});
    os.PrinterSends({0x22, 0x23}, 10);
    os.After(5, [] { EXPECT_EQ(0xFF, StatusCaptureByte); });
    Run(20);
    EXPECT_EQ(0x22, StatusCaptureByte);
}

TEST_F(WirelessReceiveThreadTest, DropsWhatFindsFewerThanTwoFreeSlots) {
    LeaveRoomFor(2);
    os.PrinterSends({0x41, 0x42, 0x43, 0x44});
    Run(20);
    EXPECT_EQ(409599, ReceiveQueue->Count());
    EXPECT_EQ(0x42, Queued().back());
    EXPECT_EQ(4u, Counters.bytesReceived);
    EXPECT_EQ(2u, Counters.bytesDropped);
}

TEST_F(WirelessReceiveThreadTest, CapturesAByteThatIsDropped) {
    LeaveRoomFor(0);
    StatusCaptureByte = 0xFF;
    os.PrinterSends({0x41});
    Run(20);
    EXPECT_EQ(0x41, StatusCaptureByte);
    EXPECT_EQ(1u, Counters.bytesDropped);
}

TEST_F(WirelessReceiveThreadTest, AnArmingBetweenTwoChunksCapturesTheSecond) {
    StatusCaptureByte = 0x00;
    os.PrinterSends({0x41});
    os.After(5, [] { StatusCaptureByte = 0xFF; });
    os.PrinterSends({0x42}, 10);
    Run(20);
    EXPECT_EQ(0x42, StatusCaptureByte);
}

// The serial branch is over before the wireless one begins.
TEST_F(WirelessReceiveThreadTest, ReceivesFromTheSocketWhenTheSerialLinkIsOver) {
    SerialLinkOpen = 1;
    os.PrinterSends({0x41});
    os.OnCall("SetPortEvents", [] { SerialLinkOpen = 0; });
    Run(20);
    EXPECT_THAT(Queued(), ElementsAre(0x41));
}

} // namespace
} // namespace nadrel
