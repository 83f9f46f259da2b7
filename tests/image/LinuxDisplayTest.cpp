#include "image/BaseImage.h"
#include "platform/Display.h"

#include <gtest/gtest.h>
#include <vector>

namespace platform {

TEST(LinuxDisplay, PalettesNeedOneEntryAndTakeAtMost65535) {
    EXPECT_EQ(CreatePalette({}), nullptr);
    EXPECT_EQ(CreatePalette(std::vector<PaletteEntry>(65536)), nullptr);
    Palette *const palette = CreatePalette(std::vector<PaletteEntry>(65535));
    EXPECT_NE(palette, nullptr);
    DeletePalette(palette);
}

TEST(LinuxDisplay, SelectingGivesThePaletteOfBefore) {
    const std::vector<PaletteEntry> entries(2);
    Palette *const first = CreatePalette(entries);
    Palette *const second = CreatePalette(entries);
    DeviceContext *const screen = CreateDisplayContext();
    EXPECT_EQ(SelectPalette(screen, first, true), nullptr);
    EXPECT_EQ(SelectPalette(screen, nullptr, true), nullptr);
    EXPECT_EQ(SelectPalette(screen, second, false), first);
    EXPECT_EQ(SelectPalette(nullptr, second, false), nullptr);
    DeleteContext(screen);
    DeletePalette(first);
    DeletePalette(second);
}

TEST(LinuxDisplay, ItsScreenHasNoPaletteOfItsOwn) {
    DeviceContext *const screen = CreateDisplayContext();
    EXPECT_EQ(GetCapability(screen, Capability::rasterCapabilities) & kPaletteDevice, 0U);
    EXPECT_EQ(GetCapability(screen, Capability::paletteSize), 0U);
    PaletteEntry entry;
    EXPECT_EQ(GetSystemPaletteEntries(screen, 0, std::span(&entry, 1)), 0U);
    EXPECT_EQ(RealizePalette(screen), 0U);
    DeleteContext(screen);
}

TEST(LinuxDisplay, NullIsIgnoredAndMakesNothing) {
    DeletePalette(nullptr);
    DeleteContext(nullptr);
    DeleteBitmap(nullptr);
    SelectBitmap(nullptr, nullptr);
    DeviceContext *const screen = CreateDisplayContext();
    SelectBitmap(screen, nullptr);
    DeleteContext(screen);
    EXPECT_EQ(CreateMemoryContext(nullptr), nullptr);
    EXPECT_EQ(CreateCompatibleBitmap(nullptr, 1, 1), nullptr);
}

TEST(LinuxDisplay, AnImageGetsADisplayBitmap) {
    nadrel::BaseImage image;
    ASSERT_EQ(image.CreateBlank(8, 8, 256, true, 0), 1);
    image.PrepareDisplayBitmap();
    EXPECT_NE(image.DisplayBitmap(), nullptr);
    DeleteBitmap(image.DisplayBitmap());
}

} // namespace platform
