#include "tests/endtoend/EndToEnd.h"

using namespace endtoend;
using namespace std::string_literals;

namespace {

constexpr uint32_t kAck = 0x06;
constexpr uint32_t kNak = 0x15;

class Talking : public OnEveryLink {
  protected:
    void Begin(std::vector<std::string> options = {}) { Meet(GetParam(), std::move(options)); }

    // What is heard when the printer sends these bytes at once. The one heard before has just begun a pause
    // of the parser, so that they come to it whole.
    Notification HeardOf(const std::string &hex) {
        Printer().Say("send " + hex);
        return heard.Next();
    }

    void ExpectAck(uint32_t length) {
        if (IsFramed()) {
            EXPECT_EQ(heard.Next(), Code(kAck, length));
        }
    }

    // As many bytes as the parser was given at once, or in parts.
    std::string HeardTogether(uint32_t kind, size_t count) {
        std::string data;
        while (data.size() < count) {
            const Notification next = heard.Next();
            if (next.kind == 0)
                break;
            if (next.kind == kind)
                data += next.data;
        }
        return data;
    }

    std::string Repeated(const std::string &hex, int count) {
        std::string all;
        for (int i = 0; i < count; ++i)
            all += " " + hex;
        return all;
    }
};
class Status : public Talking {};
NADREL_ON_EVERY_LINK(Status);

class Notifications : public Talking {};
NADREL_IN_BOTH_FORMS(Notifications);

class Acknowledgement : public Talking {};
INSTANTIATE_TEST_SUITE_P(, Acknowledgement,
                         testing::Values(Link{Medium::serial, Form::framed}, Link{Medium::tcp, Form::framed}),
                         ParameterName<Link>);

// Classified alike on every link.
class Replies : public Talking {};
INSTANTIATE_TEST_SUITE_P(, Replies, testing::Values(Link{Medium::serial, Form::plain}), ParameterName<Link>);

} // namespace

TEST_P(Status, IsToldAskedInEitherWay) {
    Begin();
    EXPECT_EQ(GetPrinterStatus(200), 1);
    EXPECT_EQ(heard.Next(), IsFramed() ? FramedStatus(0x40, 1) : Reply('S', "\x40"));
    EXPECT_TRUE(HasListed(IsFramed() ? "00 C0 51 C1" : "ESC v"));
    EXPECT_EQ(GetPrinterStatusEX(200), 1);
    EXPECT_EQ(heard.Next(), IsFramed() ? FramedStatus(0x40, 1) : Reply('S', "\x40"));
    EXPECT_TRUE(HasListed(IsFramed() ? "00 C0 51 C1" : "ESC V"));
}

TEST_P(Notifications, TellModelNameAndFirmwareVersion) {
    Begin({"--model", "Model 7", "--firmware", "2.04"});
    GetPrinterModelName();
    ExpectAck(1);
    EXPECT_EQ(heard.Next(), Reply('D', IsFramed() ? "DModel 7" : "Model 7"));
    GetFirmwareVersion();
    ExpectAck(IsFramed() ? 8 : 7);
    EXPECT_EQ(heard.Next(), Reply('D', IsFramed() ? "D2.04" : "2.04"));
}

TEST_P(Notifications, TellAPrintOutWhileReportsAreOn) {
    Begin();
    EXPECT_EQ(Set_PrintOutStatus(1), 0);
    EXPECT_EQ(PrintLine("one"), 1);
    EXPECT_EQ(HeardTogether('T', 2), "00");
    EXPECT_EQ(Set_PrintOutStatus(0), 0);
    EXPECT_TRUE(HasListed("print-out reports off"));
    EXPECT_EQ(PrintLine("two"), 1);
    EXPECT_TRUE(HasListed("\"two\""));
    Printer().Say("send 30 78");
    EXPECT_EQ(HeardTogether('T', 2), "0x");
}

TEST_P(Notifications, TellCardDataWithItsZeroBytes) {
    Begin();
    EXPECT_EQ(EnterMSRMode(1), 0);
    EXPECT_TRUE(HasListed("enter card reader mode 'D'"));
    Settle();
    Printer().Say("swipe");
    const std::string data = "\x1B\x02"s
                             "\x02\x24\x00;5000000000000009=30121010000000000?"s
                             "\x03\x35\x00;015000000000000009=7247240000000000000030300099010=?"s
                             "\x00"s;
    EXPECT_EQ(heard.Next(), Reply(IsFramed() ? 'D' : 'N', data));
    EXPECT_EQ(CancelMSRMode(), 0);
    EXPECT_TRUE(HasListed("cancel card reading"));
}

TEST_P(Replies, TellTheFramedCodesWithTheLengthOfTheReplyBefore) {
    Begin();
    EXPECT_EQ(HeardOf("C0 06"), Code(0x06, 1));
    EXPECT_EQ(HeardOf("C0 15"), Code(0x15, 1));
    EXPECT_EQ(HeardOf("C0 18"), Code(0x18, 1));
    EXPECT_EQ(HeardOf("C0 03"), Code(0x03, 1));
    EXPECT_EQ(HeardOf("1B 41 42"), Reply('D', "\x1B"
                                              "AB"));
    EXPECT_EQ(HeardOf("C0 04"), Code(0x04, 3));
}

TEST_P(Acknowledgement, IsToldForGoodFramesAndRefusalForBadOnes) {
    ASSERT_TRUE(Open(GetParam(), {"--flip-frames", "2"}));
    EXPECT_EQ(PrintLine("good"), 1);
    EXPECT_EQ(heard.Next(), Code(kAck));
    EXPECT_EQ(PrintLine("bad"), 1);
    EXPECT_EQ(heard.Next(), Code(kNak));
    EXPECT_TRUE(HasListed("bad frame  it is refused on purpose"));
    EXPECT_TRUE(HasListed("\"good\""));
    EXPECT_EQ(Printer().Listed("\"bad\""), 0u);
}

TEST_P(Replies, KeepTheZeroBytesOfPairsAndDropThoseOfTexts) {
    Begin();
    EXPECT_EQ(HeardOf("1B 41 00 42"), Reply('D', "\x1B"
                                                 "A\0B"s));
    EXPECT_EQ(HeardOf("02 43 00 00"), Reply('D', "\x02"
                                                 "C\0\0"s));
    EXPECT_EQ(HeardOf("C0 1B 00 41"), Reply('D', "\x1B\0A"s));
    EXPECT_EQ(HeardOf("30 00 31 00"), Reply('T', "01"));
}

TEST_P(Replies, CutRepliesAtTheirLimit) {
    Begin();
    EXPECT_EQ(HeardOf("1B" + Repeated("41", 1200)), Reply('D', "\x1B" + std::string(1023, 'A')));
    EXPECT_EQ(HeardOf("30" + Repeated("41", 1200)), Reply('T', "0" + std::string(1023, 'A')));
}

TEST_P(Notifications, CutCardDataAtItsLimit) {
    Begin();
    Printer().Say("send 1B 01" + Repeated("42", 1200));
    Printer().Say("send" + Repeated("42", 1200));
    const size_t most = IsFramed() ? 1024 : 2048;
    EXPECT_EQ(heard.Next(), Reply(IsFramed() ? 'D' : 'N', "\x1B\x01" + std::string(most - 2, 'B')));
}

TEST_P(Replies, AreNotMadeOfBytesThatMeanNothing) {
    Begin();
    EXPECT_EQ(HeardOf("00 78 C0 79 30 31"), Reply('T', "01"));
}
