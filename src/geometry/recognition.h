// Circles, arcs and ellipses that were drawn as many short segments.
#pragma once

#include <span>

namespace kapdf {

struct RecognizedCurve {
  enum class Kind { kNone, kCircle, kArc, kEllipse };

  Kind kind = Kind::kNone;
  double centreX = 0, centreY = 0;
  double a = 0, b = 0;        // the radius, twice; of an ellipse the longer and the shorter half axis
  double rotation = 0;        // of the axis a, radians
  double start = 0, end = 0;  // counter-clockwise, angles or an ellipse's parameters; equal ones are a whole ellipse
};

// What a polyline really is; nothing when it is no smooth curve, has 10 points or fewer (an ellipse: 20), or is not
// clearly one of these. `points`: x and y in turn. `tolerance`: how far points may be off, as a part of the radius; of
// an ellipse twice that of the longer half axis. A circle and a whole ellipse end bit by bit where they begin.
RecognizedCurve RecognizeCurve(std::span<const double> points, double tolerance);

}  // namespace kapdf
