// A path under construction, in millimetres.
#pragma once

#include <cstdint>

#include "geometry/coord_array.h"

namespace kapdf {

struct Path {
  CoordArray points;

  size_t count() const { return points.size(); }  // values, twice the points
  bool closed() const {
    const double *p = points.data();
    return p[0] == p[count() - 2] && p[1] == p[count() - 1];
  }
  void AppendFirst() {
    const double x = points.data()[0], y = points.data()[1];
    points.PushPoint(x, y);
  }
};

// Twice the signed area, positive or negative by the direction in which the points go round.
double SignedArea(const Path &path);

}  // namespace kapdf
