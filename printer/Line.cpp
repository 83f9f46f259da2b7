#include "printer/Line.h"

#include <algorithm>

namespace printer {

void Line::Place(const Bitmap &picture) {
    canvas_.Draw(picture, cursor_, TallestLine - picture.Height());
    height_ = std::max(height_, std::min(picture.Height(), TallestLine));
    cursor_ = std::min(cursor_ + picture.Width(), LastColumn);
    right_ = std::max(right_, std::min(cursor_, Width()));
    empty_ = false;
}

void Line::Clear() {
    canvas_.Erase(0, TallestLine - height_, Width(), height_);
    height_ = right_ = 0;
    empty_ = true;
}

} // namespace printer
