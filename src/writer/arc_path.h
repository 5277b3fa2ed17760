// Arcs of circles and ellipses as Bezier curves.
#pragma once

#include <array>
#include <cstddef>
#include <numbers>

namespace kapdf {

inline constexpr double kQuarterTurn = std::numbers::pi / 2;
inline constexpr double kFullTurn = 2 * std::numbers::pi;

// Millimetres and radians. Angles are those of the ellipse's parameter, counter-clockwise from the first axis, which
// itself is turned by `rotation`. Any angles: the sweep is brought into the range above 0 up to a full turn,
// so equal angles are the whole ellipse.
struct EllipseArc {
  double cx, cy, radiusX, radiusY, rotation, startAngle, endAngle;
};

struct ArcPath {
  struct Segment {
    double x1, y1, x2, y2, x3, y3;
  };
  double startX, startY;
  size_t count = 0;
  std::array<Segment, 6> segments;
};

// A segment ends at every quarter of the ellipse, so a quarter turn that crosses one has two segments.
ArcPath TraceArc(const EllipseArc &arc);

}  // namespace kapdf
