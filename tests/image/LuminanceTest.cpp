#include "image/Luminance.h"

#include <cmath>
#include <cstdint>
#include <gtest/gtest.h>

namespace nadrel {

namespace {

// An IEEE double of 0..255 as a whole number of 2^-56: every product and sum below is exact before it is
// rounded.
using Exact = uint64_t;

constexpr int kFractionBits = 56;
constexpr int kMantissaBits = 53;

// To 53 bits, ties to even.
Exact Rounded(Exact value) {
    int bits = 0;
    while (bits < 64 && value >> bits != 0)
        ++bits;
    const int drop = bits - kMantissaBits;
    if (drop <= 0)
        return value;
    const Exact half = Exact{1} << (drop - 1);
    const Exact kept = value >> drop;
    const Exact rest = value & ((half << 1) - 1);
    const bool up = rest > half || (rest == half && (kept & 1) != 0);
    return (kept + (up ? 1 : 0)) << drop;
}

// The double nearest to a share, which has no bits below 2^-56.
Exact Share(double share) {
    return static_cast<Exact>(std::ldexp(share, kFractionBits));
}

// The luminance of corrected levels in arithmetic that has no floating point in it.
int32_t ExactLuminance(Exact red, Exact green, Exact blue) {
    return static_cast<int32_t>(Rounded(Rounded(red + green) + blue) >> kFractionBits);
}

} // namespace

TEST(GammaTable, IsTheSquareRootOfTheLevelByDefault) {
    const GammaTable table = MakeGammaTable(0.5);
    for (int32_t level = 0; level < 256; ++level) {
        const int32_t value = table[static_cast<size_t>(level)];
        // value is 255 x level's root, rounded: (value - 1/2)^2 <= 255 x level < (value + 1/2)^2
        EXPECT_LE(4 * value * (value - 1) + 1, 4 * 255 * level + (level == 0 ? 1 : 0)) << level;
        EXPECT_LT(4 * 255 * level, 4 * value * (value + 1) + 1) << level;
    }
    EXPECT_EQ(table[0], 0);
    EXPECT_EQ(table[1], 16);
    EXPECT_EQ(table[64], 128);
    EXPECT_EQ(table[128], 181);
    EXPECT_EQ(table[254], 254);
    EXPECT_EQ(table[255], 255);
}

TEST(GammaTable, IsTheLevelItselfForGammaOne) {
    const GammaTable table = MakeGammaTable(1.0);
    for (int32_t level = 0; level < 256; ++level)
        EXPECT_EQ(table[static_cast<size_t>(level)], level);
}

TEST(GammaTable, IsCappedAt255) {
    const GammaTable table = MakeGammaTable(-1000.0);
    EXPECT_EQ(table[0], 0);
    EXPECT_EQ(table[1], 255);
    EXPECT_EQ(table[254], 255);
    EXPECT_EQ(table[255], 255);
}

TEST(GammaTable, StaysInRangeForAGammaThatIsNoNumber) {
    for (const int32_t value : MakeGammaTable(std::nan("")))
        EXPECT_TRUE(value >= 0 && value <= 255);
}

TEST(Luminance, IsTheTruncatedSumOfDoublesForAllColours) {
    const GammaTable gamma = MakeGammaTable(0.5);
    Exact red[256], green[256], blue[256];
    for (size_t level = 0; level < 256; ++level) {
        const auto corrected = static_cast<Exact>(gamma[level]);
        red[level] = Rounded(Share(0.299) * corrected);
        green[level] = Rounded(Share(0.587) * corrected);
        blue[level] = Rounded(Share(0.114) * corrected);
    }
    const Luminance &luminance = PrintedLuminance();
    for (uint32_t r = 0; r < 256; ++r)
        for (uint32_t g = 0; g < 256; ++g)
            for (uint32_t b = 0; b < 256; ++b)
                ASSERT_EQ(luminance.Of(b, g, r), ExactLuminance(red[r], green[g], blue[b]))
                    << "red " << r << " green " << g << " blue " << b;
}

TEST(Luminance, IsTheExpressionWithoutTablesForAllColours) {
    const GammaTable gamma = MakeGammaTable(0.5);
    const Luminance &luminance = PrintedLuminance();
    for (uint32_t r = 0; r < 256; ++r)
        for (uint32_t g = 0; g < 256; ++g)
            for (uint32_t b = 0; b < 256; ++b)
                ASSERT_EQ(luminance.Of(b, g, r),
                          static_cast<int>(0.299 * gamma[r] + 0.587 * gamma[g] + 0.114 * gamma[b]))
                    << "red " << r << " green " << g << " blue " << b;
}

TEST(Luminance, OfAGreyIsItsCorrectedLevelOrOneLess) {
    const GammaTable linear = MakeGammaTable(1.0);
    const Luminance luminance(linear);
    int lower = 0;
    for (uint32_t level = 0; level < 256; ++level) {
        const uint32_t value = luminance.Of(level, level, level);
        EXPECT_TRUE(value == level || value + 1 == level) << level;
        lower += value + 1 == level ? 1 : 0;
    }
    EXPECT_EQ(lower, 65);
}

} // namespace nadrel
