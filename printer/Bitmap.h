#pragma once

#include "printer/Bytes.h"

#include <cstddef>

namespace printer {

// Black and white dots. What is drawn outside is left out; what is read outside is white.
class Bitmap {
  public:
    Bitmap() = default;
    Bitmap(int width, int height);

    int Width() const { return width_; }
    int Height() const { return height_; }

    bool Get(int x, int y) const;
    void Set(int x, int y);

    void Fill(int x, int y, int width, int height);
    void Erase(int x, int y, int width, int height);
    void Invert();

    // Adds the black dots of another picture.
    void Draw(const Bitmap &picture, int x, int y);

    // Drops rows at the bottom or adds white ones.
    void Resize(int height);

    // Turned by half a turn.
    Bitmap Turned() const;

    // The rows [from, from + count), which lie inside.
    Bitmap Rows(int from, int count) const;

    // The first row from the bottom that has a black dot, plus one; 0 for a white picture.
    int UsedHeight() const;

    // A row's dots, eight a byte, the leftmost in the highest bit; bits beyond the width are 0.
    ByteView Row(int y) const;

    bool operator==(const Bitmap &) const = default;

  private:
    uint8_t *RowStart(int y) { return dots_.data() + static_cast<size_t>(y) * stride_; }

    int width_ = 0, height_ = 0;
    size_t stride_ = 0; // bytes
    Bytes dots_;
};

// Calls run(x, length) for each horizontal stretch of black dots in a row.
template <typename Run>
void ForEachRun(const Bitmap &picture, int y, Run run) {
    const ByteView row = picture.Row(y);
    const auto isBlack = [&row](int x) { return (row[static_cast<size_t>(x) / 8] & 0x80 >> x % 8) != 0; };
    for (int x = 0; x < picture.Width();) {
        if (x % 8 == 0 && row[static_cast<size_t>(x) / 8] == 0) {
            x += 8;
            continue;
        }
        const int begin = x;
        while (x < picture.Width() && isBlack(x))
            ++x;
        if (x > begin)
            run(begin, x - begin);
        else
            ++x;
    }
}

} // namespace printer
