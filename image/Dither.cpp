#include "image/Dither.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <limits>
#include <new>
#include <utility>

namespace nadrel {
namespace {

constexpr int32_t kRed = 0, kGreen = 1, kBlue = 2;

// A palette colour, in the order of the channels above.
using Colour = uint8_t[3];

constexpr Colour kPalette[8] = {
    {255, 255, 255}, // white
    {0, 0, 0},       // black
    {255, 0, 0},     // red
    {0, 255, 0},     // green
    {0, 0, 255},     // blue
    {255, 255, 0},   // yellow
    {255, 0, 255},   // magenta
    {0, 255, 255},   // cyan
};

constexpr size_t kGreyColours = 2;

// Further than any colour of the palette can be.
constexpr int32_t kFarthest = 16581376;

// Weights of the known ways to hand errors on, at (this row: x+1, x+2), (next row: x-2 ... x+2), (the row
// after: x-2 ... x+2), and their divisor. A configuration that is carried along: errors are split in one
// fixed way.
constexpr int32_t kKernels[8][13] = {
    {7, 0, 0, 3, 5, 1, 0, 0, 0, 0, 0, 0, 16}, // Floyd-Steinberg
    {8, 4, 2, 4, 8, 4, 2, 1, 2, 4, 2, 1, 42}, // Stucki
    {7, 5, 3, 5, 7, 5, 3, 1, 3, 5, 3, 1, 48}, // Jarvis-Judice-Ninke
    {8, 4, 2, 4, 8, 4, 2, 0, 0, 0, 0, 0, 32}, // Burkes
    {5, 3, 2, 4, 5, 4, 2, 0, 2, 3, 2, 0, 32}, // Sierra
    {4, 3, 1, 2, 3, 2, 1, 0, 0, 0, 0, 0, 16}, // two-row Sierra
    {2, 0, 0, 1, 1, 0, 0, 0, 0, 0, 0, 0, 4},  // Sierra Lite
    {3, 0, 0, 1, 5, 1, 0, 0, 0, 0, 0, 0, 16},
};

bool IsExtreme(uint8_t level) {
    return level == 0 || level == 255;
}

bool IsPure(const uint8_t *pixel, bool grey) {
    if (grey)
        return IsExtreme(pixel[0]) && pixel[0] == pixel[1] && pixel[1] == pixel[2];
    return IsExtreme(pixel[0]) && IsExtreme(pixel[1]) && IsExtreme(pixel[2]);
}

constexpr int32_t Square(int32_t value) {
    return value * value;
}

// The nearest of the first `count` palette colours; of equally near ones the first.
size_t NearestColour(int32_t red, int32_t green, int32_t blue, size_t count) {
    size_t nearest = 0;
    int32_t least = kFarthest;
    for (size_t k = 0; k < count; ++k) {
        const int32_t distance = Square(red - kPalette[k][kRed]) + Square(green - kPalette[k][kGreen]) +
                                 Square(blue - kPalette[k][kBlue]);
        if (distance < least) {
            least = distance;
            nearest = k;
        }
    }
    return nearest;
}

// What an error row can hold where addresses have 32 bits.
constexpr size_t kMostPixels = std::numeric_limits<size_t>::max() / (3 * sizeof(int32_t));

std::unique_ptr<int32_t[]> NewErrorRow(int32_t width) {
    return std::unique_ptr<int32_t[]>(new (std::nothrow) int32_t[static_cast<size_t>(width) * 3]);
}

} // namespace

Dither::Dither() : kernel(&kKernels[kDefaultKernel]), gammaTable(MakeGammaTable(kDefaultGamma)) {}

int32_t Dither::Begin(int32_t pixels, int32_t index, double newGamma) {
    Release();
    if (pixels < 0 || static_cast<size_t>(pixels) > kMostPixels)
        return 0;
    width = pixels;
    errorRowA = NewErrorRow(width);
    if (errorRowA != nullptr)
        errorRowB = NewErrorRow(width);
    current = errorRowA.get();
    next = errorRowB.get();
    if (current == nullptr || next == nullptr)
        return 0;
    kernelIndex = index;
    if (index >= 0 && index < 8)
        kernel = &kKernels[index];
    cleared = false;
    Reset();
    if (newGamma != gamma) {
        gamma = newGamma;
        gammaTable = MakeGammaTable(gamma);
    }
    return 1;
}

void Dither::Reset() {
    if (cleared || errorRowA == nullptr || errorRowB == nullptr)
        return;
    const size_t count = static_cast<size_t>(width) * 3;
    std::fill_n(errorRowA.get(), count, 0);
    std::fill_n(errorRowB.get(), count, 0);
    current = errorRowA.get();
    next = errorRowB.get();
    cleared = true;
}

void Dither::Release() {
    errorRowA.reset();
    errorRowB.reset();
    current = nullptr;
    next = nullptr;
    width = 0;
}

void Dither::DitherRow(uint8_t *row, bool grey) {
    if (width == 0 || current == nullptr || next == nullptr)
        return;
    if (IsPureRow(row, grey)) {
        Reset();
        return;
    }
    cleared = false;
    std::swap(current, next);
    Values carry{0, 0, 0};
    for (int32_t x = 0; x < width; ++x)
        DitherPixel(row + 3 * ptrdiff_t{x}, x, grey, carry);
}

bool Dither::IsPureRow(const uint8_t *row, bool grey) const {
    for (int32_t x = 0; x < width; ++x)
        if (!IsPure(row + 3 * ptrdiff_t{x}, grey))
            return false;
    return true;
}

bool Dither::NothingReaches(int32_t x, const Values &carry) const {
    const int32_t *errors = current + 3 * ptrdiff_t{x};
    return (errors[kRed] | errors[kGreen] | errors[kBlue] | carry.red | carry.green | carry.blue) == 0;
}

// Before any error: the corrected levels, in grey mode their luminance in all three channels.
Dither::Values Dither::InputOf(const uint8_t *pixel, bool grey) const {
    const int32_t blue = gammaTable[pixel[0]], green = gammaTable[pixel[1]], red = gammaTable[pixel[2]];
    if (!grey)
        return {red, green, blue};
    const auto luminance = static_cast<int32_t>(kRedShare * red + kGreenShare * green + kBlueShare * blue);
    return {luminance, luminance, luminance};
}

void Dither::DitherPixel(uint8_t *pixel, int32_t x, bool grey, Values &carry) {
    int32_t *errors = current + 3 * ptrdiff_t{x};
    if (IsPure(pixel, grey) && NothingReaches(x, carry)) {
        std::fill_n(next + 3 * ptrdiff_t{x}, 3, 0);
        return;
    }
    const Values input = InputOf(pixel, grey);
    const int32_t red = std::clamp(input.red + carry.red + errors[kRed], 0, 255);
    const int32_t green = std::clamp(input.green + carry.green + errors[kGreen], 0, 255);
    const int32_t blue = std::clamp(input.blue + carry.blue + errors[kBlue], 0, 255);
    const Colour &chosen =
        kPalette[NearestColour(red, green, blue, grey ? kGreyColours : std::size(kPalette))];
    pixel[0] = chosen[kBlue];
    pixel[1] = chosen[kGreen];
    pixel[2] = chosen[kRed];
    carry = {HandOn(x, kRed, red - chosen[kRed]), HandOn(x, kGreen, green - chosen[kGreen]),
             HandOn(x, kBlue, blue - chosen[kBlue])};
}

// About 3/8 of an error goes to the right, 3/16 each below and below left; the rest is dropped on purpose.
// Gives what goes to the right. Shifts of negative numbers round down.
int32_t Dither::HandOn(int32_t x, int32_t channel, int32_t error) {
    int32_t *below = next + 3 * ptrdiff_t{x} + channel;
    const int32_t kept = error - (error >> 2);
    if (x > 0)
        below[-3] += kept >> 2;
    *below = kept >> 2;
    return kept >> 1;
}

} // namespace nadrel
