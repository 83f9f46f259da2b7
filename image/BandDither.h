#pragma once

#include "image/Luminance.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace nadrel {

// What a printer takes at a time.
inline constexpr int32_t kBandLines = 24;

// Up to 24 stored rows, the one printed first at `top`. Files are stored from the bottom up: each further row
// lies `stride` bytes before the one above it.
struct BandRows {
    const uint8_t *top = nullptr;
    size_t stride = 0;
    int32_t count = 0;

    const uint8_t *Row(int32_t index) const { return top - static_cast<size_t>(index) * stride; }
};

// Turns 24-bit rows into lines of dots, a band at a time from the top of the picture; the dots are those of a
// Dither in grey mode. One object serves one picture: errors are handed on from band to band.
//
// In grey mode the three channels stay equal, so one is computed. A pixel is black below 128, its error e is
// its value less 0 or 255, and of f = e - (e >> 2) it hands f >> 1 to the right and q = f >> 2 both below and
// below left. So the error that enters pixel x from above is q(x) + q(x + 1) of the row above. A row of
// nothing but black and white takes no error in, and then hands none on. (A single such pixel needs no rule:
// without errors it stays what it is.)
class BandDither {
  public:
    virtual ~BandDither() = default;

    // Writes `rows.count` lines, one behind the other: a set bit, from the highest down, is a black dot. What
    // lies behind the last pixel of a line is 0. Only the last band of a picture may have fewer than 24 rows.
    virtual void Convert(const BandRows &rows, uint8_t *lines, size_t lineBytes) = 0;
};

// One pixel after the other, for every machine.
class PortableDither : public BandDither {
  public:
    explicit PortableDither(int32_t width);
    void Convert(const BandRows &rows, uint8_t *lines, size_t lineBytes) override;

  private:
    void ConvertRow(const uint8_t *row, uint8_t *line);

    int32_t width;
    std::vector<int32_t> errors; // that enter the next row, that of pixel x at x + 1
};

// Whether a row of pixels holds nothing but black and white.
bool IsBlackAndWhite(const uint8_t *row, int32_t width);

// Makes a dither for pictures of that width.
using MakeDither = std::unique_ptr<BandDither> (*)(int32_t width);

// The fastest there is on this machine.
std::unique_ptr<BandDither> MakeBandDither(int32_t width);

} // namespace nadrel
