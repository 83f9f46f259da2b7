#pragma once

#include "image/BandDither.h"
#include "image/BmpFile.h"

#include <cstdint>
#include <memory>

namespace nadrel {

// The rows of a bitmap file from the picture's top down, which is from the file's end backwards, a band at a
// time. They are read in pieces of 256 KB, or one band where that is longer. Pixel bytes that the file does
// not hold, or that its header does not count, are 0.
class PixelRows {
  public:
    // `stride` bytes a stored row, `rows` of them. The file must outlive the object.
    PixelRows(const BmpFile &bitmap, const BITMAPINFOHEADER &info, uint32_t stride, int32_t rows);

    // Whether a band of such rows takes no more memory than a piece or what the file holds. A header may
    // claim any size; only what the file backs is believed.
    static bool AreBacked(const BmpFile &bitmap, const BITMAPINFOHEADER &info, uint64_t stride, int32_t rows);

    // The next rows: a band, or the fewer that are left. They stand until the next call. False when the file
    // cannot be read.
    bool Next(BandRows &band);

  private:
    bool FillPiece();

    const BmpFile &file;
    uint64_t bitsPlace;
    uint64_t available; // pixel bytes that the file holds and its header counts
    uint32_t stride;
    int32_t pieceRows;
    int32_t left;     // rows not given yet; the stored rows below this number
    int32_t held = 0; // of those, the last ones, which the piece holds
    std::unique_ptr<uint8_t[]> piece;
};

} // namespace nadrel
