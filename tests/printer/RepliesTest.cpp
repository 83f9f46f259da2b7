#include "printer/Replies.h"

#include "printer/FirmwareTables.h"
#include "tests/printer/Decoding.h"

#include <gtest/gtest.h>

using namespace printer;
using namespace printer::testing;

namespace {

// What the printer answers to a whole stream, in order.
std::string AnswerTo(Replies &replies, const std::string &bytes, uint8_t status = StatusNormal) {
    Bytes answers;
    for (const Command &command : DecodeAll(BytesOf(bytes))) {
        const Bytes answer = replies.Answer(command, status);
        answers.insert(answers.end(), answer.begin(), answer.end());
    }
    return HexOf(answers);
}

std::string AnswerTo(const std::string &bytes) {
    Replies replies({"AB", "V1"});
    return AnswerTo(replies, bytes);
}

std::string InFrame(const std::string &payload) {
    const Bytes frame = Framed(BytesOf(payload));
    return {frame.begin(), frame.end()};
}

std::string SwipeAfter(const std::string &bytes) {
    Replies replies({"AB", "V1"});
    AnswerTo(replies, bytes);
    const Bytes data = replies.Swipe();
    return {data.begin(), data.end()};
}

} // namespace

TEST(PrinterReplies, AnswersThePlainStatusRequestsWithOneByte) {
    EXPECT_EQ(AnswerTo("\x1B\x76"), "40");
    EXPECT_EQ(AnswerTo("\x1B\x56"), "40");
}

TEST(PrinterReplies, AnswersTheQueryFrameWithAFramedStatus) {
    EXPECT_EQ(AnswerTo("\x00\xC0\x51\xC1"s), "C0 53 40");
}

TEST(PrinterReplies, SaysWhetherThereIsPaper) {
    Replies replies({"AB", "V1"});
    EXPECT_EQ(AnswerTo(replies, "\x1B\x76", StatusNormal | StatusPaperOut), "41");
}

TEST(PrinterReplies, HasNoStatusThatLooksLikeAnotherReply) {
    for (const int status : {StatusNormal + 0, StatusNormal | StatusPaperOut})
        for (const int other : {0x00, 0x02, 0x1B, 0x30, 0xC0, 0xFF})
            EXPECT_NE(status, other);
}

TEST(PrinterReplies, AnswersModelNameAndFirmwareVersionWithTheirLetters) {
    EXPECT_EQ(AnswerTo("\x1B\x59\xFF"), "41 42");
    EXPECT_EQ(AnswerTo("\x1B\x00\x01"s), "56 31");
}

TEST(PrinterReplies, AcknowledgesAGoodFrameAndThenAnswersInFramedForm) {
    EXPECT_EQ(AnswerTo(InFrame("Hello\x0A")), "C0 06");
    EXPECT_EQ(AnswerTo(InFrame("\x1B\x59\xFF")), "C0 06 C0 44 41 42");
    EXPECT_EQ(AnswerTo(InFrame("\x1B\x00\x01"s)), "C0 06 C0 44 56 31");
    EXPECT_EQ(AnswerTo(InFrame("\x1B\x76")), "C0 06 C0 53 40");
}

TEST(PrinterReplies, RefusesABadFrameAndAnswersNothingInIt) {
    EXPECT_EQ(AnswerTo("\x00\xC0\x44\x31\x30\x30\x30\x33\x1B\x59\xFF\xE4\x58\xC1"s), "C0 15");
}

TEST(PrinterReplies, ReportsPrintOutsWhileTheHostWantsThem) {
    Replies replies({"AB", "V1"});
    EXPECT_EQ(HexOf(replies.Report(false)), "");
    AnswerTo(replies, "\x1D\x76\x01");
    EXPECT_EQ(HexOf(replies.Report(false)), "30 30");
    EXPECT_EQ(HexOf(replies.Report(true)), "30 31");
    AnswerTo(replies, "\x1D\x76\x00"s);
    EXPECT_EQ(HexOf(replies.Report(false)), "");
}

TEST(PrinterReplies, ReadsTheTracksOfTheReaderMode) {
    EXPECT_EQ(SwipeAfter("\x1B\x4D\x43").substr(0, 3), "\x1B\x02\x01");
    EXPECT_EQ(SwipeAfter("\x1B\x4D\x44").substr(0, 3), "\x1B\x02\x02");
    EXPECT_EQ(SwipeAfter("\x1B\x4D\x45").substr(0, 3), "\x1B\x01\x01");
    EXPECT_EQ(SwipeAfter("\x1B\x4D\x46"), "\x1B\x01\x02\x24\x00;5000000000000009=30121010000000000?\x00"s);
    EXPECT_EQ(SwipeAfter("\x1B\x4D\x47").substr(0, 3), "\x1B\x03\x01");
}

TEST(PrinterReplies, BeginsCardDataWithTheByteThatAskedForIt) {
    EXPECT_EQ(SwipeAfter("\x02\x43\x31\x31\x00\x00\x03"s).substr(0, 3), "\x02\x02\x01");
    EXPECT_EQ(SwipeAfter("\x04\x1B\x4D\x44").substr(0, 3), "\x1B\x02\x02");
}

TEST(PrinterReplies, ReadsNoCardUnlessAReaderWaits) {
    EXPECT_EQ(SwipeAfter(""), "");
    EXPECT_EQ(SwipeAfter("\x1B\x4D\x00"s), "");
    EXPECT_EQ(SwipeAfter("\x1B\x4D\x43\x04"), "");
}

TEST(PrinterReplies, AnswersNothingToWhatOnlyPrints) {
    EXPECT_EQ(AnswerTo("text\x0A\x1B\x40\x1D\x56\x01\x1B\x6D"
                       "12345678"),
              "");
}
