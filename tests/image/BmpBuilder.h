#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

// Bitmap files of tests.
namespace nadrel {

using FileBytes = std::vector<uint8_t>;

struct Pixel {
    uint8_t red = 0;
    uint8_t green = 0;
    uint8_t blue = 0;
};

inline constexpr Pixel kWhite{255, 255, 255};
inline constexpr Pixel kBlack{0, 0, 0};

// A file whose headers say what the fields say; tests make them lie.
struct BmpBuilder {
    int32_t width = 0;
    int32_t height = 0;
    uint16_t bitCount = 24;
    FileBytes pixels; // stored rows, bottom row first
    uint32_t infoBytes = 40;
    FileBytes colourTable;

    // What the headers claim where it is not the truth.
    uint16_t type = 0x4D42;
    int64_t claimedFileBytes = -1;
    int64_t claimedImageBytes = -1;

    static size_t StrideOf(int32_t width, int bitCount) {
        return (static_cast<size_t>(width) * static_cast<size_t>(bitCount) + 31) / 32 * 4;
    }

    // `at(x, y)` is asked for each pixel, y from the picture's top.
    template <typename At>
    static BmpBuilder Colour(int32_t width, int32_t height, At at) {
        BmpBuilder file;
        file.width = width;
        file.height = height;
        const size_t stride = StrideOf(width, 24);
        file.pixels.assign(stride * static_cast<size_t>(height), 0);
        for (int32_t y = 0; y < height; ++y)
            for (int32_t x = 0; x < width; ++x) {
                const Pixel pixel = at(x, y);
                uint8_t *to =
                    &file.pixels[stride * static_cast<size_t>(height - 1 - y) + 3 * static_cast<size_t>(x)];
                *to++ = pixel.blue;
                *to++ = pixel.green;
                *to = pixel.red;
            }
        return file;
    }

    // A 1-bit file; `at(x, y)` is a pixel's palette index.
    template <typename At>
    static BmpBuilder OneBit(int32_t width, int32_t height, At at) {
        BmpBuilder file;
        file.width = width;
        file.height = height;
        file.bitCount = 1;
        file.colourTable = {0, 0, 0, 0, 255, 255, 255, 0};
        const size_t stride = StrideOf(width, 1);
        file.pixels.assign(stride * static_cast<size_t>(height), 0);
        for (int32_t y = 0; y < height; ++y)
            for (int32_t x = 0; x < width; ++x) {
                uint8_t &byte =
                    file.pixels[stride * static_cast<size_t>(height - 1 - y) + static_cast<size_t>(x / 8)];
                byte = static_cast<uint8_t>(byte | (at(x, y) != 0 ? 0x80 >> x % 8 : 0));
            }
        return file;
    }

    FileBytes Bytes() const {
        const size_t contentBytes = infoBytes + colourTable.size() + pixels.size();
        FileBytes bytes;
        Put(bytes, type, 2);
        Put(bytes, claimedFileBytes >= 0 ? claimedFileBytes : static_cast<int64_t>(14 + contentBytes), 4);
        Put(bytes, 0, 4);
        Put(bytes, static_cast<int64_t>(14 + infoBytes + colourTable.size()), 4);
        Put(bytes, infoBytes, 4);
        Put(bytes, width, 4);
        Put(bytes, height, 4);
        Put(bytes, 1, 2);
        Put(bytes, bitCount, 2);
        Put(bytes, 0, 4);
        Put(bytes, claimedImageBytes >= 0 ? claimedImageBytes : static_cast<int64_t>(pixels.size()), 4);
        for (int i = 0; i < 4; ++i)
            Put(bytes, 0, 4);
        bytes.resize(14 + std::max<size_t>(infoBytes, 40));
        bytes.insert(bytes.end(), colourTable.begin(), colourTable.end());
        bytes.insert(bytes.end(), pixels.begin(), pixels.end());
        return bytes;
    }

  private:
    static void Put(FileBytes &bytes, int64_t value, int count) {
        for (int i = 0; i < count; ++i)
            bytes.push_back(static_cast<uint8_t>(value >> 8 * i));
    }
};

} // namespace nadrel
