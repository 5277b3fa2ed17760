// Geometry of element records as the program needs it: bounding boxes and elliptic arcs. Millimetres and radians.
#pragma once

#include <limits>
#include <numbers>
#include <optional>
#include <vector>

#include "kapdf/kapdf.h"

namespace kapdf::tool {

struct Point {
  double x = 0, y = 0;
};

struct Box {
  double xmin = std::numeric_limits<double>::infinity(), ymin = std::numeric_limits<double>::infinity();
  double xmax = -std::numeric_limits<double>::infinity(), ymax = -std::numeric_limits<double>::infinity();

  bool empty() const { return !(xmin <= xmax && ymin <= ymax); }
  double width() const { return xmax - xmin; }
  double height() const { return ymax - ymin; }
  void Add(Point p);
  void Merge(const Box &other);
  void Grow(double by);  // does nothing while empty
  bool Touches(const Box &other) const;
};

// An arc of an ellipse by its parameter, which runs from `start` over `sweep`, above 0 up to 2 pi.
struct EllipseArc {
  Point center;
  double major = 0, minor = 0, rotation = 0, start = 0, sweep = 2 * std::numbers::pi;

  Point At(double parameter) const;
  bool whole() const { return sweep >= 2 * std::numbers::pi - 1e-12; }
};

// Of a circle, arc or ellipse arc; nothing for other kinds and for values that are not finite.
std::optional<EllipseArc> ArcOf(const ElementRecord &record);

// The vertices of a polyline (extra numbers dropped), or of one contour of a polygon; empty when the payload is not
// in order.
std::vector<Point> VerticesOf(const ElementRecord &record);
// Number of contours of a polygon whose starts are in order; the first-vertex indices stay inside the vertices.
std::vector<std::vector<Point>> ContoursOf(const ElementRecord &record);

// The width in a stroked element's payload; 0 for other kinds.
double WidthOf(const ElementRecord &record);

// What the element covers, with half of `strokeWidth` around it when it is stroked. Texts are estimated, rasters
// count with their corner only, since their size stands in the header. Empty for definitions.
Box BoundsOf(const ElementRecord &record, double strokeWidth);
// What a raster covers. A header without a resolution has the module's usual one.
Box BoundsOfRaster(const ElementRecord &placement, const ElementRecord &header);

}  // namespace kapdf::tool
