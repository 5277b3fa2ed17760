// Handing out painted paths, one record a call.
#include <cmath>

#include "content/interpreter.h"
#include "geometry/recognition.h"

namespace kapdf {
namespace {

constexpr double kMillimetresPerPoint = 25.4 / 72.0;

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

double Interpreter::RecordWidth() const {
  const double width = state_.lineWidth * AxisScale(state_.ctm) * kMillimetresPerPoint;
  return std::isfinite(width) ? width : 0.0;
}

double Interpreter::OpacityPercent() const {
  const double opacity = state_.alpha * context_->opacity * 100.0;
  return std::isfinite(opacity) ? opacity : 0.0;
}

// True with the record filled. Without paths to hand out, or with none left of those that were, the loop may go on.
bool Interpreter::EmitPending() {
  if (pendingPaths_ == 0) {
    ReleasePaths();
    pendingPaths_ = kIdle;
  }
  if (pendingPaths_ < 0) return false;
  if (pass_ == Pass::kStroke) {
    EmitStroke();
    return true;
  }
  if (!compound_ && !contoursChecked_) {
    contoursChecked_ = true;  // what holds for the list holds for every rest of it
    compound_ = ContoursTurnBothWays();
  }
  if (!compound_) return EmitPolygon();
  EmitCompoundPolygon();
  return true;
}

// Paths leave last first and stay in the list.
void Interpreter::EmitStroke() {
  const std::span<const double> path = paths_.path(static_cast<size_t>(--pendingPaths_));
  const double width = RecordWidth();
  const bool complete = !closeContours_ || IsClosed(path);  // as it stands
  if (path.size() == 4 && complete) {
    blocks_.line = {width, path[0], path[1], path[2], path[3]};
    StartRecord(ElemLine, state_.strokeColor, &blocks_.line, sizeof blocks_.line);
    return;
  }
  // The first path has room for the structure in front of its points; others are copied behind one.
  static_assert(sizeof(PolylinePayload) == CoordArray::kHeadBytes);
  const bool inPlace = pendingPaths_ == 0 && complete;
  uint8_t *block = inPlace ? paths_.FirstBlock()
                           : blocks_.polyline.Prepare(sizeof(PolylinePayload) + path.size_bytes() + 2 * sizeof(double));
  uint8_t *points = block + sizeof(PolylinePayload);
  const size_t values = inPlace ? path.size() : CopyPoints(points, path, closeContours_);
  if (settings_.convertPoly && EmitCurve({reinterpret_cast<const double *>(points), values}, width)) return;
  PolylinePayload polyline = {};
  polyline.width = width;
  polyline.vertexCount = static_cast<int32_t>(values / 2);
  polyline.vertices = reinterpret_cast<double *>(points);
  StoreAs(block, polyline);
  StartRecord(ElemPolyline, state_.strokeColor, block, sizeof(PolylinePayload) + values * sizeof(double));
}

// True with the record filled when the points are those of a circle, an arc or an ellipse.
bool Interpreter::EmitCurve(std::span<const double> points, double width) {
  const RecognizedCurve curve = RecognizeCurve(points, settings_.fitTolerance);
  switch (curve.kind) {
    case RecognizedCurve::Kind::kNone:
      return false;
    case RecognizedCurve::Kind::kCircle:
      blocks_.circle = {width, curve.centreX, curve.centreY, curve.a};
      StartRecord(ElemCircle, state_.strokeColor, &blocks_.circle, sizeof blocks_.circle);
      return true;
    case RecognizedCurve::Kind::kArc:
      blocks_.arc = {width, curve.centreX, curve.centreY, curve.a, curve.end, curve.start};
      StartRecord(ElemArc, state_.strokeColor, &blocks_.arc, sizeof blocks_.arc);
      return true;
    case RecognizedCurve::Kind::kEllipse:
      blocks_.ellipse = {width, curve.centreX, curve.centreY, curve.a, curve.b, curve.rotation, curve.start, curve.end};
      StartRecord(ElemEllipseArc, state_.strokeColor, &blocks_.ellipse, sizeof blocks_.ellipse);
      return true;
  }
  return false;
}

// True when two contours that follow each other go round in opposite directions. The area that is remembered is cut to
// a whole number of square millimetres, so a contour below one turns the test off for the next.
bool Interpreter::ContoursTurnBothWays() const {
  double before = 0;
  for (size_t i = 0; paths_.count() > 1 && i < paths_.count(); ++i) {
    const double area = SignedArea(paths_.path(i));
    if (before != 0 && area * before < 0) return true;
    before = std::trunc(area);
  }
  return false;
}

// Contours from `first` to `end`, each with its points, as one polygon.
void Interpreter::FillPolygonRecord(size_t first, size_t end) {
  size_t values = 0;
  for (size_t i = first; i < end; ++i) {
    values += paths_.path(i).size() + (closeContours_ && !IsClosed(paths_.path(i)) ? 2 : 0);
  }
  const size_t contours = end - first;
  const size_t bytes = sizeof(FilledPolygonPayload) + values * sizeof(double) + (contours + 1) * sizeof(uint32_t);
  uint8_t *block = blocks_.polygon.Prepare(bytes);
  uint8_t *points = block + sizeof(FilledPolygonPayload);
  uint8_t *starts = points + values * sizeof(double);
  FilledPolygonPayload polygon = {};
  polygon.width = RecordWidth();
  polygon.contourCount = static_cast<int32_t>(contours);
  polygon.contourStarts = reinterpret_cast<uint32_t *>(starts);
  polygon.vertexCount = static_cast<int32_t>(values / 2);
  polygon.vertices = reinterpret_cast<double *>(points);
  polygon.opacity = OpacityPercent();
  size_t value = 0;
  for (size_t i = first; i < end; ++i) {
    StoreAs(starts, static_cast<uint32_t>(value / 2));
    starts += sizeof(uint32_t);
    value += CopyPoints(points + value * sizeof(double), paths_.path(i), closeContours_);
  }
  StoreAs(starts, static_cast<uint32_t>(value / 2));
  StoreAs(block, polygon);
  StartRecord(ElemFilledPolygon, state_.fillColor, block, bytes);
}

void Interpreter::EmitCompoundPolygon() {
  closeContours_ = true;
  FillPolygonRecord(0, paths_.count());
  if (state_.fillColor == state_.strokeColor || !alsoStroke_) {
    pendingPaths_ = 0;
  } else {
    pass_ = Pass::kStroke;  // later calls stroke every path of the list
    alsoStroke_ = false;
  }
}

// One contour, in list order. One of fewer than three points, left open by an earlier subpath, is dropped. False when
// no contour was left.
bool Interpreter::EmitPolygon() {
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
