#include "image/BandDither.h"

#include <algorithm>

namespace nadrel {
namespace {

bool IsBlackAndWhitePixel(const uint8_t *pixel) {
    return (pixel[0] == 0 || pixel[0] == 255) && pixel[0] == pixel[1] && pixel[1] == pixel[2];
}

} // namespace

bool IsBlackAndWhite(const uint8_t *row, int32_t width) {
    const uint8_t *const end = row + 3 * static_cast<size_t>(width);
    for (; row < end; row += 3)
        if (!IsBlackAndWhitePixel(row))
            return false;
    return true;
}

PortableDither::PortableDither(int32_t pixels) : width(pixels), errors(static_cast<size_t>(pixels) + 1) {}

void PortableDither::Convert(const BandRows &rows, uint8_t *lines, size_t lineBytes) {
    std::fill_n(lines, lineBytes * static_cast<size_t>(rows.count), uint8_t{0});
    for (int32_t i = 0; i < rows.count; ++i, lines += lineBytes) {
        if (IsBlackAndWhite(rows.Row(i), width))
            std::fill(errors.begin(), errors.end(), 0);
        ConvertRow(rows.Row(i), lines);
    }
}

// Without branches on what a pixel becomes, which no machine can foresee.
void PortableDither::ConvertRow(const uint8_t *row, uint8_t *line) {
    const Luminance &luminance = PrintedLuminance();
    int32_t carry = 0;
    int32_t left = 0; // what the pixel to the left hands down
    for (size_t x = 0; x + 1 < errors.size(); ++x, row += 3) {
        const int32_t value =
            std::clamp(luminance.Of(row[0], row[1], row[2]) + carry + errors[x + 1], 0, 255);
        const int32_t white = value >> 7;
        const int32_t error = value - 255 * white;
        const int32_t kept = error - (error >> 2);
        carry = kept >> 1;
        errors[x] = left + (kept >> 2);
        left = kept >> 2;
        line[x / 8] = static_cast<uint8_t>(line[x / 8] | (1 - white) << (7 - x % 8));
    }
    errors.back() = left;
}

} // namespace nadrel
