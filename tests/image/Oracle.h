#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

// A second implementation of how pictures become commands: slow, one step after the other, sharing nothing
// with the library. What the library makes is compared with it.
namespace oracle {

using Bytes = std::vector<uint8_t>;

// Error diffusion in three channels over the whole palette.
class Dither {
  public:
    explicit Dither(int32_t width, double gamma = 0.5);
    void DitherRow(uint8_t *row, bool grey);

  private:
    void Reset();
    bool IsPure(const uint8_t *pixel, bool grey) const;

    int32_t width;
    std::vector<int32_t> errorRowA;
    std::vector<int32_t> errorRowB;
    int32_t *current;
    int32_t *next;
    std::array<int32_t, 256> gammaTable;
};

Bytes CompressBand(const Bytes &band, int32_t lineBytes, int32_t lines);

// The commands for a file's bytes; none when it cannot be loaded.
std::optional<Bytes> PositionedRaster(const Bytes &file, int32_t x, int32_t y);
std::optional<Bytes> NormalRaster(const Bytes &file);
std::optional<Bytes> CompressedRaster(const Bytes &file);

} // namespace oracle
