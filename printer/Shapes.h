#pragma once

#include "printer/Area.h"

// Figures in page mode and in standard mode. Coordinates 0..65535 in dots, thickness 0..255; 0 draws one dot.
namespace printer {

struct Point {
    int x = 0, y = 0;
};

// From end to end, both included. The thickness lies below a line that is more level than upright, and to the
// right of the others.
void DrawLine(AreaView view, Point from, Point to, int thickness);

// The thickness lies inside.
void DrawBox(AreaView view, const Area &box, int thickness);

// The ellipse that touches the sides of the rectangle between two opposite corners, both included. The
// thickness lies inside.
void DrawEllipse(AreaView view, Point corner, Point opposite, int thickness);

} // namespace printer
