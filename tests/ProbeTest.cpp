#include "link/Connection.h"
#include "link/ResponseParser.h"
#include "tests/LibraryTest.h"

namespace nadrel {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

class ProbeTest : public LibraryTest {};

TEST_F(ProbeTest, APlainLinkIsNotProbed) {
    EXPECT_EQ(1, ProbePrinter());
    EXPECT_THAT(os.Calls(), IsEmpty());
}

TEST_F(ProbeTest, TheProbeStopsAtTheFirstAnswer) {
    for (int answered = 1; answered <= 4; ++answered) {
        OpenSerialLink();
        FramedMode = 1;
        os.OnCall(
            "Sleep", [] { FramedStatusSeen = 1; }, answered);
        EXPECT_EQ(1, ProbePrinter());
        EXPECT_EQ(static_cast<size_t>(answered), os.CountOf("WritePort"));
        EXPECT_THAT(os.CallsOf({"Sleep"}), Each("Sleep(400)"));
        EXPECT_EQ(static_cast<size_t>(answered), os.CountOf("Sleep"));
        EXPECT_EQ(1, SerialLinkOpen);
        ClosePrinter();
        os.Reset();
    }
}

TEST_F(ProbeTest, TheProbeGivesUpAfterFourPausesOf400) {
    OpenWirelessLink();
    FramedMode = 1;
    const uint64_t begin = os.Now();
    EXPECT_EQ(-5, ProbePrinter());
    EXPECT_EQ(1600u, os.Now() - begin);
    EXPECT_THAT(os.CallsOf({"Send"}), ElementsAre("Send(3, 00 C0 51 C1)", "Send(3, 00 C0 51 C1)",
                                                  "Send(3, 00 C0 51 C1)", "Send(3, 00 C0 51 C1)"));
    EXPECT_FALSE(LinkIsOpen());
    EXPECT_EQ(nullptr, ReceiveQueue);
}

TEST_F(ProbeTest, AFramedStatusInTheReceiveQueueAnswersTheProbe) {
    OpenSerialLink();
    FramedMode = 1;
    os.OnCall("Sleep", [this] {
        Queue({0xC0, 0x53, 0x00});
        os.RunThread(ParserThreadBody, 390);
    });
    EXPECT_EQ(1, ProbePrinter());
    EXPECT_EQ(400u, os.Now());
    EXPECT_EQ(1u, os.CountOf("WritePort"));
}

TEST_F(ProbeTest, AnyOtherReplyDoesNotAnswerTheProbe) {
    OpenSerialLink();
    FramedMode = 1;
    os.OnCall("Sleep", [this] {
        Queue({0xC0, 0x06});
        os.RunThread(ParserThreadBody, 390);
    });
    EXPECT_EQ(-5, ProbePrinter());
}

TEST_F(ProbeTest, AQueryThatCannotBeWrittenIsAskedAgain) {
    OpenSerialLink();
    FramedMode = 1;
    os.Fail("WritePort", 1121);
    os.OnCall(
        "Sleep", [] { FramedStatusSeen = 1; }, 2);
    EXPECT_EQ(1, ProbePrinter());
    EXPECT_EQ(2u, os.CountOf("WritePort"));
    EXPECT_EQ(1121u, LastLinkError);
}

TEST_F(ProbeTest, EndsWhenAHandlerClosesTheLink) {
    OpenSerialLink();
    FramedMode = 1;
    os.OnCall(
        "Sleep", [] { EXPECT_EQ(1, ClosePrinter()); }, 2);
    EXPECT_EQ(-5, ProbePrinter());
    EXPECT_EQ(2u, os.CountOf("WritePort"));
    EXPECT_EQ(800u, os.Now());
    EXPECT_FALSE(LinkIsOpen());
}

} // namespace
} // namespace nadrel
