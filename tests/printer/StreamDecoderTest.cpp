#include "printer/StreamDecoder.h"

#include "tests/printer/Decoding.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <random>

using namespace printer;
using namespace printer::testing;
using ::testing::ElementsAre;
using ::testing::StartsWith;

namespace {

std::vector<std::string> Decoded(const std::string &bytes) {
    return DescribeAll(DecodeAll(BytesOf(bytes)));
}

std::string FramedText(const std::string &payload) {
    const Bytes frame = Framed(BytesOf(payload));
    return {frame.begin(), frame.end()};
}

} // namespace

TEST(PrinterFrames, TakesTheCommandsOutOfAGoodFrame) {
    EXPECT_THAT(Decoded("\x00\xC0\x44\x31\x30\x30\x30\x31\x41\x41\x00\xC1"s),
                ElementsAre("0 frame 00 C0 44 31 30 30 30 31 (1 bytes, check value 41 00)", "8 text 41"));
}

TEST(PrinterFrames, TakesAnEmptyFrame) {
    EXPECT_THAT(Decoded("\x00\xC0\x44\x31\x30\x30\x30\x30\x00\x00\xC1"s),
                ElementsAre("0 frame 00 C0 44 31 30 30 30 30 (0 bytes, check value 00 00)"));
}

TEST(PrinterFrames, UndoesTheEscapesOfPayloadAndCheckValue) {
    EXPECT_THAT(Decoded("\x00\xC0\x44\x31\x30\x30\x30\x32\x7D\xE0\x7D\x5D\x7D\xE0\x7D\x5D\xC1"s),
                ElementsAre("0 frame 00 C0 44 31 30 30 30 32 (2 bytes, check value C0 7D)", "8 text C0 7D"));
}

TEST(PrinterFrames, CountsTheEscapesInTheOffsetsOfTheCommands) {
    EXPECT_THAT(Decoded(FramedText("\xC0\xC1\x0A\x7D\x0A")),
                ElementsAre(StartsWith("0 frame"), "8 text C0 C1", "12 LF 0A", "13 text 7D", "15 LF 0A"));
}

TEST(PrinterFrames, RecognisesTheQueryFrame) {
    EXPECT_THAT(Decoded("\x00\xC0\x51\xC1"s), ElementsAre("0 query frame 00 C0 51 C1"));
}

TEST(PrinterFrames, MarksCommandsThatCameInAFrame) {
    const auto commands = DecodeAll(BytesOf(FramedText("\x1B\x76") + "\x1B\x76"));
    ASSERT_EQ(commands.size(), 3U);
    EXPECT_TRUE(commands[1].framed);
    EXPECT_FALSE(commands[2].framed);
}

TEST(PrinterFrames, SkipsAFrameWhoseCheckValueIsWrong) {
    EXPECT_THAT(
        Decoded("\x00\xC0\x44\x31\x30\x30\x30\x31\x41\x41\x01\xC1ok"s),
        ElementsAre(
            "0 bad frame 00 C0 44 31 30 30 30 31 (its check value is 41 01, that of its bytes is 41 00)",
            "12 text 6F 6B"));
}

TEST(PrinterFrames, SkipsAFrameWithMoreBytesThanAnnounced) {
    EXPECT_THAT(Decoded("\x00\xC0\x44\x31\x30\x30\x30\x31\x41\x42\x41\x42\xC1ok"s),
                ElementsAre("0 bad frame 00 C0 44 31 30 30 30 31 (it announces 0001 bytes and has 2)",
                            "13 text 6F 6B"));
}

TEST(PrinterFrames, SkipsTheRestOfAFrameThatADamagedByteEndsTooEarly) {
    EXPECT_THAT(Decoded("\x00\xC0\x44\x31\x30\x30\x30\x36\x41\x42\xC1\x44\x45\x46\x00\x00\xC1ok"s),
                ElementsAre("0 bad frame 00 C0 44 31 30 30 30 36 (it announces 0006 bytes and has 0)",
                            "17 text 6F 6B"));
}

TEST(PrinterFrames, FindsTheNextFrameAfterOneThatEndedTooEarly) {
    EXPECT_THAT(Decoded("\x00\xC0\x44\x31\x30\x30\x30\x36\x41\x42\xC1\x44"s + FramedText("A")),
                ElementsAre(StartsWith("0 bad frame"), StartsWith("12 frame"), "20 text 41"));
}

TEST(PrinterFrames, FindsAFrameThatBeginsInsideOneWhoseEndIsMissing) {
    EXPECT_THAT(Decoded("\x00\xC0\x44\x31\x30\x30\x30\x33\x41\x42"s + FramedText("A")),
                ElementsAre("0 bad frame 00 C0 44 31 30 30 30 33 (another frame begins inside it)",
                            "10 frame 00 C0 44 31 30 30 30 31 (1 bytes, check value 41 00)", "18 text 41"));
}

TEST(PrinterFrames, SkipsAFrameWhoseLengthIsNoNumber) {
    EXPECT_THAT(Decoded("\x00\xC0\x44\x31\x30\x30\x41\x31\x41\x41\x00\xC1ok"s),
                ElementsAre("0 bad frame 00 C0 44 31 30 30 41 31 (its length field is not four digits)",
                            "12 text 6F 6B"));
}

TEST(PrinterFrames, SkipsAFrameWithoutCheckValue) {
    EXPECT_THAT(Decoded("\x00\xC0\x44\x31\x30\x30\x30\x30\x41\xC1ok"s),
                ElementsAre("0 bad frame 00 C0 44 31 30 30 30 30 (it has no check value)", "10 text 6F 6B"));
}

TEST(PrinterFrames, SkipsAFrameWithAnEscapeOfSomethingElse) {
    EXPECT_THAT(
        Decoded("\x00\xC0\x44\x31\x30\x30\x30\x31\x7D\x61\x41\x00\xC1"s),
        ElementsAre(
            "0 bad frame 00 C0 44 31 30 30 30 31 (an escape byte is followed by nothing that is escaped)"));
}

TEST(PrinterFrames, RefusesTheCheckValueThatIncludesSixBytesTakenBack) {
    // The text was refused: 1D 21 00 1B 45 00 stand behind the 41 that is sent and are in the check value.
    EXPECT_THAT(Decoded("\x00\xC0\x44\x31\x30\x30\x30\x31\x41\x7B\x58\xC1"s),
                ElementsAre(StartsWith("0 bad frame 00 C0 44 31 30 30 30 31 (its check value is 7B 58")));
}

TEST(PrinterFrames, AcceptsTheFirstFourDigitsOfALengthOver9999) {
    const auto lines = Decoded(FramedText(std::string(12345, 'x')));
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_EQ(
        lines[0],
        "0 frame 00 C0 44 31 31 32 33 34 (12345 bytes, of which the length field has four digits, check "
        "value 78 00)");
    EXPECT_THAT(lines[1], StartsWith("8 text 78 78"));
}

TEST(PrinterFrames, RefusesALongFrameWithOtherDigits) {
    std::string frame = FramedText(std::string(12345, 'x'));
    frame[7] = '5';
    EXPECT_THAT(Decoded(frame),
                ElementsAre("0 bad frame 00 C0 44 31 31 32 33 35 (it announces 1235 bytes and has 12345)"));
}

TEST(PrinterFrames, DropsAFrameThatIsTooLongAndGoesOn) {
    const auto lines =
        Decoded("\x00\xC0\x44\x31\x30\x30\x30\x31"s + std::string(500000, 'x') + FramedText("A"));
    EXPECT_THAT(lines,
                ElementsAre(StartsWith("0 bad frame 00 C0 44 31 30 30 30 31 (it is longer than 409600"),
                            StartsWith("500008 frame"), "500016 text 41"));
}

TEST(PrinterFrames, DoesNotLookForAFrameInsideACommand) {
    const std::string band = "\x00\xC0\x44\x31\x30\x30\x30\x31\x41\x41\x00\xC1"s + std::string(12, '\0');
    EXPECT_THAT(Decoded("\x1B\x58\x34\x01\x18" + band + "\x0A"),
                ElementsAre("0 ESC X 4 1B 58 34 01 18 " + HexOf(BytesOf(band)), "29 LF 0A"));
}

TEST(PrinterFrames, TakesWhatOnlyLooksLikeABeginningForPaddingAndText) {
    EXPECT_THAT(Decoded("\0\0\xC0\x44\x32\x0A"s),
                ElementsAre("0 padding 00 00", "2 text C0 44 32", "5 LF 0A"));
    EXPECT_THAT(Decoded("\0\xC0\x51\x41"s), ElementsAre("0 padding 00", "1 text C0 51 41"));
    EXPECT_THAT(Decoded("A\0"s), ElementsAre("0 text 41", "1 padding 00"));
}

TEST(PrinterFrames, ListsTextBeforeTheFrameThatFollowsIt) {
    EXPECT_THAT(Decoded("AB" + FramedText("C")),
                ElementsAre("0 text 41 42", StartsWith("2 frame"), "10 text 43"));
}

TEST(PrinterFrames, LetsNoCommandReachOverTheEndOfAFrame) {
    EXPECT_THAT(Decoded(FramedText("\x1B\x24\x01") + FramedText("A")),
                ElementsAre(StartsWith("0 frame"), "8 incomplete 1B 24 01 (its end is missing)",
                            StartsWith("14 frame"), "22 text 41"));
}

TEST(PrinterFrames, CarriesPageModeFromFrameToFrameAndToPlainBytes) {
    EXPECT_THAT(Decoded(FramedText("\x1B\x4C") + "\x1B\x7B" + FramedText("\x1B\x7B") + "\x0C" +
                        FramedText("\x1B\x7B\x01")),
                ElementsAre(StartsWith("0 frame"), "8 ESC L 1B 4C", "13 ESC { 1B 7B", StartsWith("15 frame"),
                            "23 ESC { 1B 7B", "28 FF 0C", StartsWith("29 frame"), "37 ESC { 1B 7B 01"));
}

TEST(PrinterFrames, GivesUpAFrameOnRequest) {
    std::vector<Command> commands;
    StreamDecoder decoder;
    decoder.Feed(BytesOf("\x00\xC0\x44\x31\x30\x30"s), commands);
    EXPECT_TRUE(decoder.IsInFrame());
    decoder.GiveUpFrame(commands);
    EXPECT_FALSE(decoder.IsInFrame());
    decoder.Feed(BytesOf("A\x0A"), commands);
    EXPECT_THAT(DescribeAll(commands),
                ElementsAre("0 bad frame 00 C0 44 31 30 30 (its end is missing)", "6 text 41", "7 LF 0A"));
}

TEST(PrinterFrames, ReportsAFrameThatTheStreamCutsOff) {
    EXPECT_THAT(Decoded("\x00\xC0\x44\x31\x30\x30\x30\x31\x41"s),
                ElementsAre("0 bad frame 00 C0 44 31 30 30 30 31 (its end is missing)"));
}

TEST(PrinterFrames, RefusesEveryNthFrameWhenAsked) {
    const auto lines = DescribeAll(
        DecodeAll(BytesOf(FramedText("1") + FramedText("2") + FramedText("3") + FramedText("4")), 2));
    EXPECT_THAT(lines, ElementsAre(StartsWith("0 frame"), "8 text 31",
                                   "12 bad frame 00 C0 44 31 30 30 30 31 (it is refused on purpose)",
                                   StartsWith("24 frame"), "32 text 33",
                                   "36 bad frame 00 C0 44 31 30 30 30 31 (it is refused on purpose)"));
}

TEST(PrinterFrames, RefusesEveryFrameInWhichOneByteWasChanged) {
    const uint32_t seed = TestSeed(11);
    std::mt19937 random(seed);
    const Bytes good = Framed(BytesOf("\x1B\x61\x01Some text \x7D\xC0.\x0A"));
    for (size_t at = 8; at + 1 < good.size(); ++at) {
        Bytes bad = good;
        bad[at] = static_cast<uint8_t>(bad[at] ^ (1U << random() % 8));
        bad.insert(bad.end(), good.begin(), good.end());
        const auto commands = DecodeAll(bad);
        ASSERT_EQ(commands.front().GetKind(), Kind::BadFrame) << "byte " << at << ", " << HowToRepeat(seed);
        ASSERT_EQ(commands.back().GetKind(), Kind::LineFeed) << "byte " << at << ", " << HowToRepeat(seed);
    }
}
