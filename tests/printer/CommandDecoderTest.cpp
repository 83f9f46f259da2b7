#include "printer/CommandDecoder.h"

#include "tests/printer/Decoding.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <random>

using namespace printer;
using namespace printer::testing;
using ::testing::ElementsAre;

namespace {

std::vector<std::string> Decoded(const std::string &bytes) {
    return DescribeAll(DecodeAll(BytesOf(bytes)));
}

// One command of each form, as it is sent, and the name it must get.
struct Sample {
    std::string bytes;
    std::string name;
};

const std::vector<Sample> &Samples() {
    static const std::vector<Sample> samples = {
        {"\x04", "EOT"},
        {"\x09", "HT"},
        {"\x0A", "LF"},
        {"\x0C", "FF"},
        {"\x0D", "CR"},
        {"\x18", "CAN"},
        {"\x02\x43\x31\x31\x00\x00\x03"s, "STX C"},
        {"\x02\x44\x31\x31\x00\x00\x03"s, "STX D"},
        {"\x7E\x04\x7E", "~ EOT ~"},
        {"\x1B\x00\x01"s, "ESC 00 01"},
        {"\x1B\x0C", "ESC FF"},
        {"\x1B\x1C\x2B\x01\x00\x03\x00\x1B\x21\x01"s, "ESC FS +"},
        {"\x1B\x1C\x2B\x01\x00\x00\x00"s, "ESC FS +"},
        {"\x1B\x20\x05", "ESC SP"},
        {"\x1B\x21\x01", "ESC !"},
        {"\x1B\x24\x2C\x01", "ESC $"},
        {"\x1B\x2D\x02", "ESC -"},
        {"\x1B\x32", "ESC 2"},
        {"\x1B\x33\x18", "ESC 3"},
        {"\x1B\x40", "ESC @"},
        {"\x1B\x45\x01", "ESC E"},
        {"\x1B\x4A\xFF", "ESC J"},
        {"\x1B\x4D\x43", "ESC M"},
        {"\x1B\x4D\x00"s, "ESC M"},
        {"\x1B\x4D\x53\x00\x03\x61\x62\x63"s, "ESC M S"},
        {"\x1B\x4D\x58", "ESC M X"},
        {"\x1B\x4E", "ESC N"},
        {"\x1B\x4F\x0A\x00\x14\x00"s, "ESC O"},
        {"\x1B\x50\x10\x00"s, "ESC P"},
        {"\x1B\x53", "ESC S"},
        {"\x1B\x54\x01", "ESC T"},
        {"\x1B\x56", "ESC V"},
        {"\x1B\x57\x00\x00\x00\x00\x80\x01\x20\x03"s, "ESC W"},
        {"\x1B\x58\x32\x18", "ESC X 2"},
        {"\x1B\x58\x34\x01\x18" + std::string(24, '\x55'), "ESC X 4"},
        {"\x1B\x59\xFF", "ESC Y"},
        {"\x1B\x5A\x00\x4D\x03\x03\x00\x41\x42\x43"s, "ESC Z"},
        {"\x1B\x61\x02", "ESC a"},
        {"\x1B\x64\x03", "ESC d"},
        {"\x1B\x66\x01", "ESC f"},
        {"\x1B\x67\x31\x00\x00\x00\x00\x64\x00\x00\x00\x01"s, "ESC g 1"},
        {"\x1B\x67\x32\x00\x00\x00\x00\x0A\x00\x0A\x00\x01"s, "ESC g 2"},
        {"\x1B\x67\x46\x61\x62\x00"s, "ESC g F"},
        {"\x1B\x67\x55\x01\x02\x00\x41\x20\xAC\x00\x00"s, "ESC g U"},
        {"\x1B\x6D\x31\x32\x33\x34\x35\x36\x37\x38", "ESC m"},
        {"\x1B\x6E\x01\x00\x00\x00\x00\x10\x00\x20\x16\x01\x01\x12\x30\x00"s, "ESC n"},
        {"\x1B\x74\xFF", "ESC t"},
        {"\x1B\x76", "ESC v"},
        {"\x1B\x79", "ESC y"},
        {"\x1B\x7A", "ESC z"},
        {"\x1B\x7B\x01", "ESC {"},
        {"\x1D\x21\x11", "GS !"},
        {"\x1D\x31\x06\x04\x30\x31\x00"s, "GS 1"},
        {"\x1D\x42\x01", "GS B"},
        {"\x1D\x48\x01", "GS H"},
        {"\x1D\x50\xB4\xB4", "GS P"},
        {"\x1D\x56\x01", "GS V"},
        {"\x1D\x5A\x02", "GS Z"},
        {"\x1D\x68\x50", "GS h"},
        {"\x1D\x69\x64\x00\x32\x00\x02"s, "GS i"},
        {"\x1D\x6B\x49\x02\x31\x32", "GS k"},
        {"\x1D\x73\x01", "GS s"},
        {"\x1D\x76\x01", "GS v"},
        {"\x1D\x77\x02", "GS w"},
    };
    return samples;
}

// Random streams of whole commands, text and noise.
std::string RandomStream(std::mt19937 &random, size_t pieces) {
    std::string stream;
    for (size_t i = 0; i < pieces; ++i) {
        switch (random() % 4) {
        case 0:
            stream += "some text ~\x80\xFF";
            break;
        case 1:
            stream += static_cast<char>(random() % 256);
            break;
        case 2: {
            const Bytes frame = Framed(BytesOf(Samples()[random() % Samples().size()].bytes));
            stream.append(frame.begin(), frame.end());
            break;
        }
        default:
            stream += Samples()[random() % Samples().size()].bytes;
        }
    }
    return stream;
}

} // namespace

TEST(PrinterDecoder, DecodesOneCommandOfEachFormAndNothingElse) {
    for (const Sample &sample : Samples())
        EXPECT_THAT(Decoded(sample.bytes + "x"),
                    ElementsAre("0 " + sample.name + " " + HexOf(BytesOf(sample.bytes)),
                                std::to_string(sample.bytes.size()) + " text 78"));
}

TEST(PrinterDecoder, TakesTextUpToTheNextControlByteAsOneCommand) {
    EXPECT_THAT(Decoded("Hi \x80\xFF\x0A"), ElementsAre("0 text 48 69 20 80 FF", "5 LF 0A"));
}

TEST(PrinterDecoder, FoldsZerosBetweenCommandsIntoOnePadding) {
    EXPECT_THAT(Decoded("A\0\0\0\x1B\x40"s), ElementsAre("0 text 41", "1 padding 00 00 00", "4 ESC @ 1B 40"));
}

TEST(PrinterDecoder, LeavesTheUpsideDownCommandWithoutParameterInPageMode) {
    EXPECT_THAT(Decoded("\x1B\x4C\x1B\x7B\x1B\x54\x01"),
                ElementsAre("0 ESC L 1B 4C", "2 ESC { 1B 7B", "4 ESC T 1B 54 01"));
}

TEST(PrinterDecoder, GivesTheUpsideDownCommandItsParameterAgainAfterPageMode) {
    for (const std::string leave : {"\x1B\x53", "\x0C", "\x1B\x40"})
        EXPECT_EQ(Decoded("\x1B\x4C" + leave + "\x1B\x7B\x01").back(),
                  std::to_string(2 + leave.size()) + " ESC { 1B 7B 01");
}

TEST(PrinterDecoder, SaysThatAnUpsideDownCommandInStandardModeLacksItsParameter) {
    EXPECT_THAT(Decoded("\x1B\x7B\x1B\x61\x01"),
                ElementsAre("0 incomplete 1B 7B (ESC { without on or off)", "2 ESC a 1B 61 01"));
}

TEST(PrinterDecoder, SaysThatAMagnificationFollowedByAnEscapeLacksItsSize) {
    EXPECT_THAT(Decoded("\x1D\x21\x1B\x45\x01X"),
                ElementsAre("0 incomplete 1D 21 (GS ! without a size)", "2 ESC E 1B 45 01", "5 text 58"));
}

TEST(PrinterDecoder, ShowsBytesThatBeginNoCommandAsUnknownAndGoesOn) {
    EXPECT_THAT(
        Decoded("\x1B\x2A\x1F\x1C\x70\x1DQok"),
        ElementsAre("0 unknown 1B 2A", "2 unknown 1F", "3 unknown 1C 70", "5 unknown 1D 51", "7 text 6F 6B"));
    EXPECT_THAT(Decoded("\x1B\x1B\x40"), ElementsAre("0 unknown 1B", "1 ESC @ 1B 40"));
    EXPECT_THAT(Decoded("\x02\x43\x31\x0A"), ElementsAre("0 unknown 02", "1 text 43 31", "3 LF 0A"));
}

TEST(PrinterDecoder, TellsATildeFromTheEndOfSmartCardMode) {
    EXPECT_THAT(Decoded("a~b~\x04~"), ElementsAre("0 text 61 7E 62", "3 ~ EOT ~ 7E 04 7E"));
    EXPECT_THAT(Decoded("~\x04z"), ElementsAre("0 text 7E", "1 EOT 04", "2 text 7A"));
    EXPECT_THAT(Decoded("~~\x04"), ElementsAre("0 text 7E 7E", "2 EOT 04"));
}

TEST(PrinterDecoder, ReadsACardRequestThatFollowsACancelByte) {
    EXPECT_THAT(Decoded("\x04\x1B\x4D\x44"), ElementsAre("0 EOT 04", "1 ESC M 1B 4D 44"));
}

TEST(PrinterDecoder, ReadsASecuredCardTextWhoseLengthIsSplitAt255) {
    const std::string text(255, 't');
    EXPECT_THAT(Decoded("\x1B\x4D\x53\x01\x00"s + text + "\x0A"),
                ElementsAre("0 ESC M S 1B 4D 53 01 00 " + HexOf(BytesOf(text)), "260 LF 0A"));
}

TEST(PrinterDecoder, EndsACompressedBandAtTheNextEscape) {
    EXPECT_THAT(Decoded("\x1B\x58\x33\x04\x18\x81\xFF\x83\0\0\0\x1B\x58\x32\x18"s),
                ElementsAre("0 ESC X 3 1B 58 33 04 18 81 FF 83 00 00 00", "11 ESC X 2 1B 58 32 18"));
    EXPECT_THAT(Decoded("\x1B\x58\x33\x04\x18\x1B\x58\x32\x18"s),
                ElementsAre("0 ESC X 3 1B 58 33 04 18", "5 ESC X 2 1B 58 32 18"));
}

TEST(PrinterDecoder, DoesNotTakeAnEscapeInsideARunLengthTokenForTheEnd) {
    EXPECT_THAT(Decoded("\x1B\x58\x33\x04\x18\x82\x1B\x58\xC4\x1B\x1B\x58\x32\x18"s),
                ElementsAre("0 ESC X 3 1B 58 33 04 18 82 1B 58 C4 1B", "10 ESC X 2 1B 58 32 18"));
}

TEST(PrinterDecoder, EndsACompressedBandAtAByteThatBeginsNoToken) {
    EXPECT_THAT(
        Decoded("\x1B\x58\x33\x04\x18\x81\xFF\x41\x0A"s),
        ElementsAre("0 ESC X 3 1B 58 33 04 18 81 FF (no run-length token follows)", "7 text 41", "8 LF 0A"));
}

TEST(PrinterDecoder, EndsACompressedBandAfter24Lines) {
    EXPECT_THAT(Decoded("\x1B\x58\x33\x01\x18\xD8\x00\x81\xFF"s),
                ElementsAre("0 ESC X 3 1B 58 33 01 18 D8 00 (more than 24 lines)", "7 text 81 FF"));
}

TEST(PrinterDecoder, LooksForTheEndOfTrueTypeTextAtWholeCharactersOnly) {
    EXPECT_THAT(Decoded("\x1B\x67\x55\x00\x00\x41\x00\x00\x42\x00\x00\x0A"s),
                ElementsAre("0 ESC g U 1B 67 55 00 00 41 00 00 42 00 00", "11 LF 0A"));
}

TEST(PrinterDecoder, ReportsACommandThatTheStreamCutsOff) {
    EXPECT_THAT(Decoded("ok\x1D\x6B\x49\x05\x31"),
                ElementsAre("0 text 6F 6B", "2 incomplete 1D 6B 49 05 31 (its end is missing)"));
    EXPECT_THAT(Decoded("\x1B"), ElementsAre("0 incomplete 1B (its end is missing)"));
}

TEST(PrinterDecoder, CutsATrueTypeNameWhoseEndIsMissing) {
    const auto commands = DecodeAll(BytesOf("\x1B\x67\x46" + std::string(3000, 'n')));
    ASSERT_EQ(commands.size(), 2U);
    EXPECT_EQ(commands[0].bytes.size(), 3U + 1024U);
    EXPECT_EQ(commands[0].note, "cut: its end is missing");
    EXPECT_EQ(commands[1].GetKind(), Kind::Text);
}

TEST(PrinterDecoder, GivesTheSameCommandsHoweverTheBytesAreSplit) {
    const uint32_t seed = TestSeed(20240601);
    std::mt19937 random(seed);
    for (int round = 0; round < 300; ++round) {
        const Bytes stream = BytesOf(RandomStream(random, 40));
        const auto whole = DescribeAll(DecodeAll(stream));
        std::vector<Command> pieces;
        StreamDecoder decoder;
        const size_t longest = round % 2 == 0 ? 1 : 9;
        for (size_t at = 0; at < stream.size();) {
            const size_t length = std::min<size_t>(1 + random() % longest, stream.size() - at);
            decoder.Feed(ByteView(stream).subspan(at, length), pieces);
            at += length;
        }
        decoder.Finish(pieces);
        ASSERT_EQ(DescribeAll(pieces), whole)
            << HowToRepeat(seed) << "\nround " << round << ": " << HexOf(stream);
    }
}

TEST(PrinterDecoder, AccountsForEveryByteOfAnyPlainStream) {
    const uint32_t seed = TestSeed(7);
    std::mt19937 random(seed);
    for (int round = 0; round < 300; ++round) {
        Bytes stream(1 + random() % 400);
        for (uint8_t &byte : stream)
            byte = static_cast<uint8_t>(random() % 3 == 0 ? 0x1B + random() % 3 : 1 + random() % 255);
        Bytes joined;
        for (const Command &command : DecodeAll(stream)) {
            ASSERT_EQ(command.offset, joined.size()) << HowToRepeat(seed);
            joined.insert(joined.end(), command.bytes.begin(), command.bytes.end());
        }
        ASSERT_EQ(joined, stream) << HowToRepeat(seed);
    }
}

TEST(PrinterDecoder, BoundsTheLongestTextAndPadding) {
    for (const uint8_t byte : {uint8_t{'x'}, uint8_t{0}}) {
        const auto commands = DecodeAll(Bytes(200000, byte));
        for (const Command &command : commands)
            EXPECT_LE(command.bytes.size(), 65536U);
        EXPECT_EQ(commands.size(), 4U);
    }
}
