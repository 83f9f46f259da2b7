#include "link/Write.h"
#include "tests/LibraryTest.h"

namespace nadrel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr uint8_t kBytes[] = {0x1B, 0x40, 0x00, 0xFF};
constexpr uint32_t kTimedOut = 1121;

class WriteTest : public LibraryTest {};

TEST_F(WriteTest, WritesToTheSerialPort) {
    OpenSerialLink();
    EXPECT_EQ(0, WriteToLink(kBytes, 4));
    EXPECT_THAT(os.Calls(), ElementsAre("WritePort(3, 1B 40 00 FF)"));
    EXPECT_EQ(0u, LastLinkError);
}

TEST_F(WriteTest, SendsToTheSocket) {
    OpenWirelessLink();
    EXPECT_EQ(0, WriteToLink(kBytes, 4));
    EXPECT_THAT(os.Calls(), ElementsAre("Send(3, 1B 40 00 FF)"));
    EXPECT_EQ(0u, LastLinkError);
}

TEST_F(WriteTest, WritesNothingWithoutALink) {
    EXPECT_EQ(0, WriteToLink(kBytes, 4));
    EXPECT_THAT(os.Calls(), IsEmpty());
    EXPECT_EQ(0u, Counters.bytesAsked);
}

TEST_F(WriteTest, WritesToThePortAndThenToTheSocketWhenBothFlagsAreSet) {
    OpenSerialLink();
    LinkSocket = 9;
    WirelessLinkOpen = 1;
    EXPECT_EQ(0, WriteToLink(kBytes, 1));
    EXPECT_THAT(os.Calls(), ElementsAre("WritePort(3, 1B)", "Send(9, 1B)"));
    WirelessLinkOpen = 0;
}

TEST_F(WriteTest, APortThatFailsDoesNotKeepTheSocketFromBeingWritten) {
    OpenSerialLink();
    LinkSocket = 9;
    WirelessLinkOpen = 1;
    os.Fail("WritePort", kTimedOut);
    EXPECT_EQ(0, WriteToLink(kBytes, 1));
    EXPECT_EQ(1u, os.CountOf("Send"));
    WirelessLinkOpen = 0;
}

TEST_F(WriteTest, KeepsTheReasonWhenThePortFails) {
    OpenSerialLink();
    os.Fail("WritePort", kTimedOut);
    EXPECT_EQ(0, WriteToLink(kBytes, 4));
    EXPECT_EQ(kTimedOut, LastLinkError);
}

TEST_F(WriteTest, KeepsTheReasonWhenTheConnectionHasDied) {
    OpenWirelessLink();
    os.Fail("Send", 10054);
    EXPECT_EQ(0, WriteToLink(kBytes, 4));
    EXPECT_EQ(10054u, LastLinkError);
}

TEST_F(WriteTest, AWriteThatSucceedsLeavesTheReasonAlone) {
    OpenSerialLink();
    LastLinkError = 77;
    WriteToLink(kBytes, 4);
    EXPECT_EQ(77u, LastLinkError);
}

TEST_F(WriteTest, RetriesNothingThatWasTakenInPart) {
    OpenSerialLink();
    os.Answer("WritePort", {.taken = 2});
    EXPECT_EQ(0, WriteToLink(kBytes, 4));
    EXPECT_EQ(1u, os.CountOf("WritePort"));
    EXPECT_EQ(0u, LastLinkError);
}

TEST_F(WriteTest, HandsAnEmptyWriteToTheLink) {
    OpenSerialLink();
    EXPECT_EQ(0, WriteToLink(kBytes, 0));
    EXPECT_THAT(os.Calls(), ElementsAre("WritePort(3)"));
}

TEST_F(WriteTest, IsSendingWhileItWrites) {
    OpenSerialLink();
    os.OnCall("WritePort", [] { EXPECT_EQ(1, SendingCalls); });
    WriteToLink(kBytes, 4);
    EXPECT_EQ(0, SendingCalls);
}

} // namespace
} // namespace nadrel
