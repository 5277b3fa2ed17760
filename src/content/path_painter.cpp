// Operators that build paths and ask for them to be painted.
#include "content/path_painter.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <string>

#include "base/units.h"
#include "content/scanner.h"
#include "geometry/bezier.h"

namespace kapdf {

// To millimetres on the page. False for a point outside the clip box, when that counts, and for one that is not finite.
bool PathPainter::TransformPoint(double &x, double &y) const {
  drawing_.state.ctm.Apply(x, y);
  if (!std::isfinite(x) || !std::isfinite(y)) return false;
  const PageBox &box = drawing_.content->clipBox;
  if (drawing_.settings.clipping && (x < box.left || x > box.right || y < box.bottom || y > box.top)) return false;
  x *= kMillimetresPerPoint;
  y *= kMillimetresPerPoint;
  return true;
}

void PathPainter::AppendPoint(double x, double y) {
  if (TransformPoint(x, y) && paths_.points() < limits::kPathPoints) paths_.Append(x, y);
}

void PathPainter::StartSubpath() {
  if (paths_.currentSize() > 2)
    paths_.Finish();
  else
    paths_.EmptyCurrent();
}

Flow PathPainter::MoveTo(const Statement &statement) {
  double v[2];
  if (statement.Reals(v, 2) != 2) return Flow::kNext;
  StartSubpath();
  AppendPoint(v[0], v[1]);
  return Flow::kNext;
}

Flow PathPainter::LineTo(const Statement &statement) {
  double v[2];
  if (statement.Reals(v, 2) == 2) AppendPoint(v[0], v[1]);
  return Flow::kNext;
}

Flow PathPainter::ClosePath(const Statement &) {
  if (paths_.currentSize() >= 4 && paths_.points() < limits::kPathPoints) paths_.AppendFirst();
  return Flow::kNext;
}

void PathPainter::AppendRectangle(const double (&v)[4]) {
  StartSubpath();
  AppendPoint(v[0], v[1]);
  AppendPoint(v[0], v[1] + v[3]);
  AppendPoint(v[0] + v[2], v[1] + v[3]);
  AppendPoint(v[0] + v[2], v[1]);
  AppendPoint(v[0], v[1]);
}

Flow PathPainter::Rectangle(const Statement &statement) {
  double v[4];
  if (statement.Reals(v, 4) == 4) AppendRectangle(v);
  return Flow::kNext;
}

// `v` holds both control points and the end in millimetres. Without a point to start from nothing happens.
// Once the page's curves have made too many points, each further one gives its end point only.
void PathPainter::AppendCurve(double (&v)[6]) {
  if (paths_.currentSize() == 0) return;
  const size_t before = paths_.points();
  const size_t most = std::min(limits::kPathPoints, before + std::max<size_t>(curvePointsLeft_, 1));
  FlattenCubic(paths_.Tail(), v[0], v[1], v[2], v[3], v[4], v[5], most);
  curvePointsLeft_ -= std::min(curvePointsLeft_, paths_.points() - before);
}

// A curve with any point outside the clip box is dropped whole.
Flow PathPainter::CurveTo(const Statement &statement) {
  double v[6];
  if (statement.Reals(v, 6) != 6) return Flow::kNext;
  if (TransformPoint(v[0], v[1]) && TransformPoint(v[2], v[3]) && TransformPoint(v[4], v[5])) AppendCurve(v);
  return Flow::kNext;
}

Flow PathPainter::CurveFromCurrent(const Statement &statement) {
  double v[6];
  if (paths_.currentSize() < 2 || statement.Reals(v + 2, 4) != 4) return Flow::kNext;
  if (!TransformPoint(v[2], v[3]) || !TransformPoint(v[4], v[5])) return Flow::kNext;
  const std::span<const double> path = paths_.current();
  v[0] = path[path.size() - 2];
  v[1] = path[path.size() - 1];
  AppendCurve(v);
  return Flow::kNext;
}

Flow PathPainter::CurveToEnd(const Statement &statement) {
  double v[6];
  if (statement.Reals(v, 4) != 4) return Flow::kNext;
  if (!TransformPoint(v[0], v[1]) || !TransformPoint(v[2], v[3])) return Flow::kNext;
  v[4] = v[2];
  v[5] = v[3];
  AppendCurve(v);
  return Flow::kNext;
}

void PathPainter::ReleasePaths() {
  paths_.Clear();
  nextPolygon_ = 0;
  closeContours_ = false;
}

Flow PathPainter::StartPainting(Pass pass) {
  paths_.EmptyCurrent();
  pendingPaths_ = paths_.count() > 0 ? static_cast<int64_t>(paths_.count()) : kIdle;
  if (pendingPaths_ == kIdle) return Flow::kNext;
  pass_ = pass;
  contoursChecked_ = false;
  return Flow::kPaint;
}

Flow PathPainter::Stroke(const Statement &) {
  if (paths_.currentSize() > 2) paths_.Finish();
  return StartPainting(Pass::kStroke);
}

Flow PathPainter::CloseStroke(const Statement &statement) {
  ClosePath(statement);
  return Stroke(statement);
}

// A rectangle whose operator was not told apart from its last operand is built after all.
bool PathPainter::RebuildRectangle(const Statement &statement) {
  if (std::strlen(statement.text) <= 1) return false;
  std::string rest(statement.text);
  const size_t lastWord = rest.find_last_of(' ');
  rest.resize(lastWord == std::string::npos ? 0 : lastWord);
  char *remainder = nullptr;
  const OperatorRow *row = FindOperator(rest.data(), remainder);
  if (!row || row->number != kOpRectangle) return false;
  double v[4];
  if (Statement{rest.c_str()}.Reals(v, 4) != 4) return false;
  AppendRectangle(v);
  return true;
}

// The way from `f` to `b*`: each paints like the one before and sets one flag more; what a dropped paint
// has set holds for the next one too, as long as no record has gone out. Every operator of the B family makes one
// even-odd polygon of all its contours, also those that ask for non-zero winding.
Flow PathPainter::PaintFill(const Statement &statement, bool compound, bool stroke) {
  compound_ |= compound;
  alsoStroke_ |= stroke;
  if (paths_.currentSize() == 0) RebuildRectangle(statement);
  if (paths_.currentSize() >= 6) {
    if (!IsClosed(paths_.current())) paths_.AppendFirst();
    paths_.Finish();
  }
  return StartPainting(Pass::kFill);
}

Flow PathPainter::Fill(const Statement &statement) { return PaintFill(statement, false, false); }
Flow PathPainter::FillEvenOdd(const Statement &statement) { return PaintFill(statement, true, false); }
Flow PathPainter::FillStroke(const Statement &statement) { return PaintFill(statement, true, true); }

Flow PathPainter::CloseFillStroke(const Statement &statement) {
  ClosePath(statement);
  return PaintFill(statement, true, true);
}

Flow PathPainter::DiscardPath(const Statement &) {
  ReleasePaths();
  return Flow::kNext;
}

}  // namespace kapdf
