#include "tests/printer/Printing.h"

#include <gmock/gmock.h>

using namespace printer;
using namespace printer::testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

const std::string Reverse = "\x1D\x42\x01"; // reversed spaces are black rectangles

// A character at the upper left corner in the usual size.
Bitmap CellOf(const std::string &bytes) {
    Bitmap cell(12, 24);
    cell.Draw(PictureOf(bytes + "\x0A"), 0, 0);
    return cell;
}

} // namespace

TEST(PrinterRenderer, PrintsNothingBeforeTheLineFeed) {
    Printing printing;
    EXPECT_THAT(printing.Print("Hello\x0D"), IsEmpty());
    EXPECT_EQ(printing.Rows(), 0);
    EXPECT_TRUE(printing.GetRenderer().HasUnprintedLine());
    printing.Print("\x0A");
    EXPECT_EQ(printing.Rows(), 30);
    EXPECT_FALSE(printing.GetRenderer().HasUnprintedLine());
}

TEST(PrinterRenderer, PutsCharactersIntoCellsOf12By24Dots) {
    const Bitmap picture = PictureOf("HHH\x0A");
    const int dots = BlackDots(picture, {0, 0, 12, 24});
    EXPECT_GT(dots, 40);
    EXPECT_EQ(BlackDots(picture, {12, 0, 12, 24}), dots);
    EXPECT_EQ(BlackDots(picture, {24, 0, 12, 24}), dots);
    EXPECT_EQ(BlackDots(picture, {0, 0, 384, 30}), 3 * dots);
}

TEST(PrinterRenderer, DrawsReversedSpacesAsFullCells) {
    ExpectBlackExactly(PictureOf(Reverse + "   \x0A"), {{0, 0, 36, 24}});
}

TEST(PrinterRenderer, InvertsEveryDotOfAReversedCharacter) {
    Bitmap reversed = CellOf(Reverse + "A");
    reversed.Invert();
    EXPECT_EQ(RowsOf(reversed), RowsOf(CellOf("A")));
}

TEST(PrinterRenderer, UnderlinesWithOneOrTwoRowsAtTheFootOfTheCell) {
    ExpectBlackExactly(PictureOf("\x1B\x2D\x01  \x0A"), {{0, 23, 24, 1}});
    ExpectBlackExactly(PictureOf("\x1B\x2D\x02  \x0A"), {{0, 22, 24, 2}});
    EXPECT_EQ(BlackDots(PictureOf("\x1B\x2D\x00  \x0A"s), {0, 0, 384, 30}), 0);
}

TEST(PrinterRenderer, DoesNotUnderlineReversedText) {
    EXPECT_EQ(RowsOf(CellOf(Reverse + "\x1B\x2D\x02" + "A")), RowsOf(CellOf(Reverse + "A")));
}

TEST(PrinterRenderer, DrawsBoldTextWithMoreDotsInTheSameCells) {
    const int regular = BlackDots(PictureOf("Hello\x0A"), {0, 0, 60, 24});
    const Bitmap bold = PictureOf("\x1B\x45\x01Hello\x0A");
    EXPECT_GT(BlackDots(bold, {0, 0, 60, 24}), regular * 5 / 4);
    EXPECT_EQ(BlackDots(bold, {60, 0, 324, 30}), 0);
}

TEST(PrinterRenderer, MagnifiesWidthAndHeightUpToEightTimes) {
    for (int width = 1; width <= 8; ++width)
        for (int height = 1; height <= 8; ++height) {
            const auto size = static_cast<char>((width - 1) << 4 | (height - 1));
            const Bitmap picture = PictureOf(Reverse + "\x1D\x21" + std::string(1, size) + "  \x0A");
            ExpectBlackExactly(picture, {{0, 0, 24 * width, 24 * height}});
        }
}

TEST(PrinterRenderer, DrawsMagnifiedLettersLargerAndNotOnlyWider) {
    const Area once = BlackArea(PictureOf("H\x0A")), threeTimes = BlackArea(PictureOf("\x1D\x21\x22H\x0A"));
    EXPECT_NEAR(threeTimes.width, 3 * once.width, 4);
    EXPECT_NEAR(threeTimes.height, 3 * once.height, 4);
}

TEST(PrinterRenderer, HasThreeFontSizes) {
    ExpectBlackExactly(PictureOf(Reverse + "\x1B\x21\x00  \x0A"s), {{0, 0, 24, 24}});
    ExpectBlackExactly(PictureOf(Reverse + "\x1B\x21\x01  \x0A"), {{0, 0, 18, 17}});
    ExpectBlackExactly(PictureOf(Reverse + "\x1B\x21\x02  \x0A"), {{0, 0, 32, 32}});
    ExpectBlackExactly(PictureOf(Reverse + "\x1B\x21\x03  \x0A"), {{0, 0, 24, 24}});
}

TEST(PrinterRenderer, StandsDifferentHeightsOnOneBase) {
    ExpectBlackExactly(PictureOf(Reverse + " \x1D\x21\x01 \x0A"), {{0, 24, 12, 24}, {12, 0, 12, 48}});
}

TEST(PrinterRenderer, AddsCharacterSpacingOnTheRight) {
    ExpectBlackExactly(PictureOf("\x1B\x2D\x01\x1B\x20\x05" + Reverse + " \x0A"), {{0, 0, 17, 24}});
    const Bitmap picture = PictureOf("\x1B\x20\x05HH\x0A");
    EXPECT_EQ(BlackDots(picture, {17, 0, 12, 24}), BlackDots(picture, {0, 0, 12, 24}));
    EXPECT_EQ(BlackDots(picture, {12, 0, 5, 24}), 0);
}

TEST(PrinterRenderer, DoublesCharacterSpacingOfDoubleWidth) {
    ExpectBlackExactly(PictureOf(Reverse + "\x1B\x20\x05\x1D\x21\x10 \x0A"), {{0, 0, 34, 24}});
}

TEST(PrinterRenderer, FeedsByTheLineSpacing) {
    ExpectBlackExactly(PictureOf(Reverse + " \x0A \x0A"), {{0, 0, 12, 24}, {0, 30, 12, 24}});
    ExpectBlackExactly(PictureOf(Reverse + "\x1B\x33\x50 \x0A \x0A"), {{0, 0, 12, 24}, {0, 80, 12, 24}});
    ExpectBlackExactly(PictureOf(Reverse + "\x1B\x33\x50\x1B\x32 \x0A \x0A"),
                       {{0, 0, 12, 24}, {0, 30, 12, 24}});
}

TEST(PrinterRenderer, FeedsAtLeastTheHeightOfTheLine) {
    ExpectBlackExactly(PictureOf(Reverse + "\x1B\x33\x05\x1D\x21\x01 \x0A \x0A"),
                       {{0, 0, 12, 48}, {0, 48, 12, 48}});
}

TEST(PrinterRenderer, FeedsDotsAndLines) {
    ExpectBlackExactly(PictureOf(Reverse + " \x1B\x4A\x64 \x0A"), {{0, 0, 12, 24}, {0, 100, 12, 24}});
    ExpectBlackExactly(PictureOf(Reverse + " \x1B\x64\x03 \x0A"), {{0, 0, 12, 24}, {0, 90, 12, 24}});
    EXPECT_EQ(PictureOf("\x1B\x64\x02\x1B\x4A\x07").Height(), 67);
}

TEST(PrinterRenderer, AlignsLines) {
    ExpectBlackExactly(PictureOf(Reverse + "\x1B\x61\x01  \x0A"), {{180, 0, 24, 24}});
    ExpectBlackExactly(PictureOf(Reverse + "\x1B\x61\x02  \x0A"), {{360, 0, 24, 24}});
    ExpectBlackExactly(PictureOf(Reverse + "\x1B\x61\x00  \x0A"s), {{0, 0, 24, 24}});
    ExpectBlackExactly(PictureOf(Reverse + "\x1B\x61\x03  \x0A"), {{0, 0, 24, 24}});
    ExpectBlackExactly(PictureOf(Reverse + "\x1B\x61\x02  \x0A", 576), {{552, 0, 24, 24}});
}

TEST(PrinterRenderer, TakesTheAlignmentFromTheBeginningOfALine) {
    ExpectBlackExactly(PictureOf(Reverse + " \x1B\x61\x02 \x0A \x0A"), {{0, 0, 24, 24}, {372, 30, 12, 24}});
}

TEST(PrinterRenderer, PlacesTextAtAPosition) {
    ExpectBlackExactly(PictureOf(Reverse + "\x1B\x24\x2C\x01 \x0A"), {{300, 0, 12, 24}});
    ExpectBlackExactly(PictureOf(Reverse + "\x1B\x4F\x64\x00\xC8\x00 \x0A"s), {{100, 0, 12, 24}});
    ExpectBlackExactly(PictureOf(Reverse + " \x1B\x24\x18\x00 \x0A"s), {{0, 0, 12, 24}, {24, 0, 12, 24}});
}

TEST(PrinterRenderer, RefusesAPositionBehindTheLine) {
    Printing printing;
    EXPECT_THAT(printing.Print(Reverse + "\x1B\x24\x80\x01 \x0A"),
                ElementsAre("Position 384 lies behind the end of the line and is not taken."));
    ExpectBlackExactly(printing.Picture(), {{0, 0, 12, 24}});
}

TEST(PrinterRenderer, GoesToTabStopsOfEightCharacters) {
    ExpectBlackExactly(PictureOf(Reverse + " \x09 \x0A"), {{0, 0, 12, 24}, {96, 0, 12, 24}});
}

TEST(PrinterRenderer, BreaksALineThatIsTooLong) {
    ExpectBlackExactly(PictureOf(Reverse + std::string(33, ' ') + "\x0A"),
                       {{0, 0, 384, 24}, {0, 30, 12, 24}});
    EXPECT_EQ(PictureOf(std::string(48, 'x') + "\x0A", 576).Height(), 30);
    EXPECT_EQ(PictureOf(std::string(49, 'x') + "\x0A", 576).Height(), 60);
}

TEST(PrinterRenderer, TurnsALineUpsideDown) {
    ExpectBlackExactly(PictureOf(Reverse + "\x1B\x7B\x01 \x0A"), {{372, 0, 12, 24}});
    Bitmap upright = PictureOf("Hello L\x0A");
    upright.Resize(24);
    Bitmap turned = PictureOf("\x1B\x7B\x01Hello L\x0A");
    turned.Resize(24);
    EXPECT_EQ(RowsOf(turned), RowsOf(upright.Turned()));
}

TEST(PrinterRenderer, DrawsABoxForACharacterThatTheFontLacks) {
    const Bitmap cell = CellOf("\x1B\x74\x19\xEE\x84\xA3"); // UTF-8, a code point for private use
    EXPECT_EQ(BlackArea(cell).height, 16);
    EXPECT_EQ(BlackArea(cell).width, 10);
    EXPECT_FALSE(cell.Get(6, 12));
}

TEST(PrinterRenderer, ReadsTextInTheCodeTable) {
    const Bitmap inDefaultTable = CellOf("\xE9"), in850 = CellOf("\x1B\x74\x02\x82"),
                 inUtf8 = CellOf("\x1B\x74\x19\xC3\xA9");
    EXPECT_GT(BlackDots(inDefaultTable, {0, 0, 12, 24}), 20);
    EXPECT_EQ(RowsOf(in850), RowsOf(inDefaultTable));
    EXPECT_EQ(RowsOf(inUtf8), RowsOf(inDefaultTable));
    EXPECT_NE(RowsOf(CellOf("\x1B\x74\x11\xE9")), RowsOf(inDefaultTable));
}

TEST(PrinterRenderer, GivesTwoByteCharactersTwoCells) {
    ExpectBlackExactly(PictureOf(Reverse + "\x1B\x74\x15\x81\x40 \x0A"), {{0, 0, 36, 24}});
}

TEST(PrinterRenderer, InitialisesStylesPositionsAndTheLine) {
    Printing printing;
    EXPECT_THAT(printing.Print("lost" + Reverse + "\x1B\x61\x02\x1B\x21\x02\x1B\x33\x64\x1B\x20\x09\x1B\x40"),
                ElementsAre("A line that was not printed is lost."));
    printing.Print("H\x0A");
    EXPECT_TRUE(printing.Picture() == PictureOf("H\x0A"));
}

TEST(PrinterRenderer, DrawsFullAndPartialCutsDifferently) {
    const Bitmap full = PictureOf("\x1D\x56\x00"s), partial = PictureOf("\x1D\x56\x01");
    EXPECT_EQ(BlackArea(full).y, 14);
    EXPECT_EQ(BlackArea(full).height, 2);
    EXPECT_EQ(full.Height(), 30);
    EXPECT_GT(BlackDots(full, {160, 0, 64, 30}), 0);
    EXPECT_EQ(BlackDots(partial, {160, 0, 64, 30}), 0);
    EXPECT_GT(BlackDots(partial, {0, 0, 160, 30}), 0);
}

TEST(PrinterRenderer, PrintsAStartedLineBeforeACut) {
    const Bitmap picture = PictureOf(Reverse + " \x1D\x56\x01");
    EXPECT_EQ(BlackDots(picture, {0, 0, 12, 24}), 12 * 24);
    EXPECT_EQ(picture.Height(), 60);
}

TEST(PrinterRenderer, DrawsTheBlackMarkItFeedsTo) {
    const Bitmap picture = PictureOf("\x1B\x7A\x1B\x79" + Reverse + " \x0A");
    EXPECT_EQ(BlackDots(picture, {0, 0, 384, 30}), 0);
    EXPECT_EQ(BlackDots(picture, {0, 30, 96, 32}), 96 * 32 / 2);
    EXPECT_EQ(BlackDots(picture, {0, 62, 12, 24}), 12 * 24);
}

TEST(PrinterRenderer, StartsPrintingSoFarBehindTheMark) {
    const Bitmap picture = PictureOf("\x1B\x50\x28\x00\x1B\x7A\x1B\x79"s + Reverse + " \x0A");
    EXPECT_EQ(BlackDots(picture, {0, 62, 384, 40}), 0);
    EXPECT_EQ(BlackDots(picture, {0, 102, 12, 24}), 12 * 24);
}

TEST(PrinterRenderer, DrawsALineFigureAsARuleInStandardMode) {
    const Bitmap picture = PictureOf("\x1B\x67\x31\x0A\x00\x05\x00\x63\x00\x05\x00\x03"s + Reverse + " \x0A");
    ExpectBlackExactly(picture, {{10, 5, 90, 3}, {0, 8, 12, 24}});
}

TEST(PrinterRenderer, DrawsAFrameForALogoItDoesNotHave) {
    const Bitmap picture = PictureOf("\x1B\x61\x01\x1B\x66\x05");
    EXPECT_EQ(BlackArea(picture).width, 160);
    EXPECT_EQ(BlackArea(picture).x, 112);
    EXPECT_EQ(picture.Height(), 64);
}

TEST(PrinterRenderer, SaysOnceThatThePaperIsAtItsEnd) {
    Printing printing(384, 100);
    EXPECT_THAT(printing.Print("a\x0A"
                               "b\x0A"
                               "c\x0A"),
                IsEmpty());
    EXPECT_THAT(printing.Print("d\x0A"
                               "e\x0A"),
                ElementsAre("The paper is 100 dots long. What follows is not drawn."));
    EXPECT_EQ(printing.Rows(), 100);
}

TEST(PrinterRenderer, KeepsPaperWithinItsBoundWhateverIsFed) {
    Printing printing;
    for (int i = 0; i < 50; ++i)
        printing.Print("\x1B\x33\xFF\x1B\x64\xFF\x1B\x67\x32\0\0\0\0\xFF\xFF\xFF\xFF\xFF"s);
    EXPECT_EQ(printing.Rows(), Paper::LongestPaper);
}

TEST(PrinterRenderer, IgnoresPageCommandsInStandardModeAndSaysSo) {
    for (const std::string &command :
         {"\x1B\x0C"s, "\x18"s, "\x1B\x54\x01"s, "\x1B\x57\0\0\0\0\1\0\1\0"s, "\x1D\x69\1\0\1\0\1"s}) {
        Printing printing;
        EXPECT_THAT(printing.Print(command), ElementsAre("This means something in page mode only."));
        EXPECT_EQ(printing.Rows(), 0);
    }
}
