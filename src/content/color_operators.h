// Operators that set colours.
#pragma once

#include "content/drawing_context.h"
#include "content/operators.h"
#include "content/statement.h"

namespace kapdf {

class ColorOperators {
 public:
  explicit ColorOperators(DrawingContext &drawing) : drawing_(drawing) {}

  // ---- handlers of operators ----
  Flow StrokeRgb(const Statement &);
  Flow StrokeGray(const Statement &);
  Flow StrokeCmyk(const Statement &);
  Flow StrokeColor(const Statement &);
  Flow StrokeColorInText(const Statement &);
  Flow StrokeColorSpace(const Statement &);
  Flow FillRgb(const Statement &);
  Flow FillRgbInText(const Statement &);
  Flow FillGray(const Statement &);
  Flow FillGrayInText(const Statement &);
  Flow FillCmyk(const Statement &);
  Flow FillCmykInText(const Statement &);
  Flow FillColor(const Statement &);
  Flow FillColorInText(const Statement &);
  Flow FillColorSpace(const Statement &);

 private:
  static bool ScanRgb(const Statement &statement, uint32_t &packed);
  static bool ScanGray(const Statement &statement, uint32_t &packed);
  static bool ScanCmyk(const Statement &statement, uint32_t &packed);
  static bool ScanCmykWhole(const Statement &statement, uint32_t &packed);
  bool ScanOne(const Statement &statement, uint32_t &packed) const;
  bool ScanByKind(const Statement &statement, ColorKind kind, uint32_t &packed) const;
  Flow SetStroke(ColorKind kind, const Statement &statement);
  Flow SetFill(ColorKind kind, const Statement &statement, uint32_t white);
  void SelectColorSpace(const Statement &statement, ColorKind &kind);

  DrawingContext &drawing_;
};

}  // namespace kapdf
