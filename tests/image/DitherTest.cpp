#include "image/Dither.h"

#include "tests/image/Oracle.h"
#include "tests/image/RandomSeeds.h"
#include "tests/platform/ScriptedAllocation.h"

#include <algorithm>
#include <array>
#include <cfenv>
#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <vector>

namespace nadrel {

namespace {

using Row = std::vector<uint8_t>;

// A row of greys.
Row Greys(const std::vector<int> &levels) {
    Row row;
    for (const int level : levels)
        row.insert(row.end(), 3, static_cast<uint8_t>(level));
    return row;
}

std::vector<int32_t> ErrorsOf(const Dither &dither) {
    return {dither.ErrorsForNextRow(), dither.ErrorsForNextRow() + 3 * dither.Width()};
}

// A dither for rows so long, with levels taken as they are.
struct Linear : Dither {
    explicit Linear(int32_t pixels) { EXPECT_EQ(Begin(pixels, 1, 1.0), 1); }
};

// Neither a change of a row nor an access to what is not there.
void ExpectToDoNothing(Dither &dither) {
    Row row = Greys(std::vector<int>(100, 90));
    dither.DitherRow(row.data(), true);
    EXPECT_EQ(row, Greys(std::vector<int>(100, 90)));
}

} // namespace

TEST(Dither, BeginsWithKernelOneAndGammaOneHalf) {
    const Dither dither;
    EXPECT_EQ(dither.KernelIndex(), 1);
    EXPECT_EQ(dither.Gamma(), 0.5);
    EXPECT_EQ(dither.Gammas()[128], 181);
    EXPECT_EQ(dither.Width(), 0);
    EXPECT_EQ(dither.ErrorsForNextRow(), nullptr);
}

TEST(Dither, CarriesTheKernelThatItsIndexNames) {
    const std::array<std::array<int32_t, 13>, 8> kernels = {{
        {7, 0, 0, 3, 5, 1, 0, 0, 0, 0, 0, 0, 16},
        {8, 4, 2, 4, 8, 4, 2, 1, 2, 4, 2, 1, 42},
        {7, 5, 3, 5, 7, 5, 3, 1, 3, 5, 3, 1, 48},
        {8, 4, 2, 4, 8, 4, 2, 0, 0, 0, 0, 0, 32},
        {5, 3, 2, 4, 5, 4, 2, 0, 2, 3, 2, 0, 32},
        {4, 3, 1, 2, 3, 2, 1, 0, 0, 0, 0, 0, 16},
        {2, 0, 0, 1, 1, 0, 0, 0, 0, 0, 0, 0, 4},
        {3, 0, 0, 1, 5, 1, 0, 0, 0, 0, 0, 0, 16},
    }};
    Dither dither;
    for (int32_t index = 0; index < 8; ++index) {
        ASSERT_EQ(dither.Begin(4, index, 0.5), 1);
        EXPECT_TRUE(std::equal(std::begin(dither.Kernel()), std::end(dither.Kernel()),
                               kernels[static_cast<size_t>(index)].begin()))
            << index;
    }
}

TEST(Dither, KeepsTheKernelOfBeforeForAnyOtherIndex) {
    Dither dither;
    dither.Begin(4, 6, 0.5);
    for (const int32_t index :
         {8, -1, std::numeric_limits<int32_t>::min(), std::numeric_limits<int32_t>::max()}) {
        EXPECT_EQ(dither.Begin(4, index, 0.5), 1);
        EXPECT_EQ(dither.KernelIndex(), index);
        EXPECT_EQ(dither.Kernel()[12], 4);
    }
}

TEST(Dither, GivesTheSameDotsForEveryKernel) {
    const Row greys = Greys({100, 50, 200, 30, 128, 127});
    Row expected = greys;
    Dither first;
    first.Begin(6, 0, 0.5);
    first.DitherRow(expected.data(), true);
    for (int32_t index = 1; index < 8; ++index) {
        Row row = greys;
        Dither dither;
        dither.Begin(6, index, 0.5);
        dither.DitherRow(row.data(), true);
        EXPECT_EQ(row, expected);
    }
}

TEST(Dither, BeginClearsTheErrorsOfBefore) {
    Linear dither(3);
    Row row = Greys({100, 100, 100});
    dither.DitherRow(row.data(), true);
    EXPECT_NE(ErrorsOf(dither), std::vector<int32_t>(9));
    dither.Begin(3, 1, 1.0);
    EXPECT_EQ(ErrorsOf(dither), std::vector<int32_t>(9));
}

TEST(Dither, BeginWithAnotherGammaRebuildsTheTable) {
    Dither dither;
    dither.Begin(1, 1, 1.0);
    EXPECT_EQ(dither.Gamma(), 1.0);
    EXPECT_EQ(dither.Gammas()[128], 128);
}

TEST(Dither, BeginWithTheSameGammaDoesNotRebuildTheTable) {
    Dither dither;
    // Building the table rounds; the processor's note of that shows whether it was built.
    std::feclearexcept(FE_INEXACT);
    dither.Begin(1, 1, 0.5);
    EXPECT_EQ(std::fetestexcept(FE_INEXACT), 0);
    dither.Begin(1, 1, 0.6);
    EXPECT_NE(std::fetestexcept(FE_INEXACT), 0);
}

TEST(Dither, BeginFailsWhenEitherRowFindsNoMemory) {
    if (!scripted::allocation::CanFail())
        GTEST_SKIP() << "the sanitizer's runtime allocates";
    for (const int nth : {1, 2}) {
        Dither dither;
        scripted::allocation::FailNth(nth, 1200, 1200);
        EXPECT_EQ(dither.Begin(100, 1, 0.5), 0);
        scripted::allocation::Allow();
        ExpectToDoNothing(dither);
        dither.Reset();
        ExpectToDoNothing(dither);
        EXPECT_EQ(dither.Begin(100, 1, 0.5), 1);
    }
}

TEST(Dither, BeginFailsForAWidthThatNoMemoryHolds) {
    if (!scripted::allocation::CanFail())
        GTEST_SKIP() << "the sanitizer's runtime allocates";
    Dither dither;
    scripted::allocation::FailNext(1U << 30, std::numeric_limits<size_t>::max());
    EXPECT_EQ(dither.Begin(std::numeric_limits<int32_t>::max(), 1, 0.5), 0);
    scripted::allocation::Allow();
    ExpectToDoNothing(dither);
}

TEST(Dither, BeginFailsForAWidthBelowZero) {
    Dither dither;
    EXPECT_EQ(dither.Begin(-1, 1, 0.5), 0);
    EXPECT_EQ(dither.Begin(std::numeric_limits<int32_t>::min(), 1, 0.5), 0);
}

TEST(Dither, DoesNothingBeforeBeginAndAfterRelease) {
    Row row = Greys({100});
    Dither dither;
    dither.DitherRow(row.data(), true);
    EXPECT_EQ(row, Greys({100}));
    dither.Begin(1, 1, 0.5);
    dither.Release();
    EXPECT_EQ(dither.Width(), 0);
    dither.DitherRow(row.data(), true);
    EXPECT_EQ(row, Greys({100}));
    dither.Reset();
}

TEST(Dither, DoesNothingForRowsWithoutPixels) {
    Dither dither;
    EXPECT_EQ(dither.Begin(0, 1, 0.5), 1);
    dither.DitherRow(nullptr, true);
}

TEST(Dither, LeavesARowOfBlackAndWhiteAsItIsAndClearsTheErrors) {
    Linear dither(4);
    Row grey = Greys({100, 200, 100, 200});
    dither.DitherRow(grey.data(), true);
    Row pure = Greys({0, 255, 255, 0});
    dither.DitherRow(pure.data(), true);
    EXPECT_EQ(pure, Greys({0, 255, 255, 0}));
    EXPECT_EQ(ErrorsOf(dither), std::vector<int32_t>(12));
}

TEST(Dither, GreyOf128EntersAs181WithTheDefaultGamma) {
    Dither dither;
    dither.Begin(1, 1, 0.5);
    Row row = Greys({128});
    dither.DitherRow(row.data(), true);
    // 181 becomes white: e = -74, e >> 2 = -19, f = -55: below -14.
    EXPECT_EQ(PrintedLuminance().Of(128, 128, 128), 181);
    EXPECT_EQ(ErrorsOf(dither), std::vector<int32_t>(3, -14));
    EXPECT_EQ(row, Greys({255}));
}

TEST(Dither, Makes128AndMoreWhiteAnd127AndLessBlack) {
    for (int level = 0; level < 256; ++level) {
        Linear dither(1);
        Row row = Greys({level});
        const int32_t luminance =
            Luminance(MakeGammaTable(1.0))
                .Of(static_cast<uint32_t>(level), static_cast<uint32_t>(level), static_cast<uint32_t>(level));
        dither.DitherRow(row.data(), true);
        EXPECT_EQ(row, Greys({luminance >= 128 ? 255 : 0})) << level;
    }
}

TEST(Dither, HandsThreeEighthsToTheRightAndThreeSixteenthsEachBelowAndBelowLeft) {
    Linear dither(3);
    // 100: e = 100, f = 75, to the right 37, below and below left 18 each.
    // 90 + 37 = 127: e = 127, f = 96, 48 and 24. 0 + 48 = 48: e = 48, f = 36, 18 and 9.
    Row row = {100, 100, 100, 90, 90, 90, 0, 0, 0};
    dither.DitherRow(row.data(), true);
    EXPECT_EQ(row, Greys({0, 0, 0}));
    EXPECT_EQ(ErrorsOf(dither), (std::vector<int32_t>{42, 42, 42, 33, 33, 33, 9, 9, 9}));
}

TEST(Dither, RoundsNegativeErrorsDown) {
    Linear dither(2);
    // 200: white, e = -55, e >> 2 = -14, f = -41: to the right -21, below -11.
    // 255 - 21 = 234: e = -21, f = -21 + 6 = -15: below -4, and below left -4.
    Row row = Greys({200, 255});
    const int32_t luminance = Luminance(MakeGammaTable(1.0)).Of(200, 200, 200);
    ASSERT_EQ(luminance, 200);
    dither.DitherRow(row.data(), true);
    EXPECT_EQ(row, Greys({255, 255}));
    EXPECT_EQ(ErrorsOf(dither), (std::vector<int32_t>{-15, -15, -15, -4, -4, -4}));
}

TEST(Dither, ClampsWhatErrorsMakeOfAValue) {
    Linear dither(1);
    Row first = Greys({127});
    dither.DitherRow(first.data(), true); // hands 24 down
    Row second = {250, 250, 250};
    dither.DitherRow(second.data(), true); // 250 + 24 counts as 255: no error is left
    EXPECT_EQ(second, Greys({255}));
    EXPECT_EQ(ErrorsOf(dither), (std::vector<int32_t>{0, 0, 0}));
}

TEST(Dither, APurePixelWithoutErrorsStaysAndHandsNothingOn) {
    Linear dither(3);
    Row row = Greys({255, 0, 100});
    dither.DitherRow(row.data(), true);
    EXPECT_EQ(row, Greys({255, 0, 0}));
    EXPECT_EQ(ErrorsOf(dither), (std::vector<int32_t>{0, 0, 0, 18, 18, 18, 18, 18, 18}));
}

TEST(Dither, APurePixelWithAnErrorIsReducedAsAnyOther) {
    Linear dither(2);
    // 127 counts as 126 (one of the greys whose sum ends lower): f = 95, 47 to the right, 23 below. 47: f =
    // 36, 9.
    Row row = Greys({127, 0});
    dither.DitherRow(row.data(), true);
    EXPECT_EQ(row, Greys({0, 0}));
    EXPECT_EQ(ErrorsOf(dither), (std::vector<int32_t>{32, 32, 32, 9, 9, 9}));
}

TEST(Dither, InColourModeEachOfTheEightColoursStays) {
    Row row = {255, 255, 255, 0, 0,   0,   0,   0, 255, 0,   255, 0,
               255, 0,   0,   0, 255, 255, 255, 0, 255, 255, 255, 0};
    const Row before = row;
    Dither dither;
    dither.Begin(8, 1, 0.5);
    dither.DitherRow(row.data(), false);
    EXPECT_EQ(row, before);
}

TEST(Dither, InGreyModeAPureColourThatIsNotBlackOrWhiteIsReduced) {
    Row row = {0, 0, 255}; // red: 0.299 x 255 = 76
    Dither dither;
    dither.Begin(1, 1, 0.5);
    dither.DitherRow(row.data(), true);
    EXPECT_EQ(row, Greys({0}));
    EXPECT_EQ(ErrorsOf(dither), (std::vector<int32_t>{14, 14, 14}));
}

TEST(Dither, InColourModeTakesTheNearestColour) {
    struct Case {
        Row pixel; // blue, green, red
        Row nearest;
    };
    const Case cases[] = {
        {{200, 200, 200}, {255, 255, 255}}, {{50, 60, 70}, {0, 0, 0}},       {{10, 20, 230}, {0, 0, 255}},
        {{10, 230, 20}, {0, 255, 0}},       {{230, 20, 10}, {255, 0, 0}},    {{10, 200, 230}, {0, 255, 255}},
        {{230, 20, 210}, {255, 0, 255}},    {{230, 210, 20}, {255, 255, 0}},
    };
    for (const Case &one : cases) {
        Linear dither(1);
        Row row = one.pixel;
        dither.DitherRow(row.data(), false);
        EXPECT_EQ(row, one.nearest);
    }
}

TEST(Dither, InColourModeEachChannelHandsOnItsOwnError) {
    Linear dither(1);
    Row row = {10, 100, 200}; // black, black, red: errors of red -55, green 100, blue 10
    dither.DitherRow(row.data(), false);
    EXPECT_EQ(row, (Row{0, 0, 255}));
    EXPECT_EQ(ErrorsOf(dither), (std::vector<int32_t>{-11, 18, 2}));
}

TEST(Dither, GivesWhatTheOracleGivesInBothModes) {
    PlayRandomCases(400, [](Random &random) {
        const auto width = static_cast<int32_t>(1 + random() % 40);
        const bool grey = random() % 2 == 0;
        const double gamma = random() % 3 == 0 ? 1.0 : 0.5;
        Dither dither;
        ASSERT_EQ(dither.Begin(width, 1, gamma), 1);
        oracle::Dither expected(width, gamma);
        for (int y = 0; y < 30; ++y) {
            Row row(static_cast<size_t>(width) * 3);
            const bool pure = random() % 5 == 0;
            for (size_t i = 0; i < row.size(); ++i)
                row[i] = !pure               ? static_cast<uint8_t>(random())
                         : i % 3 > 0         ? row[i - 1]
                         : random() % 2 == 0 ? 0
                                             : 255;
            Row oracleRow = row;
            dither.DitherRow(row.data(), grey);
            expected.DitherRow(oracleRow.data(), grey);
            ASSERT_EQ(row, oracleRow) << "row " << y;
        }
    });
}

} // namespace nadrel
