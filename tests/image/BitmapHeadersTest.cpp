#include "image/BitmapHeaders.h"

#include <cstdint>
#include <gtest/gtest.h>

namespace nadrel {

namespace {

constexpr uint8_t kFileHeader[14] = {'B', 'M', 0x78, 0x56, 0x34, 0x12, 1, 0, 2, 0, 0x36, 0, 0, 0x80};

constexpr uint8_t kInfoHeader[40] = {40,   0,    0,    0,    0x40, 0x02, 0, 0, 0xFE, 0xFF, 0xFF, 0xFF, 1, 0,
                                     24,   0,    3,    0,    0,    0,    4, 3, 2,    1,    5,    0,    0, 0,
                                     0xFA, 0xFF, 0xFF, 0xFF, 7,    0,    0, 0, 8,    0,    0,    0x80};

} // namespace

TEST(BitmapHeaders, FileHeaderIsStoredLowByteFirst) {
    const BitmapFileHeader header = DecodeFileHeader(kFileHeader);
    EXPECT_EQ(header, (BitmapFileHeader{0x4D42, 0x12345678, 1, 2, 0x80000036}));
    uint8_t bytes[14];
    Encode(header, bytes);
    EXPECT_TRUE(std::equal(std::begin(bytes), std::end(bytes), kFileHeader));
}

TEST(BitmapHeaders, InfoHeaderIsStoredLowByteFirst) {
    const BITMAPINFOHEADER header = DecodeInfoHeader(kInfoHeader);
    EXPECT_EQ(header, (BITMAPINFOHEADER{40, 576, -2, 1, 24, 3, 0x01020304, 5, -6, 7, 0x80000008}));
    uint8_t bytes[40];
    Encode(header, bytes);
    EXPECT_TRUE(std::equal(std::begin(bytes), std::end(bytes), kInfoHeader));
}

} // namespace nadrel
