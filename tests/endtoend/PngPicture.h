#pragma once

#include <cstdint>
#include <filesystem>
#include <vector>

namespace endtoend {

// A picture in grey: 0 is black, 255 is white, row by row from the top.
struct Picture {
    int width = 0;
    int height = 0;
    std::vector<uint8_t> grey;

    uint8_t At(int x, int y) const {
        return grey[static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)];
    }
    bool operator==(const Picture &) const = default;
};

// Throws std::runtime_error when it cannot be read.
Picture ReadPng(const std::filesystem::path &file);

// Writes it in grey. Throws std::runtime_error when it cannot be written.
void WritePng(const std::filesystem::path &file, const Picture &picture);

int64_t BlackDots(const Picture &picture);

} // namespace endtoend
