#pragma once

#include <array>
#include <cfloat>
#include <cstdint>

// Every sum and product is a double that is rounded once: the truncation of a luminance shows its last bit.
static_assert(FLT_EVAL_METHOD == 0, "needs arithmetic without excess precision");

namespace nadrel {

// The corrected value of each input level, 0..255.
using GammaTable = std::array<int32_t, 256>;

// 255 x (level / 255) ^ gamma, rounded, at most 255; 0 and 255 stand for themselves.
GammaTable MakeGammaTable(double gamma);

inline constexpr double kRedShare = 0.299;
inline constexpr double kGreenShare = 0.587;
inline constexpr double kBlueShare = 0.114;

// What each channel adds to a colour's luminance. The sums are taken in the order red + green, then + blue;
// no integer, fixed-point or single-precision arithmetic gives the same number for every colour. (For 65 of
// the 256 greys the sum ends just below the whole number that the exact shares would give.)
struct Luminance {
    explicit Luminance(const GammaTable &gamma);

    // 0..255.
    uint8_t Of(uint32_t blueLevel, uint32_t greenLevel, uint32_t redLevel) const {
        return static_cast<uint8_t>(red[redLevel] + green[greenLevel] + blue[blueLevel]);
    }

    alignas(64) double red[256];
    double green[256];
    double blue[256];
};

// The gamma that pictures are printed with.
inline constexpr double kPrintedGamma = 0.5;

// For that gamma. Made once.
const Luminance &PrintedLuminance();

} // namespace nadrel
