#include "printer/Bitmap.h"

#include <algorithm>

namespace printer {
namespace {

// The bits [from, to) of a byte, the leftmost first; 0 <= from < to <= 8.
uint8_t BitRange(int from, int to) {
    return static_cast<uint8_t>((0xFF >> from) & ~(0xFF >> to));
}

// Applies change(byte, mask) to the bytes of a row that hold the dots [x0, x1), x0 < x1.
template <typename Change>
void ForEachByte(uint8_t *row, int x0, int x1, Change change) {
    for (int x = x0; x < x1;) {
        const int end = std::min(x1, (x / 8 + 1) * 8);
        change(row[x / 8], BitRange(x % 8, end - x / 8 * 8));
        x = end;
    }
}

struct Rectangle {
    int x0, y0, x1, y1;
};

// Coordinates stay below 2^17, so that sums do not overflow.
Rectangle Clip(int x, int y, int width, int height, const Bitmap &picture) {
    return {std::max(x, 0), std::max(y, 0), std::min(x + width, picture.Width()),
            std::min(y + height, picture.Height())};
}

} // namespace

Bitmap::Bitmap(int width, int height)
    : width_(std::max(width, 0)), height_(std::max(height, 0)),
      stride_((static_cast<size_t>(width_) + 7) / 8), dots_(stride_ * static_cast<size_t>(height_)) {}

bool Bitmap::Get(int x, int y) const {
    if (x < 0 || y < 0 || x >= width_ || y >= height_)
        return false;
    return (Row(y)[static_cast<size_t>(x) / 8] & 0x80 >> x % 8) != 0;
}

void Bitmap::Set(int x, int y) {
    Fill(x, y, 1, 1);
}

void Bitmap::Fill(int x, int y, int width, int height) {
    const Rectangle area = Clip(x, y, width, height, *this);
    for (int row = area.y0; row < area.y1; ++row)
        ForEachByte(RowStart(row), area.x0, area.x1, [](uint8_t &byte, uint8_t mask) { byte |= mask; });
}

void Bitmap::Erase(int x, int y, int width, int height) {
    const Rectangle area = Clip(x, y, width, height, *this);
    for (int row = area.y0; row < area.y1; ++row)
        ForEachByte(RowStart(row), area.x0, area.x1,
                    [](uint8_t &byte, uint8_t mask) { byte = static_cast<uint8_t>(byte & ~mask); });
}

void Bitmap::Invert() {
    for (int row = 0; row < height_; ++row)
        ForEachByte(RowStart(row), 0, width_, [](uint8_t &byte, uint8_t mask) { byte ^= mask; });
}

void Bitmap::Draw(const Bitmap &picture, int x, int y) {
    const int first = std::max(0, -y), last = std::min(picture.Height(), height_ - y);
    for (int row = first; row < last; ++row)
        ForEachRun(picture, row, [&](int begin, int length) { Fill(x + begin, y + row, length, 1); });
}

void Bitmap::Resize(int height) {
    height_ = std::max(height, 0);
    dots_.resize(stride_ * static_cast<size_t>(height_));
}

Bitmap Bitmap::Turned() const {
    Bitmap turned(width_, height_);
    for (int y = 0; y < height_; ++y)
        ForEachRun(*this, y,
                   [&](int x, int length) { turned.Fill(width_ - x - length, height_ - 1 - y, length, 1); });
    return turned;
}

Bitmap Bitmap::Rows(int from, int count) const {
    Bitmap part(width_, count);
    const auto begin = dots_.begin() + static_cast<std::ptrdiff_t>(static_cast<size_t>(from) * stride_);
    std::copy_n(begin, part.dots_.size(), part.dots_.begin());
    return part;
}

int Bitmap::UsedHeight() const {
    const auto last = std::find_if(dots_.rbegin(), dots_.rend(), [](uint8_t byte) { return byte != 0; });
    const auto used = static_cast<size_t>(dots_.rend() - last);
    return used == 0 ? 0 : static_cast<int>((used - 1) / stride_) + 1;
}

ByteView Bitmap::Row(int y) const {
    return ByteView(dots_).subspan(static_cast<size_t>(y) * stride_, stride_);
}

} // namespace printer
