#include "printer/Fonts.h"

#include "printer/FontFiles.h"
#include "tests/printer/Printing.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <stdexcept>

using namespace printer;
using namespace printer::testing;
using ::testing::HasSubstr;

TEST(PrinterFonts, FindsAMonospacedFontAndItsBoldFace) {
    EXPECT_TRUE(std::filesystem::exists(FontFiles().Monospaced()));
    EXPECT_TRUE(std::filesystem::exists(FontFiles().BoldMonospaced()));
}

TEST(PrinterFonts, FindsFontsByFamilyAndByFileName) {
    const std::string file = FontFiles().FindByName("DejaVu Sans Mono");
    EXPECT_THAT(file, HasSubstr("DejaVuSansMono.ttf"));
    EXPECT_EQ(FontFiles().FindByName("dejavu sans mono"), file);
    EXPECT_EQ(FontFiles().FindByName("DejaVuSansMono.ttf"), file);
    EXPECT_EQ(FontFiles().FindByName("DEJAVUSANSMONO"), file);
    EXPECT_EQ(FontFiles().FindByName("No Such Font"), "");
    EXPECT_EQ(FontFiles().FindByName(""), "");
}

TEST(PrinterFonts, RefusesAFileThatIsNoFont) {
    EXPECT_THROW(Fonts("/dev/null"), std::runtime_error);
    EXPECT_THROW(Fonts("/nonexistent.ttf"), std::runtime_error);
}

TEST(PrinterFonts, DrawsBoldByPrintingTwiceWhenItHasOneFileOnly) {
    Fonts fonts(FontFiles().Monospaced());
    const Bitmap regular = fonts.Glyph(U'H', 12, 24, false);
    Bitmap twice = regular;
    twice.Draw(regular, 1, 0);
    EXPECT_EQ(RowsOf(fonts.Glyph(U'H', 12, 24, true)), RowsOf(twice));
}

TEST(PrinterFonts, CoversLatinCyrillicAndGreek) {
    const Bitmap missing = TestFonts().Glyph(char32_t{0xE123}, 12, 24, false);
    for (const int letter : {0x41, 0xC9, 0xDF, 0x17E, 0x416, 0x44F, 0x3A9, 0x3AE, 0x20AC})
        EXPECT_NE(RowsOf(TestFonts().Glyph(static_cast<char32_t>(letter), 12, 24, false)), RowsOf(missing))
            << letter;
}

TEST(PrinterFonts, DrawsTheSameGlyphAfterManyOthers) {
    const Bitmap before = TestFonts().Glyph(U'g', 12, 24, false);
    for (char32_t code = 0x100; code < 0x100 + 3000; ++code)
        TestFonts().Glyph(code, 5, 9, false);
    EXPECT_EQ(RowsOf(TestFonts().Glyph(U'g', 12, 24, false)), RowsOf(before));
}

TEST(PrinterFonts, DrawsEverySizeWithinItsCell) {
    for (const int size : {1, 2, 5, 255, 256})
        EXPECT_EQ(TestFonts().Glyph(U'M', size, size, false).Height(), size);
}
