#include "printer/FirmwareTables.h"

#include "tests/printer/Printing.h"

#include <gmock/gmock.h>

using namespace printer;
using namespace printer::testing;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

namespace {

std::string Typeset(char width, char height, const std::u16string &text) {
    std::string bytes = "\x1B\x67\x55";
    bytes += width;
    bytes += height;
    for (const char16_t unit : text + u'\0') {
        bytes += static_cast<char>(unit >> 8);
        bytes += static_cast<char>(unit & 0xFF);
    }
    return bytes + "\x0A";
}

std::string Font(const std::string &name) {
    return "\x1B\x67\x46" + name + '\0';
}

} // namespace

TEST(PrinterTrueType, TakesZeroAsTheDefaultSizeAndSmallNumbersAsItsMultiples) {
    EXPECT_EQ(TrueTypeSize(0), 24);
    EXPECT_EQ(TrueTypeSize(1), 24);
    EXPECT_EQ(TrueTypeSize(2), 48);
    EXPECT_EQ(TrueTypeSize(7), 168);
    EXPECT_EQ(TrueTypeSize(8), 8);
    EXPECT_EQ(TrueTypeSize(255), 255);
}

TEST(PrinterTrueType, PrintsTextInTheHeightItWasGiven) {
    EXPECT_EQ(PictureOf(Typeset(100, 100, u"Hg")).Height(), 100);
    const Area black = BlackArea(PictureOf(Typeset(100, 100, u"H")));
    EXPECT_GT(black.height, 50);
    EXPECT_LT(black.height, 80);
}

TEST(PrinterTrueType, StretchesTextToTheWidthItWasGiven) {
    const int narrow = BlackArea(PictureOf(Typeset(40, 40, u"Hello"))).width;
    const int wide = BlackArea(PictureOf(Typeset(80, 40, u"Hello"))).width;
    EXPECT_NEAR(wide, 2 * narrow, 8);
}

TEST(PrinterTrueType, UsesTheFontThatIsNamed) {
    const Bitmap own = PictureOf(Typeset(40, 40, u"Hello")),
                 serif = PictureOf(Font("DejaVu Serif") + Typeset(40, 40, u"Hello"));
    EXPECT_FALSE(own == serif);
    EXPECT_TRUE(PictureOf(Font("dejavuserif.ttf") + Typeset(40, 40, u"Hello")) == serif);
    EXPECT_TRUE(PictureOf(Font("DejaVuSerif") + Typeset(40, 40, u"Hello")) == serif);
}

TEST(PrinterTrueType, FallsBackToItsOwnFontAndSaysSo) {
    Printing printing;
    EXPECT_THAT(
        printing.Print(Font("No Such Font")),
        ElementsAre("No font of this name is installed. Its text is printed in the printer's own font."));
    EXPECT_THAT(printing.Print(Typeset(40, 40, u"Hello")), IsEmpty());
    EXPECT_TRUE(printing.Picture() == PictureOf(Typeset(40, 40, u"Hello")));
}

TEST(PrinterTrueType, ReadsHighByteFirstAndSurrogatePairs) {
    EXPECT_THAT(DecodeUtf16(Bytes{0x00, 0x41, 0x20, 0xAC, 0xD8, 0x3D, 0xDE, 0x00}),
                ElementsAre(U'A', U'\u20AC', U'\U0001F600'));
    EXPECT_THAT(DecodeUtf16(Bytes{0xD8, 0x00, 0x00, 0x41, 0xDC, 0x00, 0x00}),
                ElementsAre(Replacement, U'A', Replacement));
}

TEST(PrinterTrueType, BreaksLinesAtTheEndOfThePaper) {
    EXPECT_EQ(PictureOf(Typeset(100, 100, u"WWWWWWWWWW")).Height() % 100, 0);
    EXPECT_GT(PictureOf(Typeset(100, 100, u"WWWWWWWWWW")).Height(), 100);
}
