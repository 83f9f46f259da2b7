#include "image/PixelRows.h"

#include <algorithm>
#include <cstring>

namespace nadrel {
namespace {

constexpr uint64_t kPieceBytes = 256 * 1024;

// As many whole bands as a piece takes, one at least, and no more rows than there are.
int32_t RowsOfAPiece(uint32_t stride, int32_t rows) {
    const uint64_t bands = kPieceBytes / (uint64_t{stride} * kBandLines + 1);
    const uint64_t most = std::max<uint64_t>(bands, 1) * kBandLines;
    return static_cast<int32_t>(std::min<uint64_t>(most, static_cast<uint64_t>(rows)));
}

// Of the file, behind the place where the pixel rows begin.
uint64_t HeldBytes(const BmpFile &file, const BITMAPINFOHEADER &info) {
    const uint64_t place = BitsPlace(info);
    return file.ContentBytes() > place ? file.ContentBytes() - place : 0;
}

} // namespace

PixelRows::PixelRows(const BmpFile &bitmap, const BITMAPINFOHEADER &info, uint32_t rowStride, int32_t rows)
    : file(bitmap), bitsPlace(BitsPlace(info)),
      available(std::min<uint64_t>(HeldBytes(bitmap, info), info.biSizeImage)), stride(rowStride),
      pieceRows(RowsOfAPiece(rowStride, rows)), left(rows),
      piece(std::make_unique_for_overwrite<uint8_t[]>(static_cast<size_t>(pieceRows) * rowStride)) {}

bool PixelRows::AreBacked(const BmpFile &bitmap, const BITMAPINFOHEADER &info, uint64_t stride,
                          int32_t rows) {
    const auto bandRows = static_cast<uint64_t>(std::clamp(rows, 0, kBandLines));
    return bandRows * stride <= std::max(kPieceBytes, HeldBytes(bitmap, info));
}

bool PixelRows::Next(BandRows &band) {
    if (held == 0 && !FillPiece())
        return false;
    const int32_t count = std::min(held, kBandLines);
    band = {piece.get() + static_cast<size_t>(held - 1) * stride, stride, count};
    held -= count;
    left -= count;
    return true;
}

bool PixelRows::FillPiece() {
    const int32_t rows = std::min(pieceRows, left);
    const uint64_t from = static_cast<uint64_t>(left - rows) * stride;
    const uint64_t wanted = static_cast<uint64_t>(rows) * stride;
    const uint64_t there = from < available ? std::min(wanted, available - from) : 0;
    std::memset(piece.get() + there, 0, static_cast<size_t>(wanted - there));
    if (there > 0 &&
        !file.ReadContent(static_cast<uint32_t>(bitsPlace + from), piece.get(), static_cast<uint32_t>(there)))
        return false;
    held = rows;
    return true;
}

} // namespace nadrel
