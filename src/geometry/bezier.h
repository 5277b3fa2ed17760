// Flattening of cubic Bezier curves.
#pragma once

#include <cstddef>

#include "geometry/coord_array.h"

namespace kapdf {

// Appends a cubic curve from the array's last point over two control points to an end point, in the coordinates' own
// unit: one step for each 0.2 of the control polygon's length, at least 10, by the Bernstein form; the end point goes
// in exactly. Nothing happens on an empty array. A curve that would need more steps than the bound has longer ones. One
// that would bring the array above `maxPoints` gives its end point only, and nothing when there is no place for that
// either. Finite points give finite ones.
void FlattenCubic(CoordArray &points, double x1, double y1, double x2, double y2, double x3, double y3,
                  size_t maxPoints);

}  // namespace kapdf
