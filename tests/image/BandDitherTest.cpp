#include "image/BandDither.h"
#include "image/LaneLevels.h"

#include "tests/image/BmpBuilder.h"
#include "tests/image/Oracle.h"
#include "tests/image/RandomSeeds.h"

#include <algorithm>
#include <cstdint>
#include <gtest/gtest.h>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace nadrel {

namespace {

using Lines = std::vector<uint8_t>;

struct Form {
    const char *name;
    MakeDither make;
};

void PrintTo(const Form &form, std::ostream *out) {
    *out << form.name;
}

const Form kForms[] = {
    {"Fastest", MakeBandDither},
    {"LookUp", [](int32_t width) { return MakeBandDither(width, LuminanceForms().front().spread); }},
    {"Portable",
     [](int32_t width) -> std::unique_ptr<BandDither> { return std::make_unique<PortableDither>(width); }},
};

size_t LineBytes(int32_t width) {
    return (static_cast<size_t>(width) + 31) / 32 * 4;
}

Lines Converted(const Form &form, const BmpBuilder &picture) {
    const size_t stride = BmpBuilder::StrideOf(picture.width, 24);
    const size_t lineBytes = LineBytes(picture.width);
    Lines lines(lineBytes * static_cast<size_t>(picture.height), 0xEE);
    const auto dither = form.make(picture.width);
    for (int32_t y = 0; y < picture.height; y += kBandLines) {
        const uint8_t *top = picture.pixels.data() + stride * static_cast<size_t>(picture.height - 1 - y);
        dither->Convert({top, stride, std::min(kBandLines, picture.height - y)},
                        lines.data() + lineBytes * static_cast<size_t>(y), lineBytes);
    }
    return lines;
}

Lines Expected(const BmpBuilder &picture) {
    const size_t stride = BmpBuilder::StrideOf(picture.width, 24);
    const size_t lineBytes = LineBytes(picture.width);
    Lines lines(lineBytes * static_cast<size_t>(picture.height));
    oracle::Dither dither(picture.width);
    for (int32_t y = 0; y < picture.height; ++y) {
        const auto from = picture.pixels.begin() + static_cast<ptrdiff_t>(stride) * (picture.height - 1 - y);
        std::vector<uint8_t> row(from, from + static_cast<ptrdiff_t>(stride));
        dither.DitherRow(row.data(), true);
        for (int32_t x = 0; x < picture.width; ++x)
            if (row[3 * static_cast<size_t>(x)] == 0) {
                uint8_t &byte = lines[lineBytes * static_cast<size_t>(y) + static_cast<size_t>(x / 8)];
                byte = static_cast<uint8_t>(byte | 0x80 >> x % 8);
            }
    }
    return lines;
}

class BandDitherTest : public testing::TestWithParam<Form> {
  protected:
    // Whether the dots are those of the oracle.
    template <typename At>
    static bool IsRight(int32_t width, int32_t height, At at) {
        const BmpBuilder picture = BmpBuilder::Colour(width, height, at);
        return Converted(GetParam(), picture) == Expected(picture);
    }
};

Pixel Grey(uint32_t level) {
    const auto byte = static_cast<uint8_t>(level);
    return {byte, byte, byte};
}

} // namespace

TEST_P(BandDitherTest, GivesTheOraclesDotsForEveryLevelOfGrey) {
    for (uint32_t level = 0; level < 256; ++level)
        EXPECT_TRUE(IsRight(40, 30, [=](int32_t, int32_t) { return Grey(level); })) << level;
}

TEST_P(BandDitherTest, GivesTheOraclesDotsForEveryWidth) {
    Random random(1);
    for (int32_t width = 1; width <= 200; ++width)
        EXPECT_TRUE(IsRight(width, 50, [&](int32_t, int32_t) { return Grey(random()); })) << width;
}

TEST_P(BandDitherTest, GivesTheOraclesDotsForEveryHeight) {
    Random random(2);
    for (int32_t height = 1; height <= 100; ++height)
        EXPECT_TRUE(IsRight(33, height, [&](int32_t, int32_t) { return Grey(random() % 200); })) << height;
}

TEST_P(BandDitherTest, GivesTheOraclesDotsForColours) {
    Random random(3);
    EXPECT_TRUE(IsRight(300, 300, [&](int32_t, int32_t) {
        return Pixel{static_cast<uint8_t>(random()), static_cast<uint8_t>(random()),
                     static_cast<uint8_t>(random())};
    }));
}

TEST_P(BandDitherTest, GivesTheOraclesDotsForAWidePicture) {
    Random random(4);
    for (const int32_t width : {2040, 16384, 16385, 70000})
        EXPECT_TRUE(IsRight(width, 26, [&](int32_t, int32_t) { return Grey(random()); })) << width;
}

TEST_P(BandDitherTest, ErrorsAreHandedOnFromBandToBand) {
    Random random(5);
    EXPECT_TRUE(IsRight(64, 24 * 8,
                        [&](int32_t, int32_t y) { return Grey(y % 24 == 23 ? 100 + random() % 50 : 127); }));
}

TEST_P(BandDitherTest, ARowOfBlackAndWhiteStopsTheErrorsWhereverItStands) {
    Random random(6);
    for (int32_t pure = 0; pure < 72; ++pure)
        EXPECT_TRUE(IsRight(50, 72, [&](int32_t, int32_t y) {
            return y == pure ? Grey(random() % 2 * 255) : Grey(random() % 256);
        })) << pure;
}

TEST_P(BandDitherTest, AWholeBandOfBlackAndWhiteStopsTheErrors) {
    Random random(7);
    for (int32_t band = 0; band < 3; ++band)
        EXPECT_TRUE(IsRight(50, 24 * 4, [&](int32_t, int32_t y) {
            return y / 24 == band ? Grey(random() % 2 * 255) : Grey(100 + random() % 40);
        })) << band;
}

TEST_P(BandDitherTest, ARowOfPureColoursDoesNotStopTheErrors) {
    for (const Pixel pixel :
         {Pixel{255, 0, 0}, Pixel{0, 255, 0}, Pixel{0, 0, 255}, Pixel{255, 255, 0}, Pixel{0, 255, 255}})
        EXPECT_TRUE(IsRight(30, 30, [=](int32_t, int32_t y) { return y % 3 == 1 ? pixel : Grey(120); }));
}

TEST_P(BandDitherTest, OneGreyPixelAnywhereInARowLetsTheErrorsIn) {
    for (int32_t grey = 0; grey < 70; ++grey)
        EXPECT_TRUE(IsRight(70, 4, [=](int32_t x, int32_t y) {
            return y == 2 ? Grey(x == grey ? 254 : 255) : Grey(110);
        })) << grey;
}

TEST_P(BandDitherTest, NothingCrossesTheBordersOfARow) {
    // Dark pixels at either end hand the most to the right and down.
    for (int32_t width = 1; width < 80; ++width)
        EXPECT_TRUE(IsRight(width, 60, [=](int32_t x, int32_t y) {
            return Grey(x == 0 || x == width - 1 ? (y % 2 == 0 ? 127 : 0) : (y % 2 == 0 ? 0 : 40));
        })) << width;
}

TEST_P(BandDitherTest, BlackAndWhitePicturesStayAsTheyAre) {
    const BmpBuilder picture =
        BmpBuilder::Colour(37, 40, [](int32_t x, int32_t y) { return (x + y) % 3 == 0 ? kBlack : kWhite; });
    Lines expected(8 * 40);
    for (size_t y = 0; y < 40; ++y)
        for (size_t x = 0; x < 37; ++x)
            if ((x + y) % 3 == 0)
                expected[8 * y + x / 8] = static_cast<uint8_t>(expected[8 * y + x / 8] | 0x80 >> x % 8);
    EXPECT_EQ(Converted(GetParam(), picture), expected);
}

TEST_P(BandDitherTest, WhatLiesBehindTheLastPixelIsZero) {
    for (int32_t width = 1; width <= 64; ++width) {
        const Lines lines =
            Converted(GetParam(), BmpBuilder::Colour(width, 24, [](int32_t, int32_t) { return kBlack; }));
        for (size_t bit = 0; bit < LineBytes(width) * 8; ++bit)
            ASSERT_EQ(lines[bit / 8] >> (7 - bit % 8) & 1, bit < static_cast<size_t>(width) ? 1 : 0) << width;
    }
}

TEST_P(BandDitherTest, PicturesWithoutColumnsHaveNoDots) {
    GetParam().make(0)->Convert({nullptr, 0, 24}, nullptr, 0);
}

INSTANTIATE_TEST_SUITE_P(Forms, BandDitherTest, testing::ValuesIn(kForms),
                         [](const auto &form) { return std::string(form.param.name); });

} // namespace nadrel
