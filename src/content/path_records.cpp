// Handing out painted paths, one record a call.
#include <cmath>

#include "base/units.h"
#include "content/path_painter.h"
#include "geometry/recognition.h"

namespace kapdf {
namespace {

// Copies a path's points and, when asked to, its first one behind them; gives how many values that makes.
size_t CopyPoints(uint8_t *to, std::span<const double> path, bool close) {
  std::memcpy(to, path.data(), path.size_bytes());
  if (!close || IsClosed(path)) return path.size();
  std::memcpy(to + path.size_bytes(), path.data(), 2 * sizeof(double));
  return path.size() + 2;
}

}  // namespace

double SignedArea(std::span<const double> path) {
  double area = 0, beforeX = 0, beforeY = 0;
  for (size_t i = 2; i + 1 < path.size(); i += 2) {
    const double dx = path[i] - path[0], dy = path[i + 1] - path[1];
    area += dx * beforeY - beforeX * dy;
    beforeX = dx;
    beforeY = dy;
  }
  return area;
}

double PathPainter::RecordWidth() const {
  const double width = drawing_.state.lineWidth * AxisScale(drawing_.state.ctm) * kMillimetresPerPoint;
  return std::isfinite(width) ? width : 0.0;
}

// True with the record filled. Without paths to hand out, or with none left of those that were, the loop may go on.
bool PathPainter::HandOut() {
  if (pendingPaths_ == 0) {
    ReleasePaths();
    pendingPaths_ = kIdle;
  }
  if (pendingPaths_ < 0) return false;
  if (pass_ == Pass::kStroke) {
    HandOutStroke();
    return true;
  }
  if (!compound_ && !contoursChecked_) {
    contoursChecked_ = true;  // what holds for the list holds for every rest of it
    compound_ = ContoursTurnBothWays();
  }
  if (!compound_) return HandOutPolygon();
  HandOutCompoundPolygon();
  return true;
}

// Paths leave last first and stay in the list.
void PathPainter::HandOutStroke() {
  const std::span<const double> path = paths_.path(static_cast<size_t>(--pendingPaths_));
  const double width = RecordWidth();
  const bool complete = !closeContours_ || IsClosed(path);  // as it stands
  if (path.size() == 4 && complete) {
    sink_.blocks().line = {width, path[0], path[1], path[2], path[3]};
    sink_.Start(ElemLine, drawing_.state.strokeColor, &sink_.blocks().line, sizeof sink_.blocks().line);
    return;
  }
  // The first path has room for the structure in front of its points; others are copied behind one.
  static_assert(sizeof(PolylinePayload) == CoordArray::kHeadBytes);
  const bool inPlace = pendingPaths_ == 0 && complete;
  uint8_t *block =
      inPlace ? paths_.FirstBlock()
              : sink_.blocks().polyline.Prepare(sizeof(PolylinePayload) + path.size_bytes() + 2 * sizeof(double));
  uint8_t *points = block + sizeof(PolylinePayload);
  const size_t values = inPlace ? path.size() : CopyPoints(points, path, closeContours_);
  if (drawing_.settings.convertPoly && HandOutCurve({reinterpret_cast<const double *>(points), values}, width)) return;
  PolylinePayload polyline = {};
  polyline.width = width;
  polyline.vertexCount = static_cast<int32_t>(values / 2);
  polyline.vertices = reinterpret_cast<double *>(points);
  StoreAs(block, polyline);
  sink_.Start(ElemPolyline, drawing_.state.strokeColor, block, sizeof(PolylinePayload) + values * sizeof(double));
}

// True with the record filled when the points are those of a circle, an arc or an ellipse.
bool PathPainter::HandOutCurve(std::span<const double> points, double width) {
  const RecognizedCurve curve = RecognizeCurve(points, drawing_.settings.fitTolerance);
  switch (curve.kind) {
    case RecognizedCurve::Kind::kNone:
      return false;
    case RecognizedCurve::Kind::kCircle:
      sink_.blocks().circle = {width, curve.centreX, curve.centreY, curve.a};
      sink_.Start(ElemCircle, drawing_.state.strokeColor, &sink_.blocks().circle, sizeof sink_.blocks().circle);
      return true;
    case RecognizedCurve::Kind::kArc:
      sink_.blocks().arc = {width, curve.centreX, curve.centreY, curve.a, curve.end, curve.start};
      sink_.Start(ElemArc, drawing_.state.strokeColor, &sink_.blocks().arc, sizeof sink_.blocks().arc);
      return true;
    case RecognizedCurve::Kind::kEllipse:
      sink_.blocks().ellipse = {width,   curve.centreX,  curve.centreY, curve.a,
                                curve.b, curve.rotation, curve.start,   curve.end};
      sink_.Start(ElemEllipseArc, drawing_.state.strokeColor, &sink_.blocks().ellipse, sizeof sink_.blocks().ellipse);
      return true;
  }
  return false;
}

// True when two contours that follow each other go round in opposite directions. The area that is remembered is cut to
// a whole number of square millimetres, so a contour below one turns the test off for the next.
bool PathPainter::ContoursTurnBothWays() const {
  double before = 0;
  for (size_t i = 0; paths_.count() > 1 && i < paths_.count(); ++i) {
    const double area = SignedArea(paths_.path(i));
    if (before != 0 && area * before < 0) return true;
    before = std::trunc(area);
  }
  return false;
}

// Contours from `first` to `end`, each with its points, as one polygon.
void PathPainter::FillPolygonRecord(size_t first, size_t end) {
  size_t values = 0;
  for (size_t i = first; i < end; ++i) {
    values += paths_.path(i).size() + (closeContours_ && !IsClosed(paths_.path(i)) ? 2 : 0);
  }
  const size_t contours = end - first;
  const size_t bytes = sizeof(FilledPolygonPayload) + values * sizeof(double) + (contours + 1) * sizeof(uint32_t);
  uint8_t *block = sink_.blocks().polygon.Prepare(bytes);
  uint8_t *points = block + sizeof(FilledPolygonPayload);
  uint8_t *starts = points + values * sizeof(double);
  FilledPolygonPayload polygon = {};
  polygon.width = RecordWidth();
  polygon.contourCount = static_cast<int32_t>(contours);
  polygon.contourStarts = reinterpret_cast<uint32_t *>(starts);
  polygon.vertexCount = static_cast<int32_t>(values / 2);
  polygon.vertices = reinterpret_cast<double *>(points);
  polygon.opacity = drawing_.OpacityPercent();
  size_t value = 0;
  for (size_t i = first; i < end; ++i) {
    StoreAs(starts, static_cast<uint32_t>(value / 2));
    starts += sizeof(uint32_t);
    value += CopyPoints(points + value * sizeof(double), paths_.path(i), closeContours_);
  }
  StoreAs(starts, static_cast<uint32_t>(value / 2));
  StoreAs(block, polygon);
  sink_.Start(ElemFilledPolygon, drawing_.state.fillColor, block, bytes);
}

void PathPainter::HandOutCompoundPolygon() {
  closeContours_ = true;
  FillPolygonRecord(0, paths_.count());
  if (drawing_.state.fillColor == drawing_.state.strokeColor || !alsoStroke_) {
    pendingPaths_ = 0;
  } else {
    pass_ = Pass::kStroke;  // later calls stroke every path of the list
    alsoStroke_ = false;
  }
}

// One contour, in list order. One of fewer than three points, left open by an earlier subpath, is dropped. False when
// no contour was left.
bool PathPainter::HandOutPolygon() {
  while (pendingPaths_ > 0) {
    const size_t index = nextPolygon_++;
    --pendingPaths_;
    if (paths_.path(index).size() < 6) continue;
    FillPolygonRecord(index, index + 1);
    return true;
  }
  ReleasePaths();
  pendingPaths_ = kIdle;
  return false;
}

}  // namespace kapdf
