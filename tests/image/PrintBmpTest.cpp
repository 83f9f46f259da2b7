#include "image/PrintBmp.h"

#include "image/Compressor.h"
#include "tests/image/PictureTest.h"

namespace nadrel {

namespace {

class PrintBmpTest : public PictureTest {
  protected:
    std::vector<uint8_t> block = std::vector<uint8_t>(10000);

    std::span<uint8_t> Room(size_t bytes) { return std::span(block).first(bytes); }
};

BmpBuilder OneDot() {
    return BmpBuilder::OneBit(8, 1, [](int32_t, int32_t) { return 0; });
}

} // namespace

TEST_F(PrintBmpTest, MakesNothingBeforeAFileIsLoaded) {
    PrintBmp picture;
    EXPECT_EQ(picture.MakeRaster(RasterForm::positioned, block), -1);
    EXPECT_EQ(picture.MakeCompressedRaster(Room(5000)), -1);
    EXPECT_EQ(picture.Load(u"none.bmp"), 0);
    EXPECT_EQ(picture.MakeRaster(RasterForm::normal, block), -1);
}

TEST_F(PrintBmpTest, MakesNothingAfterItsBuffersAreFreed) {
    Give(OneDot());
    PrintBmp picture;
    EXPECT_EQ(picture.Load(kName), 1);
    picture.FreeBuffers();
    EXPECT_EQ(files.StillOpen(), 0);
    EXPECT_EQ(picture.MakeRaster(RasterForm::normal, block), -1);
}

TEST_F(PrintBmpTest, MakesAsManyBytesAsItSays) {
    for (const int32_t height : {0, 1, 23, 24, 25, 48, 50}) {
        Give(BmpBuilder::OneBit(100, height, [](int32_t, int32_t) { return 1; }));
        PrintBmp picture;
        ASSERT_EQ(picture.Load(kName), 1);
        EXPECT_EQ(picture.MakeRaster(RasterForm::normal, block), picture.RasterBytes(RasterForm::normal));
        EXPECT_EQ(picture.MakeRaster(RasterForm::positioned, block),
                  picture.RasterBytes(RasterForm::positioned));
    }
}

TEST_F(PrintBmpTest, ARasterThatDoesNotFitIsNotBegun) {
    Give(OneDot());
    PrintBmp picture;
    picture.Load(kName);
    EXPECT_EQ(picture.MakeRaster(RasterForm::positioned, Room(120)), 120);
    EXPECT_EQ(picture.MakeRaster(RasterForm::normal, Room(114)), 114);
    std::fill(block.begin(), block.end(), 0xEE);
    EXPECT_EQ(picture.MakeRaster(RasterForm::positioned, Room(119)), ERR_SPOOL_LIMIT);
    EXPECT_EQ(picture.MakeRaster(RasterForm::normal, Room(113)), ERR_SPOOL_LIMIT);
    EXPECT_EQ(block, std::vector<uint8_t>(block.size(), 0xEE));
}

TEST_F(PrintBmpTest, ACompressedRasterThatDoesNotFitIsRefused) {
    Give(OneDot());
    PrintBmp picture;
    picture.Load(kName);
    EXPECT_EQ(picture.MakeCompressedRaster(Room(19)), 19);
    for (size_t room = 0; room < 19; ++room)
        EXPECT_EQ(picture.MakeCompressedRaster(Room(room)), ERR_SPOOL_LIMIT) << room;
}

TEST_F(PrintBmpTest, MakingTwiceGivesTheSame) {
    Give(BmpBuilder::Colour(20, 30, [](int32_t x, int32_t y) {
        return Pixel{static_cast<uint8_t>(x * 12), static_cast<uint8_t>(y * 8), 100};
    }));
    PrintBmp picture;
    picture.Load(kName);
    const int32_t length = picture.MakeRaster(RasterForm::normal, block);
    const std::vector<uint8_t> first(block.begin(), block.begin() + length);
    EXPECT_EQ(picture.MakeRaster(RasterForm::normal, block), length);
    EXPECT_EQ(std::vector<uint8_t>(block.begin(), block.begin() + length), first);
}

TEST_F(PrintBmpTest, LoadPutsThePositionBack) {
    Give(OneDot());
    PrintBmp picture;
    picture.Load(kName);
    picture.SetPosition(0x1234, 0x5678);
    picture.MakeRaster(RasterForm::positioned, block);
    EXPECT_EQ(HexOf({block.begin() + 7, block.begin() + 13}), "1B 4F 34 12 78 56");
    picture.Load(kName);
    picture.MakeRaster(RasterForm::positioned, block);
    EXPECT_EQ(HexOf({block.begin() + 7, block.begin() + 13}), "1B 4F 00 00 00 00");
}

TEST_F(PrintBmpTest, OtherDepthsMakeNothing) {
    for (const uint16_t depth : std::initializer_list<uint16_t>{0, 4, 8, 16, 32, 65535}) {
        BmpBuilder file = OneDot();
        file.bitCount = depth;
        Give(file);
        PrintBmp picture;
        ASSERT_EQ(picture.Load(kName), 1) << depth;
        EXPECT_EQ(picture.RasterBytes(RasterForm::normal), 0);
        EXPECT_EQ(picture.MakeRaster(RasterForm::normal, Room(0)), 0);
        EXPECT_EQ(picture.MakeCompressedRaster(Room(0)), 0);
    }
}

TEST_F(PrintBmpTest, AReadThatFailsIsTold) {
    Give(OneDot());
    PrintBmp picture;
    picture.Load(kName);
    files.Fail(1);
    EXPECT_EQ(picture.MakeRaster(RasterForm::normal, block), -2);
    files.Fail(1);
    EXPECT_EQ(picture.MakeCompressedRaster(Room(5000)), -2);
}

TEST_F(PrintBmpTest, LoadFailsAndClosesWhicheverCallFails) {
    Give(OneDot());
    for (int nth = 1; nth <= 4; ++nth) {
        PrintBmp picture;
        files.Fail(nth);
        EXPECT_EQ(picture.Load(kName), 0) << nth;
        EXPECT_EQ(files.StillOpen(), 0) << nth;
    }
}

} // namespace nadrel
