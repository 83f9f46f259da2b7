#include "image/PixelRows.h"

#include "tests/image/PictureTest.h"

namespace nadrel {

namespace {

class PixelRowsTest : public PictureTest {
  protected:
    // The file's own header has no say: each test sets what it needs.
    void Open(const std::vector<uint8_t> &pixels) {
        BmpBuilder builder;
        builder.pixels = pixels;
        Give(builder);
        ASSERT_TRUE(file.Open(kName));
        info.biSize = 40;
        info.biSizeImage = static_cast<uint32_t>(pixels.size());
    }

    ~PixelRowsTest() override { file.Close(); }

    static std::string RowHex(const BandRows &band, int32_t index) {
        return HexOf({band.Row(index), band.Row(index) + band.stride});
    }

    BmpFile file;
    BITMAPINFOHEADER info;
};

} // namespace

TEST_F(PixelRowsTest, BandsComeFromTheTopWhichIsTheLastStoredRow) {
    std::vector<uint8_t> pixels;
    for (uint8_t row = 0; row < 50; ++row)
        pixels.insert(pixels.end(), {row, 0, 0, 0});
    Open(pixels);
    PixelRows rows(file, info, 4, 50);
    BandRows band;
    int expected = 49;
    for (const int32_t count : {24, 24, 2}) {
        ASSERT_TRUE(rows.Next(band));
        ASSERT_EQ(band.count, count);
        for (int32_t i = 0; i < count; ++i)
            EXPECT_EQ(band.Row(i)[0], expected--);
    }
}

TEST_F(PixelRowsTest, TheFileIsReadBackwardsInPiecesOfWholeBands) {
    // 1000 bytes a row: ten bands of 24000 bytes are the most that 262144 bytes hold.
    Open(std::vector<uint8_t>(500000));
    PixelRows rows(file, info, 1000, 500);
    BandRows band;
    for (int i = 0; i < 21; ++i)
        ASSERT_TRUE(rows.Next(band));
    EXPECT_EQ(band.count, 20);
    EXPECT_EQ(files.Calls(), (Calls{"Open(\"a.bmp\", read)", "Read(0, 14)", "Size", "Read(260054, 240000)",
                                    "Read(20054, 240000)", "Read(54, 20000)"}));
}

TEST_F(PixelRowsTest, ABandLongerThanAPieceIsReadAtOnce) {
    Open(std::vector<uint8_t>(600000));
    PixelRows rows(file, info, 20000, 30);
    BandRows band;
    ASSERT_TRUE(rows.Next(band));
    ASSERT_TRUE(rows.Next(band));
    EXPECT_EQ(files.Calls(), (Calls{"Open(\"a.bmp\", read)", "Read(0, 14)", "Size", "Read(120054, 480000)",
                                    "Read(54, 120000)"}));
}

TEST_F(PixelRowsTest, BytesThatTheHeaderDoesNotCountAreZero) {
    Open({1, 2, 3, 4, 5, 6, 7, 8});
    for (const uint32_t counted : {0U, 1U, 4U, 6U, 8U}) {
        info.biSizeImage = counted;
        PixelRows rows(file, info, 4, 2);
        BandRows band;
        ASSERT_TRUE(rows.Next(band));
        for (uint32_t i = 0; i < 8; ++i)
            EXPECT_EQ(band.Row(static_cast<int32_t>(1 - i / 4))[i % 4], i < counted ? i + 1 : 0) << counted;
    }
}

TEST_F(PixelRowsTest, BytesThatTheFileDoesNotHoldAreZero) {
    Open({1, 2, 3, 4, 5, 6});
    info.biSizeImage = 0xFFFFFFFF;
    PixelRows rows(file, info, 4, 2);
    BandRows band;
    ASSERT_TRUE(rows.Next(band));
    EXPECT_EQ(RowHex(band, 0), "05 06 00 00");
    EXPECT_EQ(RowHex(band, 1), "01 02 03 04");
}

TEST_F(PixelRowsTest, RowsThatBeginBehindTheFilesEndAreZeroAndNotRead) {
    Open({1, 2, 3, 4});
    info.biSizeImage = 0xFFFFFFFF;
    for (const uint32_t infoBytes : {45U, 1000U, 0xFFFFFFFFU}) {
        info.biSize = infoBytes;
        PixelRows rows(file, info, 4, 1);
        BandRows band;
        ASSERT_TRUE(rows.Next(band));
        EXPECT_EQ(RowHex(band, 0), "00 00 00 00") << infoBytes;
    }
    EXPECT_EQ(files.Calls().size(), 3U);
}

TEST_F(PixelRowsTest, RowsWithoutBytesAreGivenAsWell) {
    Open({});
    PixelRows rows(file, info, 0, 30);
    BandRows band;
    ASSERT_TRUE(rows.Next(band));
    EXPECT_EQ(band.count, 24);
    ASSERT_TRUE(rows.Next(band));
    EXPECT_EQ(band.count, 6);
}

TEST_F(PixelRowsTest, AReadThatFailsOrFallsShortIsTold) {
    Open(std::vector<uint8_t>(96));
    BandRows band;
    files.Fail(1);
    EXPECT_FALSE(PixelRows(file, info, 4, 24).Next(band));
    files.ShortRead(1, 1);
    EXPECT_FALSE(PixelRows(file, info, 4, 24).Next(band));
    EXPECT_TRUE(PixelRows(file, info, 4, 24).Next(band));
}

TEST_F(PixelRowsTest, ABandIsBackedByAPieceOrByTheFile) {
    Open(std::vector<uint8_t>(100));
    info.biSizeImage = 0xFFFFFFFF;
    EXPECT_TRUE(PixelRows::AreBacked(file, info, 10922, 24)); // 262128 bytes
    EXPECT_FALSE(PixelRows::AreBacked(file, info, 10923, 24));
    EXPECT_TRUE(PixelRows::AreBacked(file, info, 10923, 23));
    EXPECT_FALSE(PixelRows::AreBacked(file, info, 10923, 0x7FFFFFFF));
    EXPECT_TRUE(PixelRows::AreBacked(file, info, 0x200000000, 0));
    Open(std::vector<uint8_t>(600000));
    info.biSizeImage = 0;
    EXPECT_TRUE(PixelRows::AreBacked(file, info, 25000, 24));
    EXPECT_FALSE(PixelRows::AreBacked(file, info, 25001, 24));
    EXPECT_TRUE(PixelRows::AreBacked(file, info, 600000, 1));
    EXPECT_FALSE(PixelRows::AreBacked(file, info, 0x17FFFFFFD, 1));
}

} // namespace nadrel
