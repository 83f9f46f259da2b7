#pragma once

#include "image/BandDither.h"
#include "image/BmpFile.h"
#include "image/Compressor.h"
#include "image/PixelRows.h"
#include "image/RasterOutput.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>

namespace nadrel {

// What a host's call asks for. The numbers are those that the calls have always passed on.
enum class RasterForm : int32_t {
    normal = 0,    // at the current print position; 1-bit files print the pixels of index 0
    positioned = 1 // each band at a position; 1-bit files print the set bits, in whole bytes
};

// Turns a bitmap file into raster commands, a band of 24 lines at a time. 24-bit files are dithered, 1-bit
// files print as they are, their palette unseen; files of other depths make no commands, and pictures stored
// from the top down (negative height) make only those around the bands. The file stays open, and is read as
// commands are made.
class PrintBmp {
  public:
    // What making commands gives besides their length, or ERR_SPOOL_LIMIT when they are longer than their
    // destination.
    static constexpr int32_t kNotLoaded = -1;
    static constexpr int32_t kNotRead = -2; // the file could not be read to its end

    explicit PrintBmp(MakeDither make = MakeBandDither) : makeDither(make) {}

    // 1; 0 when the file is no bitmap, or claims a size that no such file can have.
    int32_t Load(const char16_t *path);

    // Where the positioned form prints its first band, in dots.
    void SetPosition(int32_t newX, int32_t newY);

    // The bytes that MakeRaster makes.
    int64_t RasterBytes(RasterForm form) const;

    // Writes the commands to `destination`.
    int32_t MakeRaster(RasterForm form, std::span<uint8_t> destination);
    // The same; kCompressorSlack bytes behind `destination` may be overwritten as well.
    int32_t MakeCompressedRaster(std::span<uint8_t> destination);

    // Closes the file. Then nothing is loaded.
    void FreeBuffers();

  private:
    // What a 1-bit file's bits mean.
    enum class BitSense { asStored, inverted };

    bool MakesBands() const { return info.biBitCount == 1 || info.biBitCount == 24; }
    // The fewest bytes that a picture that makes bands compresses to: one of one colour.
    int64_t FewestCompressedBytes() const;
    int64_t Stride() const;
    size_t LineBytes() const;
    int32_t Height() const;

    template <typename Emit>
    int32_t EmitBands(const RasterOutput &output, Emit emit);
    void PackBand(const BandRows &rows, BitSense sense, uint8_t *lines);
    void EmitBand(RasterForm form, const BandRows &rows, RasterOutput &output);
    void EmitCompressedBand(const uint8_t *lines, int32_t n, Compressor &compressor,
                            RasterOutput &output) const;

    MakeDither makeDither;
    bool loaded = false;
    BmpFile file;
    BITMAPINFOHEADER info;
    int32_t x = 0;
    int32_t y = 0;
    std::unique_ptr<BandDither> dither; // of the commands being made, for 24-bit files
};

} // namespace nadrel
