#pragma once

#include "printer/Bitmap.h"

namespace printer {

// A rectangle of dots.
struct Area {
    int x = 0, y = 0, width = 0, height = 0;
};

// ESC 'T' n: where the text of an area begins and whither it runs.
enum class Direction : uint8_t {
    LeftToRight = 0, // from the upper left corner
    BottomToTop = 1, // from the lower left corner
    RightToLeft = 2, // from the lower right corner
    TopToBottom = 3, // from the upper right corner
};

// An area of a picture as somebody sees it who reads its text: x runs along the lines, y from line to line.
// What lies outside the area is left out.
class AreaView {
  public:
    AreaView(Bitmap &picture, const Area &area, Direction direction)
        : picture_(picture), area_(area), direction_(direction) {}
    explicit AreaView(Bitmap &picture)
        : AreaView(picture, {0, 0, picture.Width(), picture.Height()}, Direction::LeftToRight) {}

    int Width() const { return IsUpright() ? area_.height : area_.width; }
    int Height() const { return IsUpright() ? area_.width : area_.height; }

    void Fill(int x, int y, int width, int height);
    void Draw(const Bitmap &picture, int x, int y);

  private:
    bool IsUpright() const {
        return direction_ == Direction::BottomToTop || direction_ == Direction::TopToBottom;
    }

    Bitmap &picture_;
    Area area_;
    Direction direction_;
};

} // namespace printer
