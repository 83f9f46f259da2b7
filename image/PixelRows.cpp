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

uint64_t AvailableBytes(const BmpFile &file, const BITMAPINFOHEADER &info) {
    const uint64_t place = BitsPlace(info);
    const uint64_t behind = file.ContentBytes() > place ? file.ContentBytes() - place : 0;
    return std::min<uint64_t>(behind, info.biSizeImage);
}

} // namespace

PixelRows::PixelRows(const BmpFile &bitmap, const BITMAPINFOHEADER &info, uint32_t rowStride, int32_t rows)
    : file(bitmap), bitsPlace(BitsPlace(info)), available(AvailableBytes(bitmap, info)), stride(rowStride),
      pieceRows(RowsOfAPiece(rowStride, rows)), left(rows),
      piece(std::make_unique_for_overwrite<uint8_t[]>(static_cast<size_t>(pieceRows) * rowStride)) {}

bool PixelRows::AreBacked(const BmpFile &bitmap, const BITMAPINFOHEADER &info, uint64_t stride,
                          int32_t rows) {
    const auto bandRows = static_cast<uint64_t>(std::clamp(rows, 0, kBandLines));
    return bandRows * stride <= std::max(kPieceBytes, AvailableBytes(bitmap, info));
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
    held = std::min(pieceRows, left);
    const uint64_t from = static_cast<uint64_t>(left - held) * stride;
    const uint64_t wanted = static_cast<uint64_t>(held) * stride;
    const uint64_t there = from < available ? std::min(wanted, available - from) : 0;
    std::memset(piece.get() + there, 0, static_cast<size_t>(wanted - there));
    return there == 0 || file.ReadContent(static_cast<uint32_t>(bitsPlace + from), piece.get(),
                                          static_cast<uint32_t>(there));
}

} // namespace nadrel
