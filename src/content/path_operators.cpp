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
  if (!TransformPoint(x, y)) return;
  if (pathPoints_ + path_.count() / 2 < limits::kPathPoints) path_.points.PushPoint(x, y);
}

void Interpreter::PushPath() {
  if (pathCount_ == pathList_.size()) pathList_.emplace_back();
  pathPoints_ += path_.count() / 2;
  std::swap(pathList_[pathCount_++], path_);
  path_.points.Clear();
}

void Interpreter::StartSubpath() {
  if (path_.count() > 2) PushPath();
  else path_.points.Clear();
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
  if (path_.count() >= 4) path_.AppendFirst();
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

// `v` holds both control points and the end in millimetres.
void Interpreter::AppendCurve(double (&v)[6]) {
  const size_t others = std::min(pathPoints_, limits::kPathPoints);
  FlattenCubic(path_.points, v[0], v[1], v[2], v[3], v[4], v[5], limits::kPathPoints - others);
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
  if (path_.count() < 2 || statement.Reals(v + 2, 4) != 4) return Flow::kNext;
  if (!TransformPoint(v[2], v[3]) || !TransformPoint(v[4], v[5])) return Flow::kNext;
  v[0] = path_.points.data()[path_.count() - 2];
  v[1] = path_.points.data()[path_.count() - 1];
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

void Interpreter::ReleasePaths(size_t keep) {
  for (size_t i = keep; i < pathCount_; ++i) {
    pathPoints_ -= pathList_[i].count() / 2;
    pathList_[i].points.Clear();
  }
  pathCount_ = keep;
  if (keep == 0) {
    pathHead_ = 0;
    // A page that once had very many subpaths does not keep their storage for good.
    if (pathList_.size() > 4096) pathList_.resize(64);
  }
}

Flow Interpreter::StartPainting(Pass pass) {
  path_.points.Clear();
  pendingPaths_ = pathCount_ > 0 ? static_cast<int64_t>(pathCount_) : kIdle;
  if (pendingPaths_ == kIdle) return Flow::kNext;
  pass_ = pass;
  contoursChecked_ = false;
  return Flow::kPaint;
}

Flow Interpreter::Stroke(const Statement &) {
  if (path_.count() > 2) PushPath();
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
  constexpr uint8_t kRectangle = 38;
  if (FindOperator(rest.data(), remainder) != kRectangle) return false;
  double v[4];
  if (Statement{rest.c_str(), nullptr}.Reals(v, 4) != 4) return false;
  AppendRectangle(v);
  return true;
}

// The way from `f` to `b*`: each paints like the one before and sets one flag more. Every operator of the B family makes one
// even-odd polygon of all its contours, also those that ask for non-zero winding.
Flow Interpreter::PaintFill(const Statement &statement, bool compound, bool stroke) {
  compound_ = compound;
  alsoStroke_ = stroke;
  if (path_.count() == 0) RebuildRectangle(statement);
  if (path_.count() >= 6) {
    if (!path_.closed()) path_.AppendFirst();
    PushPath();
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
  path_.points.Clear();
  ReleasePaths(0);
  return Flow::kNext;
}

}  // namespace kapdf
