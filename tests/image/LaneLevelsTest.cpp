#include "image/LaneLevels.h"

#include "image/Luminance.h"
#include "tests/image/RandomSeeds.h"

#include <gtest/gtest.h>
#include <ostream>
#include <string>
#include <vector>

namespace nadrel {

void PrintTo(const LuminanceForm &form, std::ostream *out) {
    *out << form.name;
}

namespace {

// Stored from the bottom up; each row lies as crooked as `place` and `stride` make it.
struct Picture {
    Picture(int32_t columns, int32_t lines, size_t place, size_t gap)
        : width(columns), stride(3 * static_cast<size_t>(columns) + gap),
          bytes(place + stride * static_cast<size_t>(lines), 0xEE),
          rows{bytes.data() + place + stride * static_cast<size_t>(lines - 1), stride, lines} {}

    uint8_t *Pixel(int32_t x, int32_t k) {
        return const_cast<uint8_t *>(rows.Row(k)) + 3 * static_cast<ptrdiff_t>(x);
    }

    template <typename At>
    void Fill(At at) {
        for (int32_t k = 0; k < rows.count; ++k)
            for (int32_t x = 0; x < width; ++x) {
                const uint32_t colour = at(x, k);
                for (int i = 0; i < 3; ++i)
                    Pixel(x, k)[i] = static_cast<uint8_t>(colour >> 8 * i);
            }
    }

    uint8_t LuminanceAt(int32_t x, int32_t k) {
        const uint8_t *const pixel = Pixel(x, k);
        return x < 0 || x >= width ? uint8_t{0} : PrintedLuminance().Of(pixel[0], pixel[1], pixel[2]);
    }

    int32_t width;
    size_t stride;
    std::vector<uint8_t> bytes;
    BandRows rows;
};

class LaneLevelsTest : public testing::TestWithParam<LuminanceForm> {
  protected:
    // Whether every row's luminances stand where its lane takes them, and zeros before and behind them.
    static bool IsSpreadRightly(Picture &picture) {
        std::vector<uint8_t> levels(LaneLevelBytes(picture.width));
        GetParam().spread(picture.rows, picture.width, levels.data());
        const int32_t steps = picture.width + kSkew * (kLanes - 1);
        for (int32_t step = 0; step < steps; ++step)
            for (int32_t k = 0; k < picture.rows.count; ++k)
                if (levels[static_cast<size_t>(step * kLanes + k)] !=
                    picture.LuminanceAt(step - kSkew * k, k))
                    return false;
        return true;
    }
};

uint32_t Grey(uint32_t level) {
    return (level & 255) * 0x010101;
}

// All that are no grey and whose luminance would be a whole number if the shares were exact.
std::vector<uint32_t> WholeColours() {
    const GammaTable gamma = MakeGammaTable(kPrintedGamma);
    std::vector<uint32_t> colours;
    for (uint32_t colour = 0; colour < 1 << 24; ++colour) {
        const int32_t sum =
            299 * gamma[colour >> 16] + 587 * gamma[colour >> 8 & 255] + 114 * gamma[colour & 255];
        if (sum % 1000 == 0 && colour != Grey(colour))
            colours.push_back(colour);
    }
    return colours;
}

} // namespace

TEST_P(LaneLevelsTest, AreTheLuminancesOfAllColours) {
    for (uint32_t red = 0; red < 256; red += kLanes) {
        Picture picture(1 << 16, static_cast<int32_t>(std::min<uint32_t>(kLanes, 256 - red)), 0, 0);
        picture.Fill([=](int32_t x, int32_t k) {
            return (red + static_cast<uint32_t>(k)) << 16 | static_cast<uint32_t>(x);
        });
        ASSERT_TRUE(IsSpreadRightly(picture)) << "red " << red;
    }
}

TEST_P(LaneLevelsTest, StandInTheirLanesForEveryWidthAndAlignment) {
    Random random(1);
    for (int32_t width = 0; width <= 200; ++width) {
        Picture picture(width, kLanes, random() % 64, random() % 64);
        picture.Fill([&](int32_t, int32_t) { return random(); });
        ASSERT_TRUE(IsSpreadRightly(picture)) << width;
    }
}

TEST_P(LaneLevelsTest, StandInTheirLanesForEveryNumberOfRows) {
    Random random(2);
    for (int32_t count = 1; count <= kLanes; ++count)
        for (const int32_t width : {1, 15, 16, 17, 63, 64, 65, 130}) {
            Picture picture(width, count, random() % 64, random() % 64);
            picture.Fill([&](int32_t, int32_t) { return random(); });
            ASSERT_TRUE(IsSpreadRightly(picture)) << count << " rows of " << width;
        }
}

TEST_P(LaneLevelsTest, AreThoseOfGreysAndColoursInAnyMixture) {
    const std::vector<uint32_t> whole = WholeColours();
    Random random(3);
    for (uint32_t round = 0; round < 400; ++round) {
        Picture picture(100, kLanes, random() % 64, random() % 64);
        const uint32_t greys = round % 16, wholes = round / 16 % 4 * 4;
        picture.Fill([&](int32_t, int32_t) {
            return random() % 16 < greys    ? Grey(random())
                   : random() % 16 < wholes ? whole[random() % whole.size()]
                                            : random();
        });
        ASSERT_TRUE(IsSpreadRightly(picture)) << round;
    }
}

TEST_P(LaneLevelsTest, AreThoseOfOneColourAmongGreysWhereverItStands) {
    const std::vector<uint32_t> whole = WholeColours();
    Random random(4);
    for (int32_t place = 0; place < 48 * kLanes; ++place) {
        Picture picture(48, kLanes, 0, 0);
        const uint32_t colour = whole[random() % whole.size()];
        picture.Fill([&](int32_t x, int32_t k) { return k * 48 + x == place ? colour : Grey(random()); });
        ASSERT_TRUE(IsSpreadRightly(picture)) << place;
    }
}

INSTANTIATE_TEST_SUITE_P(Forms, LaneLevelsTest,
                         testing::ValuesIn(LuminanceForms().begin(), LuminanceForms().end()),
                         [](const auto &form) { return std::string(form.param.name); });

} // namespace nadrel
