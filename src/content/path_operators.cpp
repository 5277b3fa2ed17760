// Operators that build paths and ask for them to be painted.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <string>

#include "base/limits.h"
#include "content/interpreter.h"
#include "content/scanner.h"
#include "geometry/bezier.h"

namespace kapdf {
namespace {

constexpr double kMillimetresPerPoint = 25.4 / 72.0;

}  // namespace

// To millimetres on the page. False for a point outside the clip box, when that counts, and for one that is not finite.
bool Interpreter::TransformPoint(double &x, double &y) const {
  state_.ctm.Apply(x, y);
  if (!std::isfinite(x) || !std::isfinite(y)) return false;
  const PageBox &box = context_->clipBox;
  if (settings_.clipping && (x < box.left || x > box.right || y < box.bottom || y > box.top)) return false;
  x *= kMillimetresPerPoint;
  y *= kMillimetresPerPoint;
  return true;
}

void Interpreter::AppendPoint(double x, double y) {
  if (TransformPoint(x, y) && paths_.points() < limits::kPathPoints) paths_.Append(x, y);
}

void Interpreter::StartSubpath() {
  if (paths_.currentSize() > 2)
    paths_.Finish();
  else
    paths_.EmptyCurrent();
}

Flow Interpreter::MoveTo(const Statement &statement) {
  double v[2];
  if (statement.Reals(v, 2) != 2) return Flow::kNext;
  StartSubpath();
  AppendPoint(v[0], v[1]);
  return Flow::kNext;
}

Flow Interpreter::LineTo(const Statement &statement) {
  double v[2];
  if (statement.Reals(v, 2) == 2) AppendPoint(v[0], v[1]);
  return Flow::kNext;
}

Flow Interpreter::ClosePath(const Statement &) {
  if (paths_.currentSize() >= 4 && paths_.points() < limits::kPathPoints) paths_.AppendFirst();
  return Flow::kNext;
}

void Interpreter::AppendRectangle(const double (&v)[4]) {
  StartSubpath();
  AppendPoint(v[0], v[1]);
  AppendPoint(v[0], v[1] + v[3]);
  AppendPoint(v[0] + v[2], v[1] + v[3]);
  AppendPoint(v[0] + v[2], v[1]);
  AppendPoint(v[0], v[1]);
}

Flow Interpreter::Rectangle(const Statement &statement) {
  double v[4];
  if (statement.Reals(v, 4) == 4) AppendRectangle(v);
  return Flow::kNext;
}

// `v` holds both control points and the end in millimetres. Without a point to start from nothing happens.
// Once the page's curves have made too many points, each further one gives its end point only.
void Interpreter::AppendCurve(double (&v)[6]) {
  if (paths_.currentSize() == 0) return;
  const size_t before = paths_.points();
  const size_t most = std::min(limits::kPathPoints, before + std::max<size_t>(curvePointsLeft_, 1));
  FlattenCubic(paths_.Tail(), v[0], v[1], v[2], v[3], v[4], v[5], most);
  curvePointsLeft_ -= std::min(curvePointsLeft_, paths_.points() - before);
}

// A curve with any point outside the clip box is dropped whole.
Flow Interpreter::CurveTo(const Statement &statement) {
  double v[6];
  if (statement.Reals(v, 6) != 6) return Flow::kNext;
  if (TransformPoint(v[0], v[1]) && TransformPoint(v[2], v[3]) && TransformPoint(v[4], v[5])) AppendCurve(v);
  return Flow::kNext;
}

Flow Interpreter::CurveFromCurrent(const Statement &statement) {
  double v[6];
  if (paths_.currentSize() < 2 || statement.Reals(v + 2, 4) != 4) return Flow::kNext;
  if (!TransformPoint(v[2], v[3]) || !TransformPoint(v[4], v[5])) return Flow::kNext;
  const std::span<const double> path = paths_.current();
  v[0] = path[path.size() - 2];
  v[1] = path[path.size() - 1];
  AppendCurve(v);
  return Flow::kNext;
}

Flow Interpreter::CurveToEnd(const Statement &statement) {
  double v[6];
  if (statement.Reals(v, 4) != 4) return Flow::kNext;
  if (!TransformPoint(v[0], v[1]) || !TransformPoint(v[2], v[3])) return Flow::kNext;
  v[4] = v[2];
  v[5] = v[3];
  AppendCurve(v);
  return Flow::kNext;
}

void Interpreter::ReleasePaths() {
  paths_.Clear();
  nextPolygon_ = 0;
  closeContours_ = false;
}

Flow Interpreter::StartPainting(Pass pass) {
  paths_.EmptyCurrent();
  pendingPaths_ = paths_.count() > 0 ? static_cast<int64_t>(paths_.count()) : kIdle;
  if (pendingPaths_ == kIdle) return Flow::kNext;
  pass_ = pass;
  contoursChecked_ = false;
  return Flow::kPaint;
}

Flow Interpreter::Stroke(const Statement &) {
  if (paths_.currentSize() > 2) paths_.Finish();
  return StartPainting(Pass::kStroke);
}

Flow Interpreter::CloseStroke(const Statement &statement) {
  ClosePath(statement);
  return Stroke(statement);
}

// A rectangle whose operator was not told apart from its last operand is built after all.
bool Interpreter::RebuildRectangle(const Statement &statement) {
  if (statement.plain || std::strlen(statement.text) <= 1) return false;
  std::string rest(statement.text);
  const size_t lastWord = rest.find_last_of(' ');
  rest.resize(lastWord == std::string::npos ? 0 : lastWord);
  char *remainder = nullptr;
  if (FindOperator(rest.data(), remainder) != kOpRectangle) return false;
  double v[4];
  if (Statement{rest.c_str(), nullptr}.Reals(v, 4) != 4) return false;
  AppendRectangle(v);
  return true;
}

// The way from `f` to `b*`: each paints like the one before and sets one flag more; what a dropped paint
// has set holds for the next one too, as long as no record has gone out. Every operator of the B family makes one
// even-odd polygon of all its contours, also those that ask for non-zero winding.
Flow Interpreter::PaintFill(const Statement &statement, bool compound, bool stroke) {
  compound_ |= compound;
  alsoStroke_ |= stroke;
  if (paths_.currentSize() == 0) RebuildRectangle(statement);
  if (paths_.currentSize() >= 6) {
    if (!IsClosed(paths_.current())) paths_.AppendFirst();
    paths_.Finish();
  }
  return StartPainting(Pass::kFill);
}

Flow Interpreter::Fill(const Statement &statement) { return PaintFill(statement, false, false); }
Flow Interpreter::FillEvenOdd(const Statement &statement) { return PaintFill(statement, true, false); }
Flow Interpreter::FillStroke(const Statement &statement) { return PaintFill(statement, true, true); }
Flow Interpreter::FillStrokeEvenOdd(const Statement &statement) { return PaintFill(statement, true, true); }

Flow Interpreter::CloseFillStroke(const Statement &statement) {
  ClosePath(statement);
  return PaintFill(statement, true, true);
}

Flow Interpreter::CloseFillStrokeEvenOdd(const Statement &statement) { return CloseFillStroke(statement); }

Flow Interpreter::DiscardPath(const Statement &) {
  ReleasePaths();
  return Flow::kNext;
}

}  // namespace kapdf
