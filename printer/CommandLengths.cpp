#include "printer/CommandLengths.h"

#include "printer/Raster.h"

#include <algorithm>

namespace printer {
namespace {

constexpr size_t LongestName = 1024;            // bytes up to a 00
constexpr size_t LongestText = size_t{1} << 19; // bytes up to 00 00

Extent Known(size_t total, size_t available) {
    return total <= available ? Extent{total, total} : Extent{0, total};
}

// Data bytes announced by the fixed parameters, which are all there.
size_t CountedData(const CommandForm &form, ByteView bytes) {
    const ByteView parameters = bytes.subspan(form.prefix.size(), form.fixed);
    const uint8_t last = form.fixed > 0 ? parameters[form.fixed - 1U] : uint8_t{0};
    const uint8_t before = form.fixed > 1 ? parameters[form.fixed - 2U] : uint8_t{0};
    switch (form.length) {
    case Length::Count8:
        return last;
    case Length::Count16:
        return before + size_t{256} * last;
    case Length::SecuredText:
        return size_t{255} * before + last;
    case Length::RasterBand:
        return size_t{before} * BandLines;
    default:
        return 0;
    }
}

// Looks for `unit` zero bytes at a distance from `from` that `unit` divides.
Extent UntilZeros(ByteView bytes, size_t from, size_t unit, size_t longest, size_t &scanned) {
    size_t at = std::max(scanned, from);
    for (; at + unit <= bytes.size() && at < from + longest; at += unit)
        if (std::all_of(&bytes[at], &bytes[at] + unit, [](uint8_t byte) { return byte == 0; }))
            return {at + unit, at + unit};
    scanned = at;
    if (at >= from + longest)
        return {at, at, "cut: its end is missing"};
    return {0, at + unit};
}

Extent UntilBandEnds(ByteView bytes, size_t from, uint8_t lineBytes) {
    const BandTokens tokens = ScanBand(bytes.subspan(from), lineBytes);
    if (tokens.ended)
        return {from + tokens.length, from + tokens.length, tokens.note};
    return {0, std::max(from + tokens.length, bytes.size()) + 1};
}

} // namespace

Extent ExtentOf(const CommandForm &form, ByteView bytes, size_t &scanned) {
    const size_t fixed = form.prefix.size() + form.fixed;
    if (bytes.size() < fixed)
        return {0, fixed};
    switch (form.length) {
    case Length::UntilZero:
        return UntilZeros(bytes, fixed, 1, LongestName, scanned);
    case Length::UntilZeroPair:
        return UntilZeros(bytes, fixed, 2, LongestText, scanned);
    case Length::CompressedBand:
        return UntilBandEnds(bytes, fixed, bytes[form.prefix.size()]);
    default:
        return Known(fixed + CountedData(form, bytes), bytes.size());
    }
}

} // namespace printer
