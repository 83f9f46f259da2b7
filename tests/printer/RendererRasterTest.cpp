#include "tests/printer/Printing.h"

#include <random>

using namespace printer;
using namespace printer::testing;

namespace {

const std::string Plain = "\x1B\x58\x34";
const std::string Compressed = "\x1B\x58\x33";
const std::string EndOfCompressed = "\x1B\x58\x32\x18";
const std::string Spacing24 = "\x1B\x33\x18";

// 24 lines of one byte, each with its own dots.
std::string Staircase() {
    std::string band;
    for (int line = 0; line < 24; ++line)
        band += static_cast<char>(0x80 >> line % 8);
    return band;
}

// Its dots one by one, from x, y on.
std::vector<Area> StaircaseAt(int x, int y) {
    std::vector<Area> dots;
    for (int line = 0; line < 24; ++line)
        dots.push_back({x + line % 8, y + line, 1, 1});
    return dots;
}

std::vector<Area> operator+(std::vector<Area> areas, const std::vector<Area> &more) {
    areas.insert(areas.end(), more.begin(), more.end());
    return areas;
}

std::string Literal(const std::string &bytes) {
    return static_cast<char>(0x80 + bytes.size()) + bytes;
}

std::string RandomBytes(std::mt19937 &random) {
    std::string bytes;
    for (auto left = random() % 200; left > 0; --left)
        bytes += static_cast<char>(random() % 2 == 0 ? 0x80 + random() % 128 : random());
    return bytes;
}

} // namespace

TEST(PrinterRendererRaster, PrintsARasterBandInTheLine) {
    const std::string band = "\xF0\x0F"s + std::string(46, '\0');
    const Bitmap picture = PictureOf("\x1B\x33\x18\x1B\x58\x34\x02\x18" + band + "\x0A\x1B\x32");
    ExpectBlackExactly(picture, {{0, 0, 4, 1}, {12, 0, 4, 1}});
    EXPECT_EQ(picture.Height(), 24);
}

TEST(PrinterRendererRaster, FeedsAShortBandByItsLines) {
    const std::string band = std::string(10, '\xFF') + std::string(14, '\0');
    const Bitmap picture = PictureOf("\x1B\x33\x18\x1B\x58\x34\x01\x18" + std::string(24, '\xFF') +
                                     "\x0A\x1B\x58\x34\x01\x0A" + band + "\x1B\x33\x0A\x0A");
    ExpectBlackExactly(picture, {{0, 0, 8, 34}});
    EXPECT_EQ(picture.Height(), 34);
}

TEST(PrinterRendererRaster, PrintsBandsAtAPosition) {
    const std::string band = "\x1B\x58\x34\x01\x18" + std::string(24, '\xFF');
    ExpectBlackExactly(PictureOf("\x1B\x4F\x32\x00\x00\x00"s + band + "\x0A"), {{50, 0, 8, 24}});
}

TEST(PrinterRendererRaster, PrintsACompressedBandLikeThePlainOne) {
    // Lines of 2 bytes: 20 bytes FF, 3 bytes 0F, 25 bytes 00.
    const Bitmap picture = PictureOf("\x1B\x58\x33\x02\x18\xD4\xFF\x83\x0F\x0F\x0F\xD9\0\x1B\x58\x32\x18"s);
    ExpectBlackExactly(picture, {{0, 0, 16, 10}, {4, 10, 4, 1}, {12, 10, 4, 1}, {4, 11, 4, 1}});
    EXPECT_EQ(picture.Height(), 24);
}

TEST(PrinterRendererRaster, FeedsABlankBandAfterAnEmptyOne) {
    const Bitmap picture = PictureOf("\x1B\x58\x33\x04\x18\x1B\x58\x32\x18"s);
    ExpectBlackExactly(picture, {});
    EXPECT_EQ(picture.Height(), 24);
}

TEST(PrinterRendererRaster, JoinsBandsWithoutAGapOrAnOverlap) {
    const std::string band = Plain + "\x01\x18" + Staircase() + "\x0A";
    const Bitmap picture = PictureOf("\x1D\x50\xB4\xB4" + Spacing24 + band + band + "\x1B\x32");
    ExpectBlackExactly(picture, StaircaseAt(0, 0) + StaircaseAt(0, 24));
    EXPECT_EQ(picture.Height(), 48);
}

TEST(PrinterRendererRaster, LeavesAGapWhereTheLineSpacingIsLargerThanABand) {
    const std::string band = Plain + "\x01\x18" + Staircase() + "\x0A";
    ExpectBlackExactly(PictureOf("\x1B\x33\x20" + band + band), StaircaseAt(0, 0) + StaircaseAt(0, 32));
}

TEST(PrinterRendererRaster, JoinsCompressedBandsWhateverTheLineSpacingIs) {
    const std::string band = Compressed + "\x01\x18" + Literal(Staircase()) + EndOfCompressed;
    const Bitmap picture = PictureOf(Spacing24 + band + "\x1B\x33\x50" + band);
    ExpectBlackExactly(picture, StaircaseAt(0, 0) + StaircaseAt(0, 24));
    EXPECT_EQ(picture.Height(), 48);
}

TEST(PrinterRendererRaster, TakesMoreThan24LinesFor24) {
    ExpectBlackExactly(PictureOf(Spacing24 + Plain + "\x01\xFF" + Staircase() + "\x0A"), StaircaseAt(0, 0));
}

TEST(PrinterRendererRaster, TakesABandOfNoWidthOrNoHeight) {
    EXPECT_EQ(PictureOf(Spacing24 + Plain + "\0\x18\x0A"s).Height(), 24);
    EXPECT_EQ(PictureOf(Spacing24 + Plain + "\x01\0"s + Staircase() + "\x0A").Height(), 24);
}

TEST(PrinterRendererRaster, CutsOffWhatLiesBesideThePaper) {
    const std::string band = Plain + "\xFF\x18" + std::string(255 * 24, '\xFF') + "\x0A";
    ExpectBlackExactly(PictureOf("\x1B\x4F\x7C\x01\0\0"s + band), {{380, 0, 4, 24}});
}

TEST(PrinterRendererRaster, FeedsBandsDownThePage) {
    const std::string band = Plain + "\x01\x18" + Staircase() + "\x0A";
    const std::string area = "\x1B\x57\x10\0\x20\0\x64\0\x64\0"s;
    const std::string position = "\x1B\x4F\0\0\x05\0"s;
    ExpectBlackExactly(PictureOf("\x1B\x4C" + area + position + Spacing24 + band + band + "\x0C"),
                       StaircaseAt(16, 37) + StaircaseAt(16, 61));
}

TEST(PrinterRendererRaster, FeedsCompressedBandsDownThePage) {
    const std::string band = Compressed + "\x01\x18" + Literal(Staircase()) + EndOfCompressed;
    ExpectBlackExactly(PictureOf("\x1B\x4C" + band + band + "\x0C"), StaircaseAt(0, 0) + StaircaseAt(0, 24));
}

TEST(PrinterRendererRaster, TurnsABandWithTheDirectionOfThePage) {
    const std::string area = "\x1B\x57\0\0\0\0\x64\0\x64\0"s;
    const std::string band = Plain + "\x01\x18" + std::string(1, '\xFF') + std::string(23, '\x80');
    ExpectBlackExactly(PictureOf("\x1B\x4C" + area + "\x1B\x54\x02" + band + "\x0A\x0C"),
                       {{92, 99, 8, 1}, {99, 76, 1, 24}});
    ExpectBlackExactly(PictureOf("\x1B\x4C" + area + "\x1B\x54\x03" + band + "\x0A\x0C"),
                       {{99, 0, 1, 8}, {76, 0, 24, 1}});
}

TEST(PrinterRendererRaster, GoesOnBehindCompressedDataThatIsBroken) {
    const uint32_t seed = TestSeed(59);
    SCOPED_TRACE(HowToRepeat(seed));
    std::mt19937 random(seed);
    const std::string zeros(70000, '\0');
    for (int i = 0; i < 500; ++i) {
        Printing printing;
        printing.Print(Compressed + static_cast<char>(random()) + static_cast<char>(random()) +
                       RandomBytes(random) + EndOfCompressed);
        // Ends whatever command the broken data has begun.
        printing.Print(zeros);
        printing.Print("\x1B\x40");
        const int rows = printing.Rows();
        printing.Print(Spacing24 + Plain + "\x01\x18" + Staircase() + "\x0A");
        ASSERT_EQ(printing.Rows(), rows + 24);
    }
}
