#pragma once

#include <cstdint>
#include <functional>
#include <string>

// Picture files of tests.
struct Colour {
    uint8_t red = 0;
    uint8_t green = 0;
    uint8_t blue = 0;
    uint8_t opacity = 255;
};
inline constexpr Colour kBlackDot{};
inline constexpr Colour kWhiteDot{255, 255, 255};
inline constexpr Colour kGreyDot{100, 100, 100};

using ColourAt = std::function<Colour(int x, int y)>;

// Of the type "png", "jpeg" or "bmp"; only a PNG keeps opacity.
void WritePicture(const std::string &file, const std::string &type, int width, int height,
                  const ColourAt &colour);

// A JPEG file with the orientation 1 to 8 that a camera writes.
void WriteTurnedJpeg(const std::string &file, int width, int height, uint8_t orientation,
                     const ColourAt &colour);
