#include "tests/image/Oracle.h"

#include "tests/image/PictureTest.h"

// The oracle itself, held against bytes that were worked out by hand.
namespace nadrel {

TEST(Oracle, PrintsEightDotsInEachForm) {
    const FileBytes file = BmpBuilder::OneBit(8, 1, [](int32_t, int32_t) { return 0; }).Bytes();
    const std::string zeros = HexOf(std::vector<uint8_t>(95));
    EXPECT_EQ(HexOf(*oracle::PositionedRaster(file, 0, 0)),
              "1D 50 B4 B4 1B 33 18 1B 4F 00 00 00 00 1B 58 34 04 01 00 " + zeros + " 1B 33 01 0A 1B 32");
    EXPECT_EQ(HexOf(*oracle::NormalRaster(file)),
              "1D 50 B4 B4 1B 33 18 1B 58 34 04 01 FF " + zeros + " 1B 33 01 0A 1B 32");
    EXPECT_EQ(HexOf(*oracle::CompressedRaster(file)),
              "1D 50 B4 B4 1B 58 33 04 18 81 FF 83 00 00 00 1B 58 32 18");
}

TEST(Oracle, CompressesRunsPairsAndLiterals) {
    EXPECT_EQ(HexOf(oracle::CompressBand({0x41, 0x42, 0x42, 0x43}, 4, 1)), "81 41 83 42 42 43");
    EXPECT_EQ(HexOf(oracle::CompressBand(std::vector<uint8_t>(130), 130, 1)), "FA 00 FA 00 CE 00");
    EXPECT_EQ(HexOf(oracle::CompressBand({5, 5, 5, 7}, 4, 1)), "84 05 05 05 07");
}

TEST(Oracle, DithersAPairOfGreys) {
    oracle::Dither dither(2, 1.0);
    uint8_t row[] = {100, 100, 100, 95, 95, 95}; // 100 hands 37 to the right: 132 is white
    dither.DitherRow(row, true);
    EXPECT_EQ(HexOf({std::begin(row), std::end(row)}), "00 00 00 FF FF FF");
}

TEST(Oracle, LoadsNothingThatIsNoBitmap) {
    EXPECT_FALSE(oracle::NormalRaster({}).has_value());
    EXPECT_FALSE(oracle::NormalRaster(FileBytes(100, 'B')).has_value());
}

} // namespace nadrel
