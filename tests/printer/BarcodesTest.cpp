#include "printer/Symbols.h"

#include "tests/printer/Printing.h"

#include <gmock/gmock.h>

using namespace printer;
using namespace printer::testing;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

namespace {

Bitmap BitmapOf(const Symbol &symbol) {
    EXPECT_EQ(symbol.problem, "");
    Bitmap picture(symbol.width, symbol.height);
    for (int y = 0; y < symbol.height; ++y)
        for (int x = 0; x < symbol.width; ++x)
            if (symbol.dots[static_cast<size_t>(y * symbol.width + x)] != 0)
                picture.Set(x, y);
    return picture;
}

// The paper with a symbol at this place and nothing else.
void ExpectSymbolAt(const Bitmap &paper, const Symbol &symbol, int x, int y) {
    Bitmap expected(paper.Width(), paper.Height());
    expected.Draw(BitmapOf(symbol), x, y);
    EXPECT_TRUE(paper == expected);
}

} // namespace

TEST(PrinterBarcodes, PrintsABarcodeAtOnceWithItsWidthAndHeight) {
    const Symbol symbol = EncodeLinear({69, 2, 50, "ABC"});
    const Bitmap paper = PictureOf("\x1D\x77\x02\x1D\x68\x32\x1D\x6B\x45\x03"
                                   "ABC");
    ExpectSymbolAt(paper, symbol, 0, 16);
    EXPECT_EQ(paper.Height(), 50 + 2 * 16);
}

TEST(PrinterBarcodes, AlignsABarcodeLikeALine) {
    const Symbol symbol = EncodeLinear({69, 2, 50, "ABC"});
    const std::string barcode = "\x1D\x77\x02\x1D\x68\x32\x1D\x6B\x45\x03"
                                "ABC";
    ExpectSymbolAt(PictureOf("\x1B\x61\x01" + barcode), symbol, (384 - symbol.width) / 2, 16);
    ExpectSymbolAt(PictureOf("\x1B\x61\x02" + barcode), symbol, 384 - symbol.width, 16);
    ExpectSymbolAt(PictureOf("\x1B\x24\x1E\x00"s + barcode), symbol, 30, 16);
}

TEST(PrinterBarcodes, PrintsTheTextUnderTheBarsWhenSwitchedOn) {
    const std::string barcode = "\x1D\x77\x02\x1D\x68\x32\x1D\x6B\x45\x03"
                                "ABC";
    const Bitmap without = PictureOf(barcode), with = PictureOf("\x1D\x48\x01" + barcode);
    EXPECT_EQ(with.Height(), without.Height() + 4 + 17);
    Printing switchedOff;
    switchedOff.Print("\x1D\x48\x01\x1D\x48\x00"s);
    switchedOff.Print(barcode);
    EXPECT_TRUE(switchedOff.Picture() == without);
    const int width = EncodeLinear({69, 2, 50, "ABC"}).width;
    EXPECT_EQ(BlackDots(with, {0, 66, 384, 4}), 0);
    const Area text = BlackArea(with.Rows(70, 17));
    EXPECT_GT(text.height, 5);
    EXPECT_NEAR(text.x + text.width / 2, width / 2, 6);
}

TEST(PrinterBarcodes, PassesTheBytesOfMatrixCommandsOn) {
    ExpectSymbolAt(PictureOf("\x1D\x5A\x02\x1B\x5A\x05\x4D\x03\x03\x00"
                             "ABC"s),
                   EncodeMatrix({2, 5, 'M', 3, 0, "ABC"}), 0, 16);
    ExpectSymbolAt(PictureOf("\x1D\x5A\x00\x1D\x77\x02\x1B\x5A\x03\x02\x03\x01\x00\x41\x1D\x48\x01"s),
                   EncodeMatrix({0, 3, 2, 3, 2, "A"}), 0, 16);
}

TEST(PrinterBarcodes, LeavesTheZeroAtTheEndOfADatabarOut) {
    ExpectSymbolAt(PictureOf("\x1D\x77\x02\x1D\x68\x28\x1D\x31\0\0002001234567890\0"s),
                   EncodeDatabar({0, 0, 2, 40, "2001234567890"}), 0, 16);
}

TEST(PrinterBarcodes, PrintsABoxWithTheReasonForWhatCannotBeEncoded) {
    Printing printing;
    const auto remarks = printing.Print("\x1D\x6B\x43\x03"
                                        "abc");
    EXPECT_THAT(remarks, ElementsAre(HasSubstr("EAN-13")));
    const Area box = BlackArea(printing.Picture());
    EXPECT_EQ(box.width, 384);
    EXPECT_EQ(box.y, 16);
    EXPECT_GT(BlackDots(printing.Picture(), {8, 24, 368, 17}), 100);
}

TEST(PrinterBarcodes, SaysWhenABarcodeIsWiderThanThePaper) {
    Printing printing;
    const auto remarks = printing.Print("\x1D\x77\x08\x1D\x6B\x45\x0A"
                                        "ABCDEFGHIJ");
    EXPECT_THAT(remarks, ElementsAre(HasSubstr("dots too wide for the paper and is cut off.")));
}

TEST(PrinterBarcodes, ForgetsTheSettingsAtAnInitialise) {
    EXPECT_TRUE(PictureOf("\x1D\x77\x08\x1D\x68\xFF\x1D\x48\x01\x1D\x5A\x05\x1B\x40\x1D\x6B\x44\x07"
                          "1234567") == PictureOf("\x1D\x6B\x44\x07"
                                                  "1234567"));
}

TEST(PrinterBarcodes, PrintsAStartedLineBeforeABarcode) {
    const Bitmap paper = PictureOf("\x1D\x42\x01 \x1D\x68\x32\x1D\x6B\x45\x01"
                                   "A");
    EXPECT_EQ(BlackDots(paper, {0, 0, 12, 24}), 12 * 24);
    EXPECT_EQ(BlackDots(paper, {0, 24, 384, 22}), 0);
    EXPECT_EQ(paper.Height(), 30 + 50 + 32);
}
