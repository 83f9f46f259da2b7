#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

// The two headers of a Windows bitmap file, stored low byte first.
namespace nadrel {

inline constexpr size_t kFileHeaderBytes = 14;
inline constexpr size_t kInfoHeaderBytes = 40;
inline constexpr uint16_t kBitmapType = 0x4D42; // "BM"

struct BitmapFileHeader {
    uint16_t type = 0;
    uint32_t size = 0; // of the whole file
    uint16_t reserved1 = 0;
    uint16_t reserved2 = 0;
    uint32_t bitsOffset = 0;

    bool operator==(const BitmapFileHeader &) const = default;
};

// Named as the format names them.
struct BITMAPINFOHEADER {
    uint32_t biSize = 0; // of this header
    int32_t biWidth = 0;
    int32_t biHeight = 0; // negative: stored from the top row down
    uint16_t biPlanes = 0;
    uint16_t biBitCount = 0;
    uint32_t biCompression = 0;
    uint32_t biSizeImage = 0; // bytes of the pixel rows
    int32_t biXPelsPerMeter = 0;
    int32_t biYPelsPerMeter = 0;
    uint32_t biClrUsed = 0;
    uint32_t biClrImportant = 0;

    bool operator==(const BITMAPINFOHEADER &) const = default;
};

// A colour-table entry, as it is stored.
struct RGBQUAD {
    uint8_t rgbBlue = 0;
    uint8_t rgbGreen = 0;
    uint8_t rgbRed = 0;
    uint8_t rgbReserved = 0;

    bool operator==(const RGBQUAD &) const = default;
};

BitmapFileHeader DecodeFileHeader(std::span<const uint8_t, kFileHeaderBytes> bytes);
BITMAPINFOHEADER DecodeInfoHeader(std::span<const uint8_t, kInfoHeaderBytes> bytes);
void Encode(const BitmapFileHeader &header, std::span<uint8_t, kFileHeaderBytes> bytes);
void Encode(const BITMAPINFOHEADER &header, std::span<uint8_t, kInfoHeaderBytes> bytes);

} // namespace nadrel
