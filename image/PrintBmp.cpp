#include "image/PrintBmp.h"

#include "spool/Spool.h"

#include <algorithm>
#include <cstring>

namespace nadrel {
namespace {

// Bytes of the commands around the lines of dots.
constexpr int64_t kPrologue = 7, kEpilogue = 2, kPosition = 6, kBandHeader = 5, kShortBand = 3, kLineFeed = 1;
constexpr int64_t kCompressedPrologue = 4, kBandTrailer = 4, kRunToken = 2;

int32_t LengthOf(const RasterOutput &output) {
    return output.Fits() ? output.Length() : static_cast<int32_t>(ERR_SPOOL_LIMIT);
}

// The bytes that a row's whole eighths of the width fill.
size_t WholeBytes(int32_t width) {
    return static_cast<size_t>(width / 8);
}

void PackInverted(const uint8_t *row, int32_t width, uint8_t *line) {
    const size_t whole = WholeBytes(width);
    std::transform(row, row + whole, line, [](uint8_t byte) { return static_cast<uint8_t>(~byte); });
    if (const int32_t rest = width % 8; rest > 0)
        line[whole] = static_cast<uint8_t>(~row[whole] & 0xFF00 >> rest);
}

} // namespace

int32_t PrintBmp::Load(const char16_t *path) {
    x = 0;
    y = 0;
    uint8_t header[kInfoHeaderBytes];
    loaded = file.Open(path) && file.ReadContent(0, header, sizeof header);
    if (loaded) {
        info = DecodeInfoHeader(header);
        loaded =
            info.biWidth >= 0 && PixelRows::AreBacked(file, info, static_cast<uint64_t>(Stride()), Height());
    }
    if (!loaded)
        file.Close();
    return loaded ? 1 : 0;
}

void PrintBmp::SetPosition(int32_t newX, int32_t newY) {
    x = newX;
    y = newY;
}

void PrintBmp::FreeBuffers() {
    file.Close();
    dither.reset();
    loaded = false;
}

// Bytes of a stored row.
int64_t PrintBmp::Stride() const {
    const int64_t width = info.biWidth;
    return info.biBitCount == 24 ? 3 * width + width % 4 : static_cast<int64_t>(LineBytes());
}

// Bytes of a printed line: whole groups of 32 dots.
size_t PrintBmp::LineBytes() const {
    return (static_cast<size_t>(info.biWidth) + 31) / 32 * 4;
}

int32_t PrintBmp::Height() const {
    return std::max(info.biHeight, 0);
}

int64_t PrintBmp::RasterBytes(RasterForm form) const {
    if (!MakesBands())
        return 0;
    const int64_t lines = kBandLines * static_cast<int64_t>(LineBytes());
    const int64_t band = (form == RasterForm::positioned ? kPosition : 0) + kBandHeader + lines + kLineFeed;
    const int64_t whole = Height() / kBandLines;
    const int64_t rest = Height() % kBandLines != 0 ? band + kShortBand : 0;
    return kPrologue + whole * band + rest + kEpilogue;
}

int64_t PrintBmp::FewestCompressedBytes() const {
    const int64_t bands = int64_t{Height()} / kBandLines + 1;
    const int64_t bytes = int64_t{Height()} * static_cast<int64_t>(LineBytes());
    return kCompressedPrologue + bands * (kBandHeader + kBandTrailer) +
           bytes / int64_t{kLongestToken} * kRunToken;
}

int32_t PrintBmp::MakeRaster(RasterForm form, std::span<uint8_t> destination) {
    if (!loaded)
        return kNotLoaded;
    if (!MakesBands())
        return 0;
    if (RasterBytes(form) > static_cast<int64_t>(destination.size()))
        return ERR_SPOOL_LIMIT;
    RasterOutput output(destination);
    output.Append(Command(kGs, 'P', 180, 180, kEsc, '3', kBandLines));
    const int32_t result = EmitBands(output, [&](const BandRows &rows) { EmitBand(form, rows, output); });
    output.Append(Command(kEsc, '2'));
    return result < 0 ? result : LengthOf(output);
}

// ESC 'O' xL xH yL yH; ESC 'X' '4' line bytes, lines, the dots of 24 lines; ESC '3' lines where they are
// fewer; LF.
void PrintBmp::EmitBand(RasterForm form, const BandRows &rows, RasterOutput &output) {
    const size_t lineBytes = LineBytes();
    if (form == RasterForm::positioned)
        output.Append(PositionCommand(x, y));
    output.Append(Command(kEsc, 'X', '4', lineBytes, rows.count));
    uint8_t *const lines = output.Claim(kBandLines * lineBytes);
    if (lines == nullptr)
        return;
    PackBand(rows, form == RasterForm::positioned ? BitSense::asStored : BitSense::inverted, lines);
    const size_t filled = lineBytes * static_cast<size_t>(rows.count);
    std::memset(lines + filled, 0, kBandLines * lineBytes - filled);
    if (rows.count != kBandLines)
        output.Append(Command(kEsc, '3', rows.count));
    output.Append(Command('\n'));
    y = static_cast<int32_t>(static_cast<uint32_t>(y) + static_cast<uint32_t>(rows.count));
}

int32_t PrintBmp::MakeCompressedRaster(std::span<uint8_t> destination) {
    if (!loaded)
        return kNotLoaded;
    if (!MakesBands())
        return 0;
    if (FewestCompressedBytes() > static_cast<int64_t>(destination.size()))
        return ERR_SPOOL_LIMIT;
    const auto bandLines = static_cast<size_t>(std::min(Height(), kBandLines));
    const auto lines = std::make_unique<uint8_t[]>(bandLines * LineBytes() + kCompressorSlack);
    RasterOutput output(destination);
    Compressor compressor(output);
    output.Append(Command(kGs, 'P', 180, 180));
    const int32_t result = EmitBands(output, [&](const BandRows &rows) {
        PackBand(rows, BitSense::inverted, lines.get());
        EmitCompressedBand(lines.get(), rows.count, compressor, output);
    });
    // A picture of whole bands, and one of none, ends with an empty band.
    if (Height() % kBandLines == 0)
        EmitCompressedBand(lines.get(), 0, compressor, output);
    return result < 0 ? result : LengthOf(output);
}

// ESC 'X' '3' line bytes, 24 whatever the number of lines is; the lines, compressed; ESC 'X' '2' 24.
void PrintBmp::EmitCompressedBand(const uint8_t *lines, int32_t n, Compressor &compressor,
                                  RasterOutput &output) const {
    output.Append(Command(kEsc, 'X', '3', LineBytes(), kBandLines));
    compressor.CompressBand(lines, LineBytes(), n);
    output.Append(Command(kEsc, 'X', '2', kBandLines));
}

// Calls `emit` for each band from the top, as long as the output has room.
template <typename Emit>
int32_t PrintBmp::EmitBands(const RasterOutput &output, Emit emit) {
    dither = info.biBitCount == 24 && Height() > 0 ? makeDither(info.biWidth) : nullptr;
    PixelRows rows(file, info, static_cast<uint32_t>(Stride()), Height());
    BandRows band;
    for (int32_t left = Height(); left > 0 && output.Fits(); left -= band.count) {
        if (!rows.Next(band))
            return kNotRead;
        emit(band);
    }
    return NADREL_SUCCESS;
}

void PrintBmp::PackBand(const BandRows &rows, BitSense sense, uint8_t *lines) {
    const size_t lineBytes = LineBytes();
    if (dither != nullptr) {
        dither->Convert(rows, lines, lineBytes);
        return;
    }
    std::memset(lines, 0, lineBytes * static_cast<size_t>(rows.count));
    for (int32_t i = 0; i < rows.count; ++i, lines += lineBytes) {
        if (sense == BitSense::inverted)
            PackInverted(rows.Row(i), info.biWidth, lines);
        else
            std::copy_n(rows.Row(i), WholeBytes(info.biWidth), lines);
    }
}

} // namespace nadrel
