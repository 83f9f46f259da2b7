#pragma once

#include "printer/Bitmap.h"

namespace printer {

// The line that is being composed: pictures side by side, standing on a common base.
class Line {
  public:
    static constexpr int TallestLine = 256; // dots

    explicit Line(int width) : canvas_(width, TallestLine) {}

    bool IsEmpty() const { return empty_; }
    int Width() const { return canvas_.Width(); }
    int Height() const { return height_; }
    int UsedWidth() const { return right_; } // to the right end of what has been placed

    int Cursor() const { return cursor_; }
    void MoveTo(int x) { cursor_ = x; }

    // Places a picture at the cursor and moves the cursor behind it. What lies beyond the line's end is cut
    // off.
    void Place(const Bitmap &picture);

    // What has been placed, as wide as the line.
    Bitmap Picture() const { return canvas_.Rows(TallestLine - height_, height_); }

    // Empties the line; the cursor stays.
    void Clear();

  private:
    static constexpr int LastColumn = 65535; // no command names a further one

    Bitmap canvas_;
    bool empty_ = true;
    int cursor_ = 0;
    int height_ = 0;
    int right_ = 0;
};

} // namespace printer
