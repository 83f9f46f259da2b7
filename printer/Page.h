#pragma once

#include "printer/Area.h"

#include <algorithm>

namespace printer {

// A page that is composed in page mode. The print position is where the next thing's upper left corner goes,
// as the area's direction sees it: x is the cursor of the line, y is kept here.
class Page {
  public:
    explicit Page(int paperWidth);

    // An area beyond the paper or the longest page is cut off. False when nothing of it is left: then nothing
    // changes. Area and direction put the position to the beginning of the area.
    bool SetArea(const Area &area);
    void SetDirection(Direction direction);

    void MoveDown(int dots) { y_ = std::min(y_ + dots, LowestRow); }
    void SetRow(int y) { y_ = y; }
    int Row() const { return y_; }

    AreaView View() { return {picture_, area_, direction_}; }

    // Whitens the area.
    void Clear();

    // The page down to the lowest area that was set, or the lowest dot when none was.
    Bitmap Picture() const;

  private:
    static constexpr int LowestRow = 65535; // an ESC 'O' cannot name a lower one

    Bitmap picture_;
    Area area_;
    Direction direction_ = Direction::LeftToRight;
    int y_ = 0;
    int bottom_ = 0; // of the lowest area that was set
};

} // namespace printer
