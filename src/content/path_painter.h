// Builds paths, paints them and hands them out, one record a call.
#pragma once

#include <cstdint>
#include <span>

#include "base/limits.h"
#include "content/drawing_context.h"
#include "content/operators.h"
#include "content/path.h"
#include "content/record_sink.h"
#include "content/statement.h"

namespace kapdf {

class PathPainter {
 public:
  PathPainter(const DrawingContext &drawing, RecordSink &sink) : drawing_(drawing), sink_(sink) {}

  // Fills the record with the next path that was painted; false when there is none and the content is to be read on.
  bool HandOut();
  // What a paint without paths asked for is forgotten: reading starts anew, or behind a form.
  void ForgetDroppedPaint() { compound_ = alsoStroke_ = false; }

  // ---- handlers of operators ----
  Flow MoveTo(const Statement &);
  Flow LineTo(const Statement &);
  Flow CurveTo(const Statement &);
  Flow CurveFromCurrent(const Statement &);
  Flow CurveToEnd(const Statement &);
  Flow ClosePath(const Statement &);
  Flow Rectangle(const Statement &);
  Flow Fill(const Statement &);
  Flow FillEvenOdd(const Statement &);
  Flow FillStroke(const Statement &);
  Flow CloseFillStroke(const Statement &);
  Flow Stroke(const Statement &);
  Flow CloseStroke(const Statement &);
  Flow DiscardPath(const Statement &);

 private:
  enum class Pass { kStroke, kFill };
  static constexpr int64_t kIdle = -1;

  bool TransformPoint(double &x, double &y) const;
  void AppendPoint(double x, double y);
  void StartSubpath();
  void AppendRectangle(const double (&v)[4]);
  bool RebuildRectangle(const Statement &statement);
  void AppendCurve(double (&v)[6]);
  void ReleasePaths();
  Flow StartPainting(Pass pass);
  Flow PaintFill(const Statement &statement, bool compound, bool stroke);

  double RecordWidth() const;
  bool ContoursTurnBothWays() const;
  void HandOutStroke();
  bool HandOutCurve(std::span<const double> points, double width);
  void HandOutCompoundPolygon();
  bool HandOutPolygon();
  void FillPolygonRecord(size_t first, size_t end);

  const DrawingContext &drawing_;
  RecordSink &sink_;
  PathList paths_;
  size_t curvePointsLeft_ = limits::kPageCurvePoints;
  size_t nextPolygon_ = 0;  // the first path that was not handed out as a polygon of its own
  int64_t pendingPaths_ = kIdle;
  Pass pass_ = Pass::kStroke;
  bool compound_ = false;  // contours form one polygon
  bool alsoStroke_ = false;
  bool contoursChecked_ = false;
  bool closeContours_ = false;  // paths go out closed: they were the contours of one polygon before
};

}  // namespace kapdf
