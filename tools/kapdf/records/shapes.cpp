#include "records/shapes.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "base/units.h"
#include "records/kinds.h"

namespace kapdf::tool {
namespace {

constexpr double kTurn = 2 * std::numbers::pi;

EllipseArc MakeArc(Point center, double major, double minor, double rotation, double start, double end) {
  EllipseArc arc{center, major, minor, rotation, start, kTurn};
  double sweep = std::fmod(end - start, kTurn);
  if (sweep <= 0) sweep += kTurn;
  arc.sweep = sweep;
  return arc;
}

Box BoundsOfArc(const EllipseArc &arc) {
  Box box;
  box.Add(arc.At(arc.start));
  box.Add(arc.At(arc.start + arc.sweep));
  // Where the tangent is upright or level.
  const double c = std::cos(arc.rotation), s = std::sin(arc.rotation);
  for (const double first : {std::atan2(-arc.minor * s, arc.major * c), std::atan2(arc.minor * c, arc.major * s)}) {
    for (const double parameter : {first, first + kTurn / 2}) {
      double ahead = std::fmod(parameter - arc.start, kTurn);
      if (ahead < 0) ahead += kTurn;
      if (ahead <= arc.sweep) box.Add(arc.At(parameter));
    }
  }
  return box;
}

Box BoundsOfText(const ElementRecord &record) {
  TextPayload text;
  Box box;
  if (!CopyPayload(record, text)) return box;
  const size_t letters = text.text != nullptr ? std::char_traits<char16_t>::length(text.text) : 0;
  constexpr double kUsualWidthOfLetter = 0.6;  // of the height
  const double length = static_cast<double>(letters) * kUsualWidthOfLetter * text.height * text.widthFactor;
  const double c = std::cos(text.angle), s = std::sin(text.angle);
  for (const double along : {0.0, length}) {
    for (const double up : {0.0, text.height * 1.0}) {
      box.Add({text.x + along * c - up * s, text.y + along * s + up * c});
    }
  }
  return box;
}

Box BoundsWithoutWidth(const ElementRecord &record) {
  Box box;
  switch (record.kind) {
    case ElemCircle:
    case ElemArc:
    case ElemEllipseArc:
      if (const auto arc = ArcOf(record)) box = BoundsOfArc(*arc);
      break;
    case ElemLine:
      if (LinePayload line; CopyPayload(record, line)) {
        box.Add({line.x1, line.y1});
        box.Add({line.x2, line.y2});
      }
      break;
    case ElemPolyline:
      for (const Point p : VerticesOf(record)) box.Add(p);
      break;
    case ElemFilledPolygon:
      for (const auto &contour : ContoursOf(record)) {
        for (const Point p : contour) box.Add(p);
      }
      break;
    case ElemSolid:
      if (SolidPayload solid; CopyPayload(record, solid)) {
        box.Add({solid.x0, solid.y0});
        box.Add({solid.x1, solid.y1});
        box.Add({solid.x2, solid.y2});
        box.Add({solid.x3, solid.y3});
      }
      break;
    case ElemPoint:
      if (PointPayload point; CopyPayload(record, point)) {
        box.Add({point.x, point.y});
        box.Grow(std::abs(point.size) / 2);
      }
      break;
    case ElemText:
      return BoundsOfText(record);
    case ElemRasterPlacement:
      if (RasterPlacementPayload raster; CopyPayload(record, raster)) box.Add({raster.x, raster.y});
      break;
    default:
      break;
  }
  return box;
}

}  // namespace

void Box::Add(Point p) {
  if (!std::isfinite(p.x) || !std::isfinite(p.y)) return;
  xmin = std::min(xmin, p.x);
  ymin = std::min(ymin, p.y);
  xmax = std::max(xmax, p.x);
  ymax = std::max(ymax, p.y);
}

void Box::Merge(const Box &other) {
  if (other.empty()) return;
  Add({other.xmin, other.ymin});
  Add({other.xmax, other.ymax});
}

void Box::Grow(double by) {
  if (empty() || !std::isfinite(by)) return;
  xmin -= by;
  ymin -= by;
  xmax += by;
  ymax += by;
}

bool Box::Touches(const Box &other) const {
  return !empty() && !other.empty() && xmin <= other.xmax && other.xmin <= xmax && ymin <= other.ymax &&
         other.ymin <= ymax;
}

Point EllipseArc::At(double parameter) const {
  const double along = major * std::cos(parameter), across = minor * std::sin(parameter);
  const double c = std::cos(rotation), s = std::sin(rotation);
  return {center.x + along * c - across * s, center.y + along * s + across * c};
}

std::optional<EllipseArc> ArcOf(const ElementRecord &record) {
  std::optional<EllipseArc> arc;
  if (CirclePayload circle; record.kind == ElemCircle && CopyPayload(record, circle)) {
    arc = MakeArc({circle.cx, circle.cy}, circle.radius, circle.radius, 0, 0, 0);
  } else if (ArcPayload a; record.kind == ElemArc && CopyPayload(record, a)) {
    arc = MakeArc({a.cx, a.cy}, a.radius, a.radius, 0, a.startAngle, a.endAngle);
  } else if (EllipseArcPayload e; record.kind == ElemEllipseArc && CopyPayload(record, e)) {
    arc = MakeArc({e.cx, e.cy}, e.majorRadius, e.minorRadius, e.rotation, e.startAngle, e.endAngle);
  }
  if (arc && !std::isfinite(arc->center.x + arc->center.y + arc->major + arc->minor + arc->rotation + arc->start +
                            arc->sweep)) {
    arc.reset();
  }
  return arc;
}

std::vector<Point> VerticesOf(const ElementRecord &record) {
  std::vector<Point> points;
  PolylinePayload polyline;
  if (record.kind != ElemPolyline || !CopyPayload(record, polyline)) return points;
  if (polyline.vertexCount <= 0 || polyline.vertices == nullptr) return points;
  points.resize(static_cast<size_t>(polyline.vertexCount));
  const size_t stride = size_t{polyline.extraPerVertex} + 2;
  for (size_t i = 0; i < points.size(); ++i) {
    points[i] = {polyline.vertices[i * stride], polyline.vertices[i * stride + 1]};
  }
  return points;
}

std::vector<std::vector<Point>> ContoursOf(const ElementRecord &record) {
  std::vector<std::vector<Point>> contours;
  FilledPolygonPayload polygon;
  if (record.kind != ElemFilledPolygon || !CopyPayload(record, polygon)) return contours;
  if (polygon.contourCount <= 0 || polygon.vertexCount <= 0 || polygon.vertices == nullptr) return contours;
  if (polygon.contourStarts == nullptr) return contours;
  const auto vertexCount = static_cast<uint32_t>(polygon.vertexCount);
  for (int32_t i = 0; i < polygon.contourCount; ++i) {
    const uint32_t first = polygon.contourStarts[i], behind = polygon.contourStarts[i + 1];
    if (behind < first || behind > vertexCount) break;
    auto &contour = contours.emplace_back(behind - first);
    for (uint32_t v = first; v < behind; ++v) {
      contour[v - first] = {polygon.vertices[2 * size_t{v}], polygon.vertices[2 * size_t{v} + 1]};
    }
  }
  return contours;
}

double WidthOf(const ElementRecord &record) {
  switch (record.kind) {
    case ElemLine:
    case ElemPolyline:
    case ElemCircle:
    case ElemArc:
    case ElemEllipseArc:
    case ElemFilledPolygon:
      // The width leads each of these payloads.
      return record.payload != nullptr && record.payloadBytes >= sizeof(double) ? ReadAt<double>(record.payload, 0) : 0;
    default:
      return 0;
  }
}

Box BoundsOf(const ElementRecord &record, double strokeWidth) {
  Box box = BoundsWithoutWidth(record);
  bool stroked = record.kind != ElemSolid && record.kind != ElemText && record.kind != ElemRasterPlacement;
  if (FilledPolygonPayload polygon; record.kind == ElemFilledPolygon && CopyPayload(record, polygon)) {
    stroked = polygon.strokeToo != 0;
  }
  if (stroked && strokeWidth > 0) box.Grow(strokeWidth / 2);
  return box;
}

Box BoundsOfRaster(const ElementRecord &placement, const ElementRecord &header) {
  RasterPlacementPayload place;
  RasterHeaderPayload shape;
  Box box;
  if (!CopyPayload(placement, place) || !CopyPayload(header, shape)) return box;
  constexpr uint32_t kUsualDpi = 300;
  const double pixel = kMillimetresPerInch / (shape.dpi != 0 ? shape.dpi : kUsualDpi);
  const double width = place.scaleX * shape.width * pixel, height = place.scaleY * shape.height * pixel;
  const double c = std::cos(place.angle), s = std::sin(place.angle);
  for (const double along : {0.0, width}) {
    for (const double up : {0.0, height}) box.Add({place.x + along * c - up * s, place.y + along * s + up * c});
  }
  return box;
}

}  // namespace kapdf::tool
