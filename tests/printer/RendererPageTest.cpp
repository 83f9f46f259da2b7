#include "tests/printer/Printing.h"

#include <gmock/gmock.h>

using namespace printer;
using namespace printer::testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

const std::string Reverse = "\x1D\x42\x01"; // reversed spaces are black rectangles
const std::string Begin = Reverse + "\x1B\x4C";

std::string Words(std::initializer_list<int> values) {
    std::string bytes;
    for (const int value : values) {
        bytes += static_cast<char>(value % 256);
        bytes += static_cast<char>(value / 256);
    }
    return bytes;
}

std::string Area4(int x, int y, int width, int height) {
    return "\x1B\x57" + Words({x, y, width, height});
}
std::string At(int x, int y) {
    return "\x1B\x4F" + Words({x, y});
}
std::string Direct(char n) {
    return "\x1B\x54" + std::string(1, n);
}

} // namespace

TEST(PrinterPage, PrintsNothingBeforeThePageIsPrinted) {
    Printing printing;
    printing.Print(Begin + Area4(0, 0, 384, 200) + " \x0A");
    EXPECT_EQ(printing.Rows(), 0);
    EXPECT_TRUE(printing.GetRenderer().IsInPageMode());
    printing.Print("\x0C");
    EXPECT_FALSE(printing.GetRenderer().IsInPageMode());
    ExpectBlackExactly(printing.Picture(), {{0, 0, 12, 24}});
    EXPECT_EQ(printing.Rows(), 200);
}

TEST(PrinterPage, KeepsThePageAfterPrintingWhenAsked) {
    Printing printing;
    printing.Print(Begin + Area4(0, 0, 384, 100) + " \x1B\x0C");
    EXPECT_TRUE(printing.GetRenderer().IsInPageMode());
    printing.Print(At(50, 50) + " \x1B\x0C");
    ExpectBlackExactly(printing.Picture(), {{0, 0, 12, 24}, {0, 100, 12, 24}, {50, 150, 12, 24}});
    EXPECT_EQ(printing.Rows(), 200);
}

TEST(PrinterPage, ForgetsThePageInStandardMode) {
    Printing printing;
    printing.Print(Begin + Area4(0, 0, 384, 100) + " \x1B\x53 \x0A");
    ExpectBlackExactly(printing.Picture(), {{0, 0, 12, 24}});
    EXPECT_EQ(printing.Rows(), 30);
}

TEST(PrinterPage, IsAsLongAsItsLowestDotWhenNoAreaWasSet) {
    Printing printing;
    printing.Print(Begin + At(10, 60) + " \x0C");
    ExpectBlackExactly(printing.Picture(), {{10, 60, 12, 24}});
    EXPECT_EQ(printing.Rows(), 84);
}

TEST(PrinterPage, PlacesTextInTheAreaAndFeedsLines) {
    ExpectBlackExactly(PictureOf(Begin + Area4(20, 30, 200, 100) + " \x0A \x0C"),
                       {{20, 30, 12, 24}, {20, 60, 12, 24}});
}

TEST(PrinterPage, FeedsDotsAndLinesDownThePage) {
    ExpectBlackExactly(PictureOf(Begin + Area4(0, 0, 384, 300) + " \x1B\x4A\x46 \x1B\x64\x02 \x0C"),
                       {{0, 0, 12, 24}, {0, 70, 12, 24}, {0, 130, 12, 24}});
}

TEST(PrinterPage, WritesInFourDirectionsFromTheAreasCorners) {
    const std::string area = Begin + Area4(100, 40, 200, 120);
    // 10 dots along the line, 20 dots down from line to line.
    ExpectBlackExactly(PictureOf(area + Direct(0) + At(10, 20) + " \x0C"), {{110, 60, 12, 24}});
    ExpectBlackExactly(PictureOf(area + Direct(1) + At(10, 20) + " \x0C"), {{120, 160 - 10 - 12, 24, 12}});
    ExpectBlackExactly(PictureOf(area + Direct(2) + At(10, 20) + " \x0C"),
                       {{300 - 10 - 12, 160 - 20 - 24, 12, 24}});
    ExpectBlackExactly(PictureOf(area + Direct(3) + At(10, 20) + " \x0C"), {{300 - 20 - 24, 50, 24, 12}});
}

TEST(PrinterPage, TurnsLettersWithTheDirection) {
    Bitmap upright = PictureOf("\x1B\x4C" + Area4(0, 0, 12, 24) + "F\x0C");
    Bitmap upsideDown = PictureOf("\x1B\x4C" + Area4(0, 0, 12, 24) + Direct(2) + "F\x0C");
    Bitmap cell(12, 24), turned(12, 24);
    cell.Draw(upright, 0, 0);
    turned.Draw(upsideDown, 0, 0);
    EXPECT_EQ(RowsOf(turned), RowsOf(cell.Turned()));
    const Bitmap sideways = PictureOf("\x1B\x4C" + Area4(0, 0, 24, 12) + Direct(3) + "F\x0C");
    for (int y = 0; y < 24; ++y)
        for (int x = 0; x < 12; ++x)
            EXPECT_EQ(sideways.Get(23 - y, x), cell.Get(x, y));
}

TEST(PrinterPage, BreaksLinesAtTheAreasEndAlongTheDirection) {
    ExpectBlackExactly(PictureOf(Begin + Area4(0, 0, 300, 48) + Direct(1) + "     \x0C"),
                       {{0, 0, 24, 48}, {30, 36, 24, 12}});
}

TEST(PrinterPage, CutsOffWhatLeavesTheArea) {
    const std::string band = "\x1B\x58\x34\x01\x18" + std::string(24, '\xFF');
    ExpectBlackExactly(PictureOf(Begin + Area4(50, 50, 20, 10) + At(15, 5) + band + "\x0C"),
                       {{65, 55, 5, 5}});
}

TEST(PrinterPage, ClearsTheAreaOnly) {
    ExpectBlackExactly(PictureOf(Begin + Area4(0, 0, 50, 50) + " " + Area4(100, 0, 50, 50) + " \x18\x0C"),
                       {{0, 0, 12, 24}});
}

TEST(PrinterPage, ClearsTextThatIsNotYetInThePage) {
    ExpectBlackExactly(PictureOf(Begin + Area4(0, 0, 50, 50) + " \x18\x0C"), {});
}

TEST(PrinterPage, DrawsABoxAtThePositionWithItsThicknessInside) {
    ExpectBlackExactly(PictureOf("\x1B\x4C" + Area4(0, 0, 384, 100) + At(10, 20) + "\x1D\x69" +
                                 Words({100, 50}) + "\x03\x0C"),
                       {{10, 20, 100, 3}, {10, 67, 100, 3}, {10, 20, 3, 50}, {107, 20, 3, 50}});
}

TEST(PrinterPage, DrawsABoxOfThicknessZeroOneDotThick) {
    ExpectBlackExactly(
        PictureOf("\x1B\x4C" + Area4(0, 0, 384, 100) + At(10, 20) + "\x1D\x69" + Words({4, 3}) + "\0\x0C"s),
        {{10, 20, 4, 1}, {10, 22, 4, 1}, {10, 20, 1, 3}, {13, 20, 1, 3}});
}

TEST(PrinterPage, DrawsLinesInTheAreasCoordinates) {
    const std::string line = "\x1B\x67\x31" + Words({0, 10, 99, 10}) + "\x02";
    ExpectBlackExactly(PictureOf("\x1B\x4C" + Area4(50, 60, 200, 150) + line + "\x0C"), {{50, 70, 100, 2}});
    ExpectBlackExactly(PictureOf("\x1B\x4C" + Area4(50, 60, 200, 150) + Direct(1) + line + "\x0C"),
                       {{60, 110, 2, 100}});
}

TEST(PrinterPage, PutsABarcodeAtThePositionInTheDirection) {
    const std::string barcode = "\x1D\x77\x02\x1D\x68\x32\x1D\x6B\x49\x04WXYZ";
    const Bitmap level = PictureOf("\x1B\x4C" + Area4(0, 0, 384, 300) + At(7, 9) + barcode + "\x0C");
    const Area black = BlackArea(level);
    EXPECT_EQ(black.x, 7);
    EXPECT_EQ(black.y, 9);
    EXPECT_EQ(black.height, 50);
    const Bitmap upright =
        PictureOf("\x1B\x4C" + Area4(0, 0, 384, 300) + Direct(3) + At(7, 9) + barcode + "\x0C");
    const Area turned = BlackArea(upright);
    EXPECT_EQ(turned.y, 7);
    EXPECT_EQ(turned.x, 384 - 9 - 50);
    EXPECT_EQ(turned.height, black.width);
}

TEST(PrinterPage, PutsRasterBandsAtThePosition) {
    const std::string band = std::string(24, '\xFF');
    ExpectBlackExactly(PictureOf("\x1B\x4C" + Area4(0, 0, 384, 100) + At(40, 50) + "\x1B\x58\x34\x01\x18" +
                                 band + "\x0A\x0C"),
                       {{40, 50, 8, 24}});
}

TEST(PrinterPage, CutsOffAnAreaAtTheEdgeOfThePaper) {
    Printing printing;
    EXPECT_THAT(printing.Print(Begin + Area4(300, 0, 200, 50) + Direct(2) + " \x0C"),
                ElementsAre("The area is cut off at the edge of the page, which is 384 x 4096 dots."));
    ExpectBlackExactly(printing.Picture(), {{372, 26, 12, 24}});
}

TEST(PrinterPage, KeepsTheAreaWhenTheNewOneIsOutside) {
    Printing printing;
    EXPECT_THAT(printing.Print(Begin + Area4(20, 30, 100, 50) + Area4(384, 0, 10, 10) + " \x0C"),
                ElementsAre("The area lies outside the page and is not taken."));
    ExpectBlackExactly(printing.Picture(), {{20, 30, 12, 24}});
}

TEST(PrinterPage, PrintsAStartedLineBeforePageMode) {
    Printing printing;
    printing.Print(Reverse + " \x1B\x4C");
    ExpectBlackExactly(printing.Picture(), {{0, 0, 12, 24}});
}

TEST(PrinterPage, PrintsTheLineAtAFormFeedInStandardMode) {
    ExpectBlackExactly(PictureOf(Reverse + " \x0C"), {{0, 0, 12, 24}});
}

TEST(PrinterPage, TakesAnyNumbersWithoutLeavingThePage) {
    Printing printing;
    const std::string most = "\xFF\xFF\xFF\xFF";
    printing.Print("\x1B\x4C\x1B\x57" + Words({0, 0, 65535, 65535}) + At(300, 65535) +
                   "text\x0A\x1B\x4A\xFF" + "\x1D\x69" + most + "\xFF\x1B\x67\x31" + most +
                   "\0\0\0\0\xFF\x1B\x67\x32\0\0\0\0"s + most + "\xFF\x0C");
    EXPECT_EQ(printing.Rows(), 4096);
}
