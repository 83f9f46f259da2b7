#include "printer/Area.h"

#include <algorithm>

namespace printer {
namespace {

// A rectangle of the view, which lies inside it, as a rectangle of the picture.
Area Map(const Area &area, Direction direction, const Area &part) {
    switch (direction) {
    case Direction::BottomToTop:
        return {area.x + part.y, area.y + area.height - part.x - part.width, part.height, part.width};
    case Direction::RightToLeft:
        return {area.x + area.width - part.x - part.width, area.y + area.height - part.y - part.height,
                part.width, part.height};
    case Direction::TopToBottom:
        return {area.x + area.width - part.y - part.height, area.y + part.x, part.height, part.width};
    default:
        return {area.x + part.x, area.y + part.y, part.width, part.height};
    }
}

} // namespace

void AreaView::Fill(int x, int y, int width, int height) {
    const int x0 = std::max(x, 0), y0 = std::max(y, 0);
    const int x1 = std::min(x + width, Width()), y1 = std::min(y + height, Height());
    if (x0 >= x1 || y0 >= y1)
        return;
    const Area mapped = Map(area_, direction_, {x0, y0, x1 - x0, y1 - y0});
    picture_.Fill(mapped.x, mapped.y, mapped.width, mapped.height);
}

void AreaView::Draw(const Bitmap &picture, int x, int y) {
    for (int row = std::max(0, -y); row < std::min(picture.Height(), Height() - y); ++row)
        ForEachRun(picture, row, [&](int begin, int length) { Fill(x + begin, y + row, length, 1); });
}

} // namespace printer
