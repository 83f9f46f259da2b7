#include "image/BaseImage.h"

#include "tests/image/PictureTest.h"

namespace nadrel {

namespace {

using PaletteTest = PictureTest;

using platform::PaletteEntry;

} // namespace

TEST_F(PaletteTest, CubeOf256ColoursRunsRedOutermostInStepsOf51) {
    BaseImage image;
    image.SetupHeader(1, 1, 256);
    EXPECT_EQ(image.BuildPalette(false), 1);
    const auto &entries = scripted::EntriesOf(image.Palette()->Handle());
    ASSERT_EQ(entries.size(), 256U);
    EXPECT_EQ(entries[0], (PaletteEntry{0, 0, 0, 0}));
    EXPECT_EQ(entries[1], (PaletteEntry{0, 0, 51, 0}));
    EXPECT_EQ(entries[5], (PaletteEntry{0, 0, 255, 0}));
    EXPECT_EQ(entries[6], (PaletteEntry{0, 51, 0, 0}));
    EXPECT_EQ(entries[36], (PaletteEntry{51, 0, 0, 0}));
    EXPECT_EQ(entries[4 * 36 + 3 * 6 + 2], (PaletteEntry{204, 153, 102, 0}));
    EXPECT_EQ(entries[215], (PaletteEntry{255, 255, 255, 0}));
    EXPECT_EQ(entries[216], (PaletteEntry{0, 0, 0, 0}));
    EXPECT_EQ(entries[255], (PaletteEntry{0, 0, 0, 0}));
}

TEST_F(PaletteTest, CubeBecomesTheColourTableAsWell) {
    BaseImage image;
    image.SetupHeader(1, 1, 256);
    image.BuildPalette(false);
    EXPECT_EQ(image.ColourTable()[37], (RGBQUAD{51, 0, 51, 0}));
    EXPECT_EQ(image.ColourTable()[215], (RGBQUAD{255, 255, 255, 0}));
    EXPECT_EQ(image.ColourTable()[216], (RGBQUAD{}));
}

TEST_F(PaletteTest, CubeOfFewerColoursStopsOneBehindThemWithoutAPaletteOfTheSystem) {
    for (const uint32_t colours : {0U, 2U, 16U}) {
        BaseImage image;
        image.SetupHeader(8, 8, colours);
        EXPECT_EQ(image.BuildPalette(false), 1);
        ASSERT_NE(image.Palette(), nullptr);
        EXPECT_EQ(image.Palette()->Handle(), nullptr);
        const LOGPALETTE &logical = *image.LogicalPalette();
        EXPECT_EQ(logical.palVersion, 0x300);
        EXPECT_EQ(logical.palNumEntries, colours);
        ASSERT_EQ(logical.palPalEntry.size(), colours + 1);
        const uint32_t last = colours;
        EXPECT_EQ(logical.palPalEntry[last], (PaletteEntry{0, static_cast<uint8_t>(last / 6 * 51),
                                                           static_cast<uint8_t>(last % 6 * 51), 0}));
    }
    EXPECT_EQ(display.calls, Calls{});
}

TEST_F(PaletteTest, CubeFailsWhenTheSystemRefusesIt) {
    BaseImage image;
    image.SetupHeader(1, 1, 256);
    display.refusesPalettes = true;
    EXPECT_EQ(image.BuildPalette(false), 0);
}

TEST_F(PaletteTest, APaletteOfAnImageWithoutColoursCannotBeCreated) {
    BaseImage image;
    image.SetupHeader(1, 1, 0);
    EXPECT_EQ(image.BuildPalette(true), 0);
    EXPECT_EQ(display.calls, Calls{"CreatePalette(0)"});
}

TEST_F(PaletteTest, BuildingAgainGivesThePaletteOfBeforeBack) {
    BaseImage image;
    image.SetupHeader(1, 1, 256);
    image.BuildPalette(false);
    image.BuildPalette(true);
    EXPECT_EQ(display.palettes, 1);
}

TEST_F(PaletteTest, BuildFailsWithoutMemory) {
    BaseImage image;
    image.SetupHeader(1, 1, 256);
    allocation::FailNext(257 * 4, 257 * 4);
    EXPECT_EQ(image.BuildPalette(true), 0);
    EXPECT_EQ(image.FindColourIndex(0), -1);
}

TEST_F(PaletteTest, ColourIsFoundByItsLowMiddleAndHighByte) {
    BaseImage image;
    image.SetupHeader(1, 1, 256);
    image.BuildPalette(false);
    EXPECT_EQ(image.FindColourIndex(0x00000033), 36);
    EXPECT_EQ(image.FindColourIndex(0x00003300), 6);
    EXPECT_EQ(image.FindColourIndex(0x00330000), 1);
    EXPECT_EQ(image.FindColourIndex(0x00010000), -1);
}

TEST_F(PaletteTest, OfEqualColoursTheFirstIsFound) {
    std::array<COLORREF, 256> table{};
    table[7] = table[9] = 0x00123456;
    const auto image = BaseImage::CreateFromColourTable(1, 1, table);
    EXPECT_EQ(image->FindColourIndex(0x00123456), 7);
    EXPECT_EQ(image->FindColourIndex(0), 0);
}

} // namespace nadrel
