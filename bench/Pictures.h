#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>
#include <vector>

// Pictures as receipts have them, 24 bits a pixel, in bitmap files.
namespace bench {

inline constexpr int32_t kPictureWidth = 576;
inline constexpr int32_t kPictureHeight = 4000;
inline constexpr double kPicturePixels = double{kPictureWidth} * kPictureHeight;

struct Colour {
    uint8_t blue;
    uint8_t green;
    uint8_t red;
};

// A number that looks random, the same for the same place.
inline uint32_t Noise(int32_t x, int32_t y, uint32_t channel) {
    uint32_t value =
        static_cast<uint32_t>(x) * 0x9E3779B1U + static_cast<uint32_t>(y) * 0x85EBCA77U + channel;
    value = (value ^ value >> 15) * 0x2C1B3C6DU;
    value = (value ^ value >> 12) * 0x297A2D39U;
    return value ^ value >> 15;
}

// Soft shapes in colour with the grain of a camera.
inline Colour Photograph(int32_t x, int32_t y) {
    const auto level = [=](double fx, double fy, double phase, uint32_t channel) {
        const double shape =
            std::sin(x * fx + phase) * std::cos(y * fy) + std::sin((x + y) * 0.011 + phase) * 0.6;
        const double grain = static_cast<double>(Noise(x, y, channel) % 13) - 6;
        return static_cast<uint8_t>(std::clamp(128 + 75 * shape + grain, 0.0, 255.0));
    };
    return {level(0.021, 0.017, 1.0, 1), level(0.019, 0.013, 0.6, 2), level(0.017, 0.015, 0.2, 3)};
}

inline Colour Grey(int32_t level) {
    const auto byte = static_cast<uint8_t>(level);
    return {byte, byte, byte};
}

// The same without its colours.
inline Colour GreyPhotograph(int32_t x, int32_t y) {
    return Grey(Photograph(x, y).green);
}

// A logo at the head of every 800 lines: a ring with soft edges.
inline Colour Logo(int32_t x, int32_t y) {
    const double distance = std::hypot(x - kPictureWidth / 2, y - 90);
    const double ink = std::clamp(30.5 - std::abs(distance - 50), 0.0, 1.0);
    return Grey(static_cast<int32_t>(255 * (1 - ink)));
}

// Receipts: words of strokes two dots wide in cells of 12 x 24 with soft edges, lines of all lengths, here
// and there an empty one.
inline Colour Text(int32_t x, int32_t y) {
    if (y % 800 < 180)
        return Logo(x, y % 800);
    const int32_t column = x / 12, line = y / 30;
    const int32_t inX = x % 12, inY = y % 30;
    const auto length = static_cast<int32_t>(Noise(0, line, 1) % 48);
    const bool letter =
        column < length && Noise(column, line, 2) % 6 != 0 && inX < 10 && inY >= 3 && inY < 24;
    const uint32_t shape = Noise(column, line, 3);
    const bool vertical = (shape & 1U << inX / 4) != 0 && inX % 4 < 2;
    const bool horizontal = (shape & 16U << inY / 7) != 0 && inY % 7 < 2;
    if (!letter || !(vertical || horizontal))
        return Grey(255);
    return Grey(vertical && inX % 4 == 1 && (shape & 1024) != 0 ? 90 : 0);
}

inline Colour White(int32_t, int32_t) {
    return {255, 255, 255};
}

inline void Put32(std::vector<uint8_t> &bytes, size_t value) {
    for (int shift = 0; shift < 32; shift += 8)
        bytes.push_back(static_cast<uint8_t>(value >> shift));
}

inline std::vector<uint8_t> BmpOf(Colour (*at)(int32_t, int32_t)) {
    const size_t imageBytes = size_t{3} * kPictureWidth * kPictureHeight;
    std::vector<uint8_t> bytes = {'B', 'M'};
    for (const size_t field :
         {54 + imageBytes, size_t{0}, size_t{54}, size_t{40}, size_t{kPictureWidth}, size_t{kPictureHeight},
          size_t{1 | 24 << 16}, size_t{0}, imageBytes, size_t{0}, size_t{0}, size_t{0}, size_t{0}})
        Put32(bytes, field);
    for (int32_t y = kPictureHeight - 1; y >= 0; --y)
        for (int32_t x = 0; x < kPictureWidth; ++x) {
            const Colour colour = at(x, y);
            bytes.insert(bytes.end(), {colour.blue, colour.green, colour.red});
        }
    return bytes;
}

// A picture in a file of its own, gone at the end.
class PictureFile {
  public:
    explicit PictureFile(Colour (*at)(int32_t, int32_t))
        : path(std::filesystem::temp_directory_path() /
               ("nadrel-bench-" + std::to_string(getpid()) + ".bmp")) {
        const std::vector<uint8_t> bytes = BmpOf(at);
        std::ofstream(path, std::ios::binary)
            .write(reinterpret_cast<const char *>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    }
    ~PictureFile() {
        std::error_code ignored;
        std::filesystem::remove(path, ignored);
    }
    PictureFile(const PictureFile &) = delete;
    PictureFile &operator=(const PictureFile &) = delete;

    std::u16string Name() const { return path.u16string(); }

  private:
    std::filesystem::path path;
};

} // namespace bench
