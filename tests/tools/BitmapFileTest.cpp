#include "tools/BitmapFile.h"

#include "tests/TemporaryFolder.h"
#include "tests/image/BmpBuilder.h"

#include <gtest/gtest.h>

using nadrel::BmpBuilder;

namespace {

constexpr char kExpected[] = ", expected a bitmap file (BMP) of 1 or 24 bits a pixel";

class BitmapFile : public testing::Test {
  protected:
    std::string FaultOf(const std::vector<uint8_t> &bytes) const {
        folder.Put("a.bmp", bytes);
        return FaultOfFile(folder.Path("a.bmp"));
    }

    static std::string FaultOfFile(const std::string &file) {
        try {
            tool::RequireBitmap(file, "it");
            return "no fault";
        } catch (const tool::LineFault &fault) {
            return fault.what();
        }
    }

    static BmpBuilder OneBit(int width, int height) {
        return BmpBuilder::OneBit(width, height, [](int, int) { return 0; });
    }
    static BmpBuilder Colour(int width, int height) {
        return BmpBuilder::Colour(width, height, [](int, int) { return nadrel::kBlack; });
    }

    TemporaryFolder folder;
};

} // namespace

TEST_F(BitmapFile, MayHaveOneBitOr24BitsAPixel) {
    EXPECT_EQ(FaultOf(OneBit(13, 7).Bytes()), "no fault");
    EXPECT_EQ(FaultOf(Colour(13, 7).Bytes()), "no fault");
    BmpBuilder other = Colour(13, 7);
    other.bitCount = 8;
    EXPECT_EQ(FaultOf(other.Bytes()), std::string("it has 8 bits a pixel") + kExpected);
}

TEST_F(BitmapFile, MayHaveALongerHeaderAndBytesBehindItsPixels) {
    BmpBuilder longer = Colour(13, 7);
    longer.infoBytes = 124;
    std::vector<uint8_t> bytes = longer.Bytes();
    EXPECT_EQ(FaultOf(bytes), "no fault");
    bytes.push_back(0);
    EXPECT_EQ(FaultOf(bytes), "no fault");
}

TEST_F(BitmapFile, IsNoBitmapWithoutItsHeaders) {
    EXPECT_EQ(FaultOf({}), std::string("it is no bitmap") + kExpected);
    EXPECT_EQ(FaultOf(std::vector<uint8_t>(100, 'B')), std::string("it is no bitmap") + kExpected);
    std::vector<uint8_t> headers = Colour(1, 1).Bytes();
    headers.resize(53);
    EXPECT_EQ(FaultOf(headers), std::string("it is no bitmap") + kExpected);
    std::vector<uint8_t> oldHeader = Colour(1, 1).Bytes();
    oldHeader[14] = 12;
    EXPECT_EQ(FaultOf(oldHeader), std::string("it is no bitmap") + kExpected);
}

TEST_F(BitmapFile, IsAFileThatCanBeRead) {
    EXPECT_EQ(FaultOfFile("/nowhere/a.bmp"),
              std::string("it cannot be read (No such file or directory)") + kExpected);
    EXPECT_EQ(FaultOfFile(folder.Path("")), std::string("it is no file") + kExpected);
    EXPECT_EQ(FaultOfFile("/dev/zero"), std::string("it is no file") + kExpected);
}

TEST_F(BitmapFile, IsNeitherWiderThanAPrinterTakesNorEmpty) {
    EXPECT_EQ(FaultOf(OneBit(2016, 1).Bytes()), "no fault");
    EXPECT_EQ(FaultOf(OneBit(2017, 1).Bytes()), "it is 2017 pixels wide, expected 1 to 2016");
    EXPECT_EQ(FaultOf(OneBit(0, 1).Bytes()), "it is 0 pixels wide, expected 1 to 2016");
    BmpBuilder negative = OneBit(8, 1);
    negative.width = -8;
    EXPECT_EQ(FaultOf(negative.Bytes()), "it is -8 pixels wide, expected 1 to 2016");
    EXPECT_EQ(FaultOf(OneBit(8, 0).Bytes()), "it has no rows, expected 1 at least");
}

TEST_F(BitmapFile, IsStoredFromTheBottomRowUp) {
    BmpBuilder down = Colour(8, 5);
    down.height = -5;
    EXPECT_EQ(
        FaultOf(down.Bytes()),
        "it is stored from the top row down, expected a bitmap file (BMP) stored from the bottom row up");
}

TEST_F(BitmapFile, IsNotCompressed) {
    std::vector<uint8_t> bytes = Colour(8, 5).Bytes();
    bytes[30] = 3;
    EXPECT_EQ(FaultOf(bytes),
              "it is compressed, expected a bitmap file (BMP) whose pixels are not compressed");
}

TEST_F(BitmapFile, IsNotCutOff) {
    std::vector<uint8_t> bytes = Colour(8, 5).Bytes();
    bytes.pop_back();
    EXPECT_EQ(FaultOf(bytes), "it is cut off after 173 bytes, expected 174");
    EXPECT_TRUE(tool::IsCutOffBitmap(folder.Path("a.bmp")));
    BmpBuilder taller = Colour(8, 5);
    taller.height = 2147483647;
    EXPECT_EQ(FaultOf(taller.Bytes()), "it is cut off after 174 bytes, expected 51539607582");
}

TEST_F(BitmapFile, HasItsPixelsBehindItsHeaders) {
    std::vector<uint8_t> bytes = Colour(8, 5).Bytes();
    bytes[10] = 58;
    EXPECT_EQ(FaultOf(bytes),
              "it has its pixels at byte 58, expected them at byte 54, behind the headers and colours");
}

TEST_F(BitmapFile, CountsItsPixelsInItsHeader) {
    BmpBuilder uncounted = Colour(8, 5);
    uncounted.claimedImageBytes = 0;
    EXPECT_EQ(FaultOf(uncounted.Bytes()),
              "the header of it counts 0 bytes of pixels and 174 in all, expected 120 and 174");
    BmpBuilder shorter = Colour(8, 5);
    shorter.claimedFileBytes = 100;
    EXPECT_EQ(FaultOf(shorter.Bytes()),
              "the header of it counts 120 bytes of pixels and 100 in all, expected 120 and 174");
}

TEST_F(BitmapFile, IsCutOffOnlyWhereItIsABitmap) {
    folder.Put("a", Colour(8, 5).Bytes());
    EXPECT_FALSE(tool::IsCutOffBitmap(folder.Path("a")));
    folder.Put("a", std::vector<uint8_t>(60, 0xFF));
    EXPECT_FALSE(tool::IsCutOffBitmap(folder.Path("a")));
}
