#include "image/BaseImage.h"

#include "tests/image/PictureTest.h"

#include <memory>

namespace nadrel {

namespace {

class DisplayPathTest : public PictureTest {
  protected:
    struct DeleteContext {
        void operator()(platform::DeviceContext *context) const { platform::DeleteContext(context); }
    };
    using Context = std::unique_ptr<platform::DeviceContext, DeleteContext>;

    Context Screen() {
        Context context(platform::CreateDisplayContext());
        display.calls.clear();
        return context;
    }

    void BePaletteDevice(size_t colours) {
        display.isPaletteDevice = true;
        display.systemPalette.resize(colours);
        for (size_t i = 0; i < colours; ++i)
            display.systemPalette[i].red = static_cast<uint8_t>(i + 1);
    }
};

} // namespace

TEST_F(DisplayPathTest, NothingIsRealizedWithoutPixels) {
    const Context screen = Screen();
    BaseImage image;
    EXPECT_EQ(image.RealizeInto(1, 2, screen.get()), 0);
    image.SetupHeader(8, 8, 256);
    EXPECT_EQ(image.RealizeInto(1, 2, screen.get()), 0);
    EXPECT_EQ(display.calls, Calls{});
}

TEST_F(DisplayPathTest, TheImagesPaletteIsSelectedInTheBackgroundAndRealized) {
    const Context screen = Screen();
    BaseImage image;
    image.CreateBlank(8, 8, 256, true, 0);
    display.calls.clear();
    EXPECT_EQ(image.RealizeInto(1, 2, screen.get()), 1);
    EXPECT_EQ(display.calls,
              (Calls{"SelectPalette(display, palette 1, background)", "RealizePalette(display)"}));
}

TEST_F(DisplayPathTest, APaletteThatWasSelectedOutIsSelectedBack) {
    const Context screen = Screen();
    BaseImage first, second;
    first.CreateBlank(8, 8, 256, true, 0);
    second.CreateBlank(8, 8, 256, true, 0);
    first.RealizeInto(0, 0, screen.get());
    display.calls.clear();
    EXPECT_EQ(second.RealizeInto(0, 0, screen.get()), 1);
    EXPECT_EQ(display.calls,
              (Calls{"SelectPalette(display, palette 2, background)", "RealizePalette(display)",
                     "SelectPalette(display, palette 1, background)"}));
}

TEST_F(DisplayPathTest, APaletteObjectThatTheSystemDoesNotKnowIsRealizedAllTheSame) {
    const Context screen = Screen();
    BaseImage image;
    image.CreateBlank(8, 8, 16, true, 0);
    EXPECT_EQ(image.RealizeInto(0, 0, screen.get()), 1);
    EXPECT_EQ(display.calls, (Calls{"SelectPalette(display, none, background)", "RealizePalette(display)"}));
}

TEST_F(DisplayPathTest, WithoutAPaletteTheSystemsIsUsedOnAPaletteDevice) {
    BePaletteDevice(20);
    const Context screen = Screen();
    BaseImage image;
    image.CreateBlank(8, 8, 256, false, 0);
    EXPECT_EQ(image.RealizeInto(0, 0, screen.get()), 1);
    EXPECT_EQ(display.calls,
              (Calls{"GetSystemPaletteEntries(0, 20)", "CreatePalette(20)",
                     "SelectPalette(display, palette 1, background)", "RealizePalette(display)"}));
}

TEST_F(DisplayPathTest, TheSystemsPaletteIsTakenColourByColour) {
    BePaletteDevice(3);
    const Context screen = Screen();
    BaseImage image;
    image.CreateBlank(8, 8, 256, false, 0);
    EXPECT_EQ(image.UseSystemPalette(screen.get()), 1);
    BaseImage other;
    other.CreateBlank(8, 8, 256, true, 0);
    const platform::Palette *const selected =
        platform::SelectPalette(screen.get(), other.Palette()->Handle(), true);
    ASSERT_NE(selected, nullptr);
    EXPECT_EQ(scripted::EntriesOf(selected), display.systemPalette);
}

TEST_F(DisplayPathTest, TheSystemsPaletteIsNotUsedForTrueColourImages) {
    BePaletteDevice(20);
    const Context screen = Screen();
    BaseImage image;
    image.CreateBlank(8, 8, 0, false, 0);
    EXPECT_EQ(image.UseSystemPalette(screen.get()), 0);
    EXPECT_EQ(image.RealizeInto(0, 0, screen.get()), 1);
    EXPECT_EQ(display.calls, Calls{});
}

TEST_F(DisplayPathTest, TheSystemsPaletteIsNotUsedWhereThereIsNone) {
    const Context screen = Screen();
    BaseImage image;
    image.CreateBlank(8, 8, 256, false, 0);
    EXPECT_EQ(image.UseSystemPalette(screen.get()), 0);
    BePaletteDevice(0);
    EXPECT_EQ(image.UseSystemPalette(screen.get()), 0);
    EXPECT_EQ(display.calls, Calls{});
}

TEST_F(DisplayPathTest, UsingTheSystemsPaletteAgainGivesTheOneOfBeforeBack) {
    BePaletteDevice(20);
    const Context screen = Screen();
    BaseImage image;
    image.CreateBlank(8, 8, 256, false, 0);
    image.UseSystemPalette(screen.get());
    image.UseSystemPalette(screen.get());
    EXPECT_EQ(display.palettes, 1);
}

TEST_F(DisplayPathTest, ADisplayBitmapHasTheImagesSizeAndItsPaletteRealized) {
    BaseImage image;
    image.CreateBlank(9, 8, 256, true, 0);
    display.calls.clear();
    image.PrepareDisplayBitmap();
    EXPECT_EQ(display.calls, (Calls{"CreateDisplayContext", "CreateMemoryContext(display)",
                                    "CreateCompatibleBitmap(display, 9, 8)", "SelectBitmap(memory)",
                                    "SelectPalette(memory, palette 1, background)", "RealizePalette(memory)",
                                    "DeleteContext(memory)", "DeleteContext(display)"}));
    EXPECT_EQ(display.contexts, 0);
    platform::DeleteBitmap(image.DisplayBitmap());
}

TEST_F(DisplayPathTest, PreparingAgainDeletesTheBitmapOfBefore) {
    BaseImage image;
    image.CreateBlank(8, 8, 0, false, 0);
    image.PrepareDisplayBitmap();
    image.PrepareDisplayBitmap();
    EXPECT_EQ(display.bitmaps, 1);
    platform::DeleteBitmap(image.DisplayBitmap());
}

TEST_F(DisplayPathTest, TheDisplayBitmapOutlivesTheImage) {
    platform::DisplayBitmap *bitmap = nullptr;
    {
        BaseImage image;
        image.CreateBlank(8, 8, 0, false, 0);
        image.PrepareDisplayBitmap();
        bitmap = image.DisplayBitmap();
    }
    EXPECT_EQ(display.bitmaps, 1);
    platform::DeleteBitmap(bitmap);
}

} // namespace nadrel
