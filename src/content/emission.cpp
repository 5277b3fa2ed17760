// Handing out painted paths, one record a call.
#include <cmath>

#include "content/interpreter.h"

namespace kapdf {
namespace {

constexpr double kMillimetresPerPoint = 25.4 / 72.0;

void CopyPoints(uint8_t *to, const CoordArray &points) {
  std::memcpy(to, points.data(), points.size() * sizeof(double));
}

}  // namespace

double SignedArea(const Path &path) {
  const double *p = path.points.data();
  double area = 0, beforeX = 0, beforeY = 0;
  for (size_t i = 2; i + 1 < path.count(); i += 2) {
    const double dx = p[i] - p[0], dy = p[i + 1] - p[1];
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

// True with the record filled. Without paths to hand out, or with none left of those that were, the loop may go on.
bool Interpreter::EmitPending() {
  if (pendingPaths_ == 0) {
    ReleasePaths(0);
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
  const Path &path = pathList_[static_cast<size_t>(--pendingPaths_)];
  const double *p = path.points.data();
  const double width = RecordWidth();
  if (path.count() == 4) {
    blocks_.line = {width, p[0], p[1], p[2], p[3]};
    StartRecord(ElemLine, state_.strokeColor, &blocks_.line, sizeof blocks_.line);
    return;
  }
  const size_t bytes = sizeof(PolylinePayload) + path.count() * sizeof(double);
  uint8_t *block = blocks_.polyline.Prepare(bytes);
  uint8_t *points = block + sizeof(PolylinePayload);
  CopyPoints(points, path.points);
  PolylinePayload polyline = {};
  polyline.width = width;
  polyline.vertexCount = static_cast<int32_t>(path.count() / 2);
  polyline.vertices = reinterpret_cast<double *>(points);
  StoreAs(block, polyline);
  StartRecord(ElemPolyline, state_.strokeColor, block, bytes);
}

// True when two contours that follow each other go round in opposite directions. The area that is remembered is cut to a whole
// number of square millimetres, so a contour below one turns the test off for the next.
bool Interpreter::ContoursTurnBothWays() const {
  double before = 0;
  for (size_t i = 0; pathCount_ > 1 && i < pathCount_; ++i) {
    const double area = SignedArea(pathList_[i]);
    if (before != 0 && area * before < 0) return true;
    before = std::trunc(area);
  }
  return false;
}

// Contours from `first` to `end`, each with its points, as one polygon.
void Interpreter::FillPolygonRecord(size_t first, size_t end) {
  size_t values = 0;
  for (size_t i = first; i < end; ++i) values += pathList_[i].count();
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
  const double opacity = state_.alpha * context_->opacity * 100.0;
  polygon.opacity = std::isfinite(opacity) ? opacity : 0.0;
  uint32_t vertex = 0;
  for (size_t i = first; i < end; ++i) {
    StoreAs(starts, vertex);
    starts += sizeof vertex;
    CopyPoints(points + vertex * 2 * sizeof(double), pathList_[i].points);
    vertex += static_cast<uint32_t>(pathList_[i].count() / 2);
  }
  StoreAs(starts, vertex);
  StoreAs(block, polygon);
  StartRecord(ElemFilledPolygon, state_.fillColor, block, bytes);
}

void Interpreter::EmitCompoundPolygon() {
  for (size_t i = 0; i < pathCount_; ++i) {
    if (!pathList_[i].closed()) pathList_[i].AppendFirst();
  }
  FillPolygonRecord(0, pathCount_);
  if (state_.fillColor == state_.strokeColor || !alsoStroke_) {
    pendingPaths_ = 0;
  } else {
    pass_ = Pass::kStroke;  // later calls stroke every path of the list
    alsoStroke_ = false;
  }
}

// One contour, in list order. One of fewer than three points, left open by an earlier subpath, is dropped. False when no
// contour was left.
bool Interpreter::EmitPolygon() {
  while (pendingPaths_ > 0) {
    const size_t index = pathHead_++;
    --pendingPaths_;
    if (pathList_[index].count() < 6) continue;
    FillPolygonRecord(index, index + 1);
    return true;
  }
  ReleasePaths(0);
  pendingPaths_ = kIdle;
  return false;
}

}  // namespace kapdf
