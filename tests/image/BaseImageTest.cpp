#include "image/BaseImage.h"

#include "tests/image/PictureTest.h"

#include <limits>
#include <string>
#include <type_traits>

namespace nadrel {

namespace {

using BaseImageTest = PictureTest;

constexpr int32_t kMost = std::numeric_limits<int32_t>::max();

// Eight bits a pixel, 5 x 2, entry i of the colour table is blue i, green i + 1, red i + 2.
BmpBuilder PaletteFile(uint16_t bitCount = 8, size_t colours = 256) {
    BmpBuilder file;
    file.width = 5;
    file.height = 2;
    file.bitCount = bitCount;
    for (size_t i = 0; i < colours; ++i)
        for (const size_t byte : {i, i + 1, i + 2, size_t{9}})
            file.colourTable.push_back(static_cast<uint8_t>(byte));
    file.pixels = {10, 11, 12, 13, 14, 0, 0, 0, 20, 21, 22, 23, 24, 0, 0, 0};
    return file;
}

BmpBuilder ColourFile() {
    return BmpBuilder::Colour(3, 2, [](int32_t x, int32_t y) {
        return Pixel{static_cast<uint8_t>(x), static_cast<uint8_t>(y), 7};
    });
}

} // namespace

TEST_F(BaseImageTest, BeginsWithNothing) {
    BaseImage image;
    EXPECT_EQ(image.GetInfo(), nullptr);
    EXPECT_EQ(image.GetBits(), nullptr);
    EXPECT_EQ(image.LogicalPalette(), nullptr);
    EXPECT_EQ(image.Palette(), nullptr);
    EXPECT_EQ(image.DisplayBitmap(), nullptr);
    EXPECT_EQ(image.GetSize(), (Size{0, 0}));
    EXPECT_EQ(image.SaveBmp(u"b.bmp"), 0);
    EXPECT_EQ(image.FindColourIndex(0), -1);
}

TEST_F(BaseImageTest, IsDestroyedThroughItsBase) {
    EXPECT_TRUE(std::has_virtual_destructor_v<BaseImage>);
}

TEST_F(BaseImageTest, LoadsA24BitFileWithoutAPalette) {
    Give(ColourFile());
    BaseImage image;
    EXPECT_EQ(image.LoadBmp(kName), 1);
    EXPECT_EQ(image.GetSize(), (Size{3, 2}));
    EXPECT_EQ(image.GetInfo()->biBitCount, 24);
    EXPECT_EQ(image.ColourCount(), 0U);
    EXPECT_EQ(image.Palette(), nullptr);
    EXPECT_EQ(BitsOf(image), ColourFile().pixels);
    EXPECT_EQ(image.FileHeader().bitsOffset, 54U);
    EXPECT_EQ(image.FileName(), kName);
}

TEST_F(BaseImageTest, LoadReadsTheHeaderThenTheRestAndCloses) {
    Give(ColourFile());
    BaseImage image;
    image.LoadBmp(kName);
    EXPECT_EQ(files.Calls(),
              (Calls{"Open(\"a.bmp\", read)", "Read(0, 14)", "Size", "Read(14, 64)", "Close"}));
}

TEST_F(BaseImageTest, LoadsAnEightBitFileWithItsPalette) {
    Give(PaletteFile());
    BaseImage image;
    EXPECT_EQ(image.LoadBmp(kName), 1);
    EXPECT_EQ(image.ColourCount(), 256U);
    ASSERT_NE(image.Palette(), nullptr);
    const auto &entries = scripted::EntriesOf(image.Palette()->Handle());
    ASSERT_EQ(entries.size(), 256U);
    EXPECT_EQ(entries[3], (platform::PaletteEntry{5, 4, 3, 0}));
    EXPECT_EQ(image.ColourTable()[3], (RGBQUAD{3, 4, 5, 9}));
    EXPECT_EQ(BitsOf(image), PaletteFile().pixels);
}

TEST_F(BaseImageTest, LoadsAFourBitFileWithItsPalette) {
    Give(PaletteFile(4, 16));
    BaseImage image;
    EXPECT_EQ(image.LoadBmp(kName), 1);
    EXPECT_EQ(image.ColourCount(), 16U);
    EXPECT_EQ(scripted::EntriesOf(image.Palette()->Handle()).size(), 16U);
    EXPECT_EQ(BitsOf(image), PaletteFile(4, 16).pixels);
}

TEST_F(BaseImageTest, LoadsAOneBitFileWithItsPalette) {
    Give(PaletteFile(1, 2));
    BaseImage image;
    EXPECT_EQ(image.LoadBmp(kName), 1);
    EXPECT_EQ(image.ColourCount(), 2U);
    EXPECT_EQ(scripted::EntriesOf(image.Palette()->Handle()).size(), 2U);
    EXPECT_EQ(BitsOf(image), PaletteFile(1, 2).pixels);
}

TEST_F(BaseImageTest, LoadsOtherDepthsAsIfTheyHadNoPalette) {
    Give(PaletteFile());
    BaseImage image;
    image.LoadBmp(kName);
    BmpBuilder deep = ColourFile();
    deep.bitCount = 32;
    Give(deep);
    EXPECT_EQ(image.LoadBmp(kName), 1);
    EXPECT_EQ(image.ColourCount(), 0U);
    EXPECT_EQ(image.Palette(), nullptr);
    EXPECT_EQ(image.LogicalPalette(), nullptr);
}

TEST_F(BaseImageTest, A24BitFileLoadsWithoutThePaletteOfThePictureBefore) {
    Give(PaletteFile());
    BaseImage image;
    ASSERT_EQ(image.LoadBmp(kName), 1);
    ASSERT_NE(image.Palette(), nullptr);
    Give(ColourFile());
    ASSERT_EQ(image.LoadBmp(kName), 1);
    EXPECT_EQ(image.Palette(), nullptr);
    EXPECT_EQ(image.FindColourIndex(0), -1);
}

TEST_F(BaseImageTest, WithoutMemoryOperationsGive0) {
    if (!allocation::CanFail())
        GTEST_SKIP() << "the sanitizer's runtime allocates";
    const auto failEach = [](auto operation) {
        int points = 0;
        for (int32_t result = 0; result == 0; ++points) {
            allocation::FailNth(points + 1, 1000, kMost);
            result = operation();
        }
        allocation::Allow();
        return points - 1;
    };
    Give(PaletteFile());
    EXPECT_GE(failEach([] { return BaseImage().LoadBmp(kName); }), 3); // content, table, palette
    EXPECT_GE(failEach([] { return BaseImage().SetupHeader(8, 8, 256); }), 1);
    EXPECT_GE(failEach([] { return BaseImage().CreateBlank(40, 40, 256, true, 0); }), 3);
    EXPECT_GE(failEach([] { return BaseImage::CreateFromColourTable(40, 40, {}) != nullptr ? 1 : 0; }), 3);
}

TEST_F(BaseImageTest, LoadFailsWhenTheSystemRefusesThePalette) {
    Give(PaletteFile());
    display.refusesPalettes = true;
    BaseImage image;
    EXPECT_EQ(image.LoadBmp(kName), 0);
}

TEST_F(BaseImageTest, LoadFindsTheRowsBehindHeaderAndTableWhateverTheBitsOffsetSays) {
    BmpBuilder file = ColourFile();
    file.infoBytes = 108;
    FileBytes bytes = file.Bytes();
    bytes[10] = 200;
    files.Put(kName, bytes);
    BaseImage image;
    EXPECT_EQ(image.LoadBmp(kName), 1);
    EXPECT_EQ(image.FileHeader().bitsOffset, 200U);
    EXPECT_EQ(BitsOf(image), ColourFile().pixels);
}

TEST_F(BaseImageTest, LoadKeepsAHeightBelowZero) {
    BmpBuilder file = ColourFile();
    file.height = -2;
    Give(file);
    BaseImage image;
    EXPECT_EQ(image.LoadBmp(kName), 1);
    EXPECT_EQ(image.GetSize(), (Size{3, -2}));
}

TEST_F(BaseImageTest, LoadFailsForWhatDoesNotBeginWithBM) {
    for (const uint16_t type : std::initializer_list<uint16_t>{0x4D43, 0x4C42, 0x424D, 0}) {
        BmpBuilder file = ColourFile();
        file.type = type;
        Give(file);
        BaseImage image;
        EXPECT_EQ(image.LoadBmp(kName), 0) << type;
    }
}

TEST_F(BaseImageTest, LoadFailsForAFileShorterThanItsHeaderSays) {
    BmpBuilder file = ColourFile();
    const auto truth = static_cast<int64_t>(file.Bytes().size());
    for (const int64_t claimed : {truth + 1, int64_t{0xFFFFFFFF}}) {
        file.claimedFileBytes = claimed;
        Give(file);
        BaseImage image;
        EXPECT_EQ(image.LoadBmp(kName), 0) << claimed;
        EXPECT_EQ(image.GetInfo(), nullptr);
    }
}

TEST_F(BaseImageTest, LoadLeavesOutWhatLiesBehindTheFileSize) {
    BmpBuilder file = ColourFile();
    file.claimedFileBytes = 54 + 12;
    Give(file);
    BaseImage image;
    EXPECT_EQ(image.LoadBmp(kName), 1);
    EXPECT_EQ(files.Calls()[3], "Read(14, 52)");
}

TEST_F(BaseImageTest, LoadFailsForAFileSizeThatHoldsNoInfoHeader) {
    BmpBuilder file = ColourFile();
    for (const int64_t claimed : {0, 13, 14, 53}) {
        file.claimedFileBytes = claimed;
        Give(file);
        BaseImage image;
        EXPECT_EQ(image.LoadBmp(kName), 0) << claimed;
    }
}

TEST_F(BaseImageTest, LoadFailsForFilesOfLessThanAFileHeader) {
    const FileBytes whole = ColourFile().Bytes();
    for (size_t length = 0; length < 14; ++length) {
        files.Put(kName, FileBytes(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(length)));
        BaseImage image;
        EXPECT_EQ(image.LoadBmp(kName), 0) << length;
    }
}

TEST_F(BaseImageTest, LoadFailsAndClosesWhicheverCallFails) {
    Give(ColourFile());
    for (int nth = 1; nth <= 4; ++nth) {
        BaseImage image;
        files.Fail(nth);
        EXPECT_EQ(image.LoadBmp(kName), 0) << nth;
        EXPECT_EQ(files.StillOpen(), 0) << nth;
    }
}

TEST_F(BaseImageTest, LoadFailsWhenLessIsReadThanAskedFor) {
    Give(ColourFile());
    BaseImage image;
    files.ShortRead(2, 1);
    EXPECT_EQ(image.LoadBmp(kName), 0);
}

TEST_F(BaseImageTest, LoadFailsWithoutMemory) {
    Give(BmpBuilder::Colour(100, 100, [](int32_t, int32_t) { return kWhite; }));
    BaseImage image;
    allocation::FailNext(30000, 31000);
    EXPECT_EQ(image.LoadBmp(kName), 0);
}

TEST_F(BaseImageTest, AFailedLoadKeepsThePictureOfBeforeAndTheNewName) {
    Give(ColourFile());
    BaseImage image;
    image.LoadBmp(kName);
    EXPECT_EQ(image.LoadBmp(u"none.bmp"), 0);
    EXPECT_EQ(image.FileName(), u"none.bmp");
    EXPECT_EQ(BitsOf(image), ColourFile().pixels);
}

TEST_F(BaseImageTest, NoFileIsLoadedByANullName) {
    BaseImage image;
    EXPECT_EQ(image.LoadBmp(nullptr), 0);
    EXPECT_EQ(image.FileName(), u"");
}

TEST_F(BaseImageTest, TheNameFieldHolds511Characters) {
    BaseImage image;
    files.Put(std::u16string(600, u'n'), ColourFile().Bytes());
    EXPECT_EQ(image.LoadBmp(std::u16string(600, u'n').c_str()), 0) << "it could not be saved again";
    EXPECT_EQ(image.FileName(), std::u16string(511, u'n'));
    image.LoadBmp(std::u16string(511, u'm').c_str());
    EXPECT_EQ(image.FileName(), std::u16string(511, u'm'));
}

TEST_F(BaseImageTest, AColourTableThatTheFileDoesNotHoldIsBlack) {
    BmpBuilder file = PaletteFile();
    file.claimedFileBytes = 54 + 4 * 10 + 2;
    Give(file);
    BaseImage image;
    EXPECT_EQ(image.LoadBmp(kName), 1);
    EXPECT_EQ(image.ColourTable()[9], (RGBQUAD{9, 10, 11, 9}));
    EXPECT_EQ(image.ColourTable()[10], (RGBQUAD{}));
    EXPECT_EQ(image.ColourTable()[255], (RGBQUAD{}));
}

TEST_F(BaseImageTest, SavesA24BitImageInHeaderInfoAndRows) {
    BaseImage image;
    ASSERT_EQ(image.CreateBlank(3, 2, 0, false, 0x00030201), 1);
    EXPECT_EQ(image.SaveBmp(u"b.bmp"), 1);
    EXPECT_EQ(files.Calls(),
              (Calls{"Open(\"b.bmp\", rewrite)", "Write(14)", "Write(40)", "Write(24)", "Close"}));
    EXPECT_EQ(HexOf(files.Held(u"b.bmp")), "42 4D 4E 00 00 00 00 00 00 00 36 00 00 00 28 00 00 00 03 00 00 "
                                           "00 02 00 00 00 01 00 18 00 00 00 00 00 18 "
                                           "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 03 02 "
                                           "01 03 02 01 03 02 01 03 02 01 03 02 01 03 "
                                           "02 01 03 02 01 03 02 01");
}

TEST_F(BaseImageTest, SavesAPaletteImageWithItsColourTable) {
    Give(PaletteFile());
    BaseImage image;
    image.LoadBmp(kName);
    EXPECT_EQ(image.SaveBmp(u"b.bmp"), 1);
    FileBytes expected = PaletteFile().Bytes();
    EXPECT_EQ(HexOf(files.Held(u"b.bmp")), HexOf(expected));
    EXPECT_EQ(image.FileHeader(), (BitmapFileHeader{0x4D42, 54 + 1024 + 16, 0, 0, 54 + 1024}));
}

TEST_F(BaseImageTest, SaveWithoutANameUsesTheOneOfBefore) {
    Give(ColourFile());
    BaseImage image;
    image.LoadBmp(kName);
    files.Put(kName, {});
    EXPECT_EQ(image.SaveBmp(nullptr), 1);
    EXPECT_EQ(HexOf(files.Held(kName)), HexOf(ColourFile().Bytes()));
    EXPECT_EQ(image.SaveBmp(u"b.bmp"), 1);
    EXPECT_EQ(image.FileName(), u"b.bmp");
}

TEST_F(BaseImageTest, SaveFailsAndClosesWhicheverCallFails) {
    BaseImage image;
    image.CreateBlank(3, 2, 0, false, 0);
    for (int nth = 1; nth <= 4; ++nth) {
        files.Fail(nth);
        EXPECT_EQ(image.SaveBmp(u"b.bmp"), 0) << nth;
        EXPECT_EQ(files.StillOpen(), 0) << nth;
    }
}

TEST_F(BaseImageTest, SaveFailsAtTheFirstWriteWhenTheFileCannotBeMade) {
    BaseImage image;
    image.CreateBlank(3, 2, 0, false, 0);
    files.RefuseToMake();
    EXPECT_EQ(image.SaveBmp(u"b.bmp"), 0);
    EXPECT_EQ(files.Calls(), (Calls{"Open(\"b.bmp\", rewrite)", "Write(14)"}));
}

TEST_F(BaseImageTest, SaveFailsForAnImageWithFewerBytesThanItsHeaderSays) {
    BmpBuilder file = ColourFile();
    file.claimedImageBytes = static_cast<int64_t>(file.pixels.size()) + 1;
    Give(file);
    BaseImage image;
    ASSERT_EQ(image.LoadBmp(kName), 1);
    EXPECT_EQ(image.SaveBmp(u"b.bmp"), 0);
}

} // namespace nadrel
