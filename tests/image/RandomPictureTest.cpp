#include "image/LaneLevels.h"
#include "image/PrintBmp.h"
#include "tests/image/Oracle.h"
#include "tests/image/PictureTest.h"
#include "tests/image/RandomSeeds.h"

#include "image/BandDither.h"

#include <algorithm>

namespace nadrel {

namespace {

uint8_t Byte(uint32_t value) {
    return static_cast<uint8_t>(value);
}

Pixel Grey(uint32_t level) {
    return {Byte(level), Byte(level), Byte(level)};
}

// What one row is filled with.
enum class Fill { noise, greyNoise, gradient, flat, pure, whiteOrBlack, runs, almostPure };

class RandomRow {
  public:
    explicit RandomRow(Random &source) : random(source) { Change(); }

    void Change() {
        fill = static_cast<Fill>(random() % 8);
        level = random();
        step = random() % 9;
    }

    Pixel At(int32_t x) {
        switch (fill) {
        case Fill::noise:
            return {Byte(random()), Byte(random()), Byte(random())};
        case Fill::greyNoise:
            return Grey(random());
        case Fill::gradient:
            return {Byte(level + step * static_cast<uint32_t>(x)), Byte(level >> 8), Byte(level >> 16)};
        case Fill::flat:
            return Grey(level);
        case Fill::pure:
            return random() % 2 == 0 ? kBlack : kWhite;
        case Fill::whiteOrBlack:
            return level % 2 == 0 ? kBlack : kWhite;
        case Fill::runs:
            level = random() % 12 == 0 ? ~level : level;
            return level % 2 == 0 ? kBlack : kWhite;
        case Fill::almostPure:
            return random() % 20 == 0 ? Grey(random()) : level % 2 == 0 ? kBlack : kWhite;
        }
        return {};
    }

  private:
    Random &random;
    Fill fill = Fill::noise;
    uint32_t level = 0;
    uint32_t step = 0;
};

int32_t RandomWidth(Random &random) {
    return static_cast<int32_t>(random() % 16 == 0 ? random() % 200 : random() % 70);
}

// Around multiples of 24 as a rule.
int32_t RandomHeight(Random &random) {
    if (random() % 3 == 0)
        return static_cast<int32_t>(random() % 30);
    const uint32_t bands = random() % 8 == 0 ? random() % 6 : random() % 3;
    return static_cast<int32_t>(std::max(bands * 24 + random() % 3, 1U) - 1);
}

BmpBuilder RandomFile(Random &random) {
    const int32_t width = RandomWidth(random);
    const int32_t height = RandomHeight(random);
    if (random() % 5 == 0) {
        const uint32_t density = 1 + random() % 9;
        return BmpBuilder::OneBit(width, height, [&](int32_t, int32_t) { return random() % density == 0; });
    }
    RandomRow row(random);
    const auto pureBand = static_cast<int32_t>(random() % 6); // which may lie behind the picture
    return BmpBuilder::Colour(width, height, [&](int32_t x, int32_t y) {
        if (x == 0 && random() % 2 == 0)
            row.Change();
        return y / kBandLines == pureBand ? Grey(random() % 2 * 255) : row.At(x);
    });
}

class RandomPicture : public PictureTest, public testing::WithParamInterface<uint32_t> {
  protected:
    void SetUp() override {
        OpenSerialLink();
        os.StopRecording();
    }

    // What a machine without wide instructions prints.
    static std::vector<uint8_t> RasterWithLookUps() {
        PrintBmp picture(
            [](int32_t width) { return MakeBandDither(width, LuminanceForms().front().spread); });
        EXPECT_EQ(picture.Load(kName), 1);
        std::vector<uint8_t> commands(static_cast<size_t>(picture.RasterBytes(RasterForm::normal)));
        EXPECT_EQ(picture.MakeRaster(RasterForm::normal, commands), static_cast<int32_t>(commands.size()));
        return commands;
    }

    void CompareAllForms(Random &random) {
        BmpBuilder builder = RandomFile(random);
        if (random() % 10 == 0 && !builder.pixels.empty())
            builder.claimedImageBytes = static_cast<int64_t>(random() % builder.pixels.size());
        const FileBytes file = builder.Bytes();
        files.Reset();
        files.Put(kName, file);
        SCOPED_TRACE(std::to_string(builder.bitCount) + " bits, " + std::to_string(builder.width) + " x " +
                     std::to_string(builder.height));
        const auto x = static_cast<int32_t>(random());
        const auto y = static_cast<int32_t>(random());
        ClearSpool();
        ASSERT_GT(BmpSaveSpool(kName, x, y), 0);
        ASSERT_EQ(SpoolBytes(), oracle::PositionedRaster(file, x, y)) << "positioned";
        ClearSpool();
        NormalBmpSaveSpool(kName);
        ASSERT_EQ(SpoolBytes(), oracle::NormalRaster(file)) << "normal";
        ClearSpool();
        CompressedBmpSaveSpool(kName);
        ASSERT_EQ(SpoolBytes(), oracle::CompressedRaster(file)) << "compressed";
        ASSERT_EQ(RasterWithLookUps(), oracle::NormalRaster(file)) << "where no wide instructions are";
    }
};

} // namespace

TEST_P(RandomPicture, PrintsTheBytesOfTheOracleInAllForms) {
    PlayRandomCases(
        30000, [this](Random &random) { CompareAllForms(random); }, 1 + GetParam() * 100000000);
}

// Several, so that they run beside each other.
INSTANTIATE_TEST_SUITE_P(Part, RandomPicture, testing::Values(0, 1, 2, 3, 4));

} // namespace nadrel
