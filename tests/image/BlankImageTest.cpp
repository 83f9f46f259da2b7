#include "image/BaseImage.h"

#include "tests/image/PictureTest.h"

#include <array>
#include <limits>
#include <vector>

namespace nadrel {

namespace {

using BlankImageTest = PictureTest;

constexpr int32_t kMost = std::numeric_limits<int32_t>::max();

} // namespace

struct HeaderRow {
    int32_t width;
    int32_t height;
    uint32_t colours;
    uint16_t bitCount;
    uint32_t imageBytes;
    uint32_t padding;
};

class HeaderSetup : public PictureTest, public testing::WithParamInterface<HeaderRow> {};

TEST_P(HeaderSetup, FillsTheHeader) {
    const HeaderRow &row = GetParam();
    BaseImage image;
    EXPECT_EQ(image.SetupHeader(row.width, row.height, row.colours), 1);
    EXPECT_EQ(*image.GetInfo(),
              (BITMAPINFOHEADER{40, row.width, row.height, 1, row.bitCount, 0, row.imageBytes, 0, 0, 0, 0}));
    EXPECT_EQ(image.ColourCount(), row.colours);
    EXPECT_EQ(image.RowPadding(), row.padding);
    EXPECT_EQ(image.ColourTable().size(), row.colours);
}

INSTANTIATE_TEST_SUITE_P(OfEachDepth, HeaderSetup,
                         testing::Values(HeaderRow{8, 3, 256, 8, 24, 0}, HeaderRow{5, 3, 256, 8, 24, 3},
                                         HeaderRow{6, 3, 256, 8, 24, 2}, HeaderRow{7, 3, 256, 8, 24, 1},
                                         HeaderRow{2, 1, 16, 4, 4, 3}, HeaderRow{9, 2, 16, 4, 8, 0},
                                         HeaderRow{11, 2, 16, 4, 16, 3}, HeaderRow{7, 8, 2, 1, 0, 0},
                                         HeaderRow{12, 8, 2, 1, 32, 3}, HeaderRow{32, 8, 2, 1, 32, 0},
                                         HeaderRow{1, 2, 0, 24, 8, 1}, HeaderRow{2, 2, 0, 24, 16, 2},
                                         HeaderRow{3, 2, 0, 24, 24, 3}, HeaderRow{4, 2, 0, 24, 24, 0},
                                         HeaderRow{0, 0, 0, 24, 0, 0}));

TEST_F(BlankImageTest, SetupFailsForTwoColoursLessThanEightHighWhateverTheWidth) {
    for (const int32_t width : {0, 1, 7, 8, 100, kMost}) {
        BaseImage image;
        EXPECT_EQ(image.SetupHeader(width, 7, 2), 0) << width;
    }
}

TEST_F(BlankImageTest, SetupFailsForSixteenColoursLessThanTwoWide) {
    BaseImage image;
    EXPECT_EQ(image.SetupHeader(1, 100, 16), 0);
    EXPECT_EQ(image.SetupHeader(2, 100, 16), 1);
}

TEST_F(BlankImageTest, SetupFailsForAnyOtherNumberOfColoursAndChangesNothing) {
    BaseImage image;
    image.SetupHeader(4, 4, 0);
    for (const uint32_t colours : {1U, 3U, 4U, 15U, 17U, 255U, 257U, 65536U, 0xFFFFFFFFU}) {
        EXPECT_EQ(image.SetupHeader(8, 8, colours), 0) << colours;
        EXPECT_EQ(image.GetSize(), (Size{4, 4}));
    }
}

TEST_F(BlankImageTest, SetupFailsForSizesThatNoFileCanHave) {
    BaseImage image;
    for (const uint32_t colours : {0U, 2U, 16U, 256U}) {
        EXPECT_EQ(image.SetupHeader(kMost, kMost, colours), 0) << colours;
        EXPECT_EQ(image.SetupHeader(-8, 8, colours), 0) << colours;
        EXPECT_EQ(image.SetupHeader(std::numeric_limits<int32_t>::min(), 1, colours), 0) << colours;
        EXPECT_EQ(image.SetupHeader(8, -8, colours), 0) << colours;
    }
}

TEST_F(BlankImageTest, ABlank256ColourImageIsFilledWithTheColoursIndex) {
    BaseImage image;
    EXPECT_EQ(image.CreateBlank(5, 2, 256, true, 0x00FF3366), 1); // red 102, green 51, blue 255
    EXPECT_EQ(BitsOf(image), std::vector<uint8_t>(16, 2 * 36 + 1 * 6 + 5));
}

TEST_F(BlankImageTest, ABlankImageIsFilledWithIndexZeroWhereTheColourIsMissing) {
    BaseImage image;
    EXPECT_EQ(image.CreateBlank(5, 2, 256, true, 0x00010203), 1);
    EXPECT_EQ(BitsOf(image), std::vector<uint8_t>(16, 0));
    EXPECT_EQ(image.CreateBlank(5, 2, 256, false, 0x00FF3366), 1);
    EXPECT_EQ(image.CreateBlank(5, 2, 16, true, 0x00010203), 1);
    EXPECT_EQ(BitsOf(image), std::vector<uint8_t>(8, 0));
}

TEST_F(BlankImageTest, ABlank16ColourImageHoldsTheIndexInBothHalvesOfEachByte) {
    BaseImage image;
    EXPECT_EQ(image.CreateBlank(8, 2, 16, true, 0x00660000), 1); // entry 2 of the cube: blue 102
    EXPECT_EQ(BitsOf(image), std::vector<uint8_t>(8, 0x22));
}

TEST_F(BlankImageTest, ABlankTwoColourImageIsZeroWhateverTheColour) {
    BaseImage image;
    EXPECT_EQ(image.CreateBlank(32, 8, 2, true, 0x00330000), 1);
    EXPECT_EQ(BitsOf(image), std::vector<uint8_t>(32, 0));
}

TEST_F(BlankImageTest, ABlank24BitImageIsFilledInTriplesThroughThePadding) {
    BaseImage image;
    EXPECT_EQ(image.CreateBlank(1, 2, 0, false, 0x00AABBCC), 1);
    EXPECT_EQ(HexOf(BitsOf(image)), "AA BB CC AA BB CC AA BB");
}

TEST_F(BlankImageTest, CreateBlankFailsWhereTheHeaderOrThePaletteFails) {
    BaseImage image;
    EXPECT_EQ(image.CreateBlank(8, 7, 2, false, 0), 0);
    display.refusesPalettes = true;
    EXPECT_EQ(image.CreateBlank(8, 8, 256, true, 0), 0);
    EXPECT_EQ(image.CreateBlank(8, 8, 256, false, 0), 1);
}

TEST_F(BlankImageTest, CreateBlankFailsWithoutMemory) {
    BaseImage image;
    allocation::FailNext(640, 640);
    EXPECT_EQ(image.CreateBlank(64, 10, 256, false, 0), 0);
}

TEST_F(BlankImageTest, CreateBlankTakesThePlaceOfALoadedPicture) {
    Give(BmpBuilder::Colour(3, 2, [](int32_t, int32_t) { return Pixel{1, 2, 7}; }));
    BaseImage image;
    ASSERT_EQ(image.LoadBmp(kName), 1);
    EXPECT_EQ(image.CreateBlank(1, 1, 0, false, 0x00FFFFFF), 1);
    EXPECT_EQ(BitsOf(image), std::vector<uint8_t>(4, 255));
}

TEST_F(BlankImageTest, IsMadeFromAColourTableWithBlackPixels) {
    std::array<COLORREF, 256> table;
    for (uint32_t i = 0; i < 256; ++i)
        table[i] = i | (255 - i) << 8 | (i / 2) << 16;
    const auto image = BaseImage::CreateFromColourTable(5, 3, table);
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(*image->GetInfo(), (BITMAPINFOHEADER{40, 5, 3, 1, 8, 0, 24, 0, 0, 0, 0}));
    EXPECT_EQ(image->FileHeader(), (BitmapFileHeader{0x4D42, 24 + 1078, 0, 0, 1078}));
    EXPECT_EQ(BitsOf(*image), std::vector<uint8_t>(24, 0));
    EXPECT_EQ(image->ColourTable()[200], (RGBQUAD{100, 55, 200, 0}));
    EXPECT_EQ(image->LogicalPalette()->palPalEntry[200], (platform::PaletteEntry{200, 55, 100, 0}));
    EXPECT_EQ(image->LogicalPalette()->palNumEntries, 256);
    EXPECT_EQ(image->FindColourIndex(table[77]), 77);
    ASSERT_NE(image->Palette(), nullptr);
    EXPECT_EQ(image->Palette()->Handle(), nullptr);
    EXPECT_EQ(display.calls, Calls{});
}

TEST_F(BlankImageTest, IsNotMadeFromAColourTableInASizeThatNoFileCanHave) {
    const std::array<COLORREF, 256> table{};
    EXPECT_EQ(BaseImage::CreateFromColourTable(-1, 1, table), nullptr);
    EXPECT_EQ(BaseImage::CreateFromColourTable(kMost, kMost, table), nullptr);
}

} // namespace nadrel
