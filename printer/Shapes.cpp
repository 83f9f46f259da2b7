#include "printer/Shapes.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace printer {
namespace {

// Of a line between two points: the coordinate that belongs to `at` on the other axis, rounded.
int Interpolate(int at, int from, int to, int valueFrom, int valueTo) {
    if (from == to)
        return valueFrom;
    const double share = static_cast<double>(at - from) / (to - from);
    return static_cast<int>(std::lround(valueFrom + share * (valueTo - valueFrom)));
}

// Half the width of an ellipse with these half axes, at a distance from its centre; negative beyond its end.
double HalfWidth(double halfX, double halfY, double distance) {
    if (halfX <= 0 || halfY <= 0 || distance > halfY)
        return -1;
    return halfX * std::sqrt(1 - distance * distance / (halfY * halfY));
}

void FillBetween(AreaView view, int y, double from, double to) {
    const auto x0 = static_cast<int>(std::lround(from)), x1 = static_cast<int>(std::lround(to));
    view.Fill(x0, y, std::max(x1 - x0, 1), 1);
}

} // namespace

void DrawLine(AreaView view, Point from, Point to, int thickness) {
    const int pen = std::max(thickness, 1);
    if (std::abs(to.x - from.x) >= std::abs(to.y - from.y)) {
        const int last = std::min(std::max(from.x, to.x), view.Width() - 1);
        for (int x = std::min(from.x, to.x); x <= last; ++x)
            view.Fill(x, Interpolate(x, from.x, to.x, from.y, to.y), 1, pen);
    } else {
        const int last = std::min(std::max(from.y, to.y), view.Height() - 1);
        for (int y = std::min(from.y, to.y); y <= last; ++y)
            view.Fill(Interpolate(y, from.y, to.y, from.x, to.x), y, pen, 1);
    }
}

void DrawBox(AreaView view, const Area &box, int thickness) {
    const int pen = std::min({std::max(thickness, 1), box.width, box.height});
    view.Fill(box.x, box.y, box.width, pen);
    view.Fill(box.x, box.y + box.height - pen, box.width, pen);
    view.Fill(box.x, box.y, pen, box.height);
    view.Fill(box.x + box.width - pen, box.y, pen, box.height);
}

void DrawEllipse(AreaView view, Point corner, Point opposite, int thickness) {
    const int pen = std::max(thickness, 1);
    const int left = std::min(corner.x, opposite.x), top = std::min(corner.y, opposite.y);
    const double halfX = (std::abs(opposite.x - corner.x) + 1) / 2.0,
                 halfY = (std::abs(opposite.y - corner.y) + 1) / 2.0;
    const double centreX = left + halfX, centreY = top + halfY;
    const int last = std::min(std::max(corner.y, opposite.y), view.Height() - 1);
    for (int y = top; y <= last; ++y) {
        const double distance = std::abs(y + 0.5 - centreY);
        const double outer = HalfWidth(halfX, halfY, distance),
                     inner = HalfWidth(halfX - pen, halfY - pen, distance);
        if (inner < 0) {
            FillBetween(view, y, centreX - outer, centreX + outer);
        } else {
            FillBetween(view, y, centreX - outer, centreX - inner);
            FillBetween(view, y, centreX + inner, centreX + outer);
        }
    }
}

} // namespace printer
