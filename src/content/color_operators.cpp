// Operators that set colours.
#include "content/color_operators.h"

#include "base/color.h"

namespace kapdf {
namespace {

// Inside text objects white is the palette's own last entry.
constexpr uint32_t kWhiteInText = 255;

float Scaled(double component) {
  const float value = static_cast<float>(component) * 255.0f;
  return value == value ? value : 0.0f;
}

uint32_t PackRgb(const double *v) {
  return PackColor(ComponentByte(static_cast<float>(v[0])), ComponentByte(static_cast<float>(v[1])),
                   ComponentByte(static_cast<float>(v[2])));
}

}  // namespace

bool ColorOperators::ScanRgb(const Statement &statement, uint32_t &packed) {
  double v[3];
  if (statement.Reals(v, 3) != 3) return false;
  packed = PackRgb(v);
  return true;
}

bool ColorOperators::ScanGray(const Statement &statement, uint32_t &packed) {
  double v;
  if (statement.Reals(&v, 1) != 1) return false;
  const uint32_t level = ComponentByte(static_cast<float>(v));
  packed = PackColor(level, level, level);
  return true;
}

bool ColorOperators::ScanCmyk(const Statement &statement, uint32_t &packed) {
  double v[4];
  if (statement.Reals(v, 4) != 4) return false;
  packed = PackFromCmyk(Scaled(v[0]), Scaled(v[1]), Scaled(v[2]), Scaled(v[3]));
  return true;
}

// Too few components change nothing; those behind the ones that the kind takes and names of patterns have no effect.
bool ColorOperators::ScanByKind(const Statement &statement, ColorKind kind, uint32_t &packed) const {
  switch (kind) {
    case ColorKind::kRgb:
      return ScanRgb(statement, packed);
    case ColorKind::kGray:
      return ScanGray(statement, packed);
    case ColorKind::kCmyk:
      return ScanCmyk(statement, packed);
    case ColorKind::kResource:
      return ScanOne(statement, packed);
  }
  return false;
}

// One component through the space in force.
bool ColorOperators::ScanOne(const Statement &statement, uint32_t &packed) const {
  double v;
  if (!drawing_.state.colorSpace || statement.Reals(&v, 1) != 1) return false;
  packed = drawing_.state.colorSpace->Convert(v);
  return true;
}

// CMYK of `sc` inside a text object: whole numbers throughout.
bool ColorOperators::ScanCmykWhole(const Statement &statement, uint32_t &packed) {
  double v[4];
  if (statement.Reals(v, 4) != 4) return false;
  const auto byte = [&](int i) { return static_cast<int>(ComponentByte(static_cast<float>(v[i]))); };
  packed = PackFromCmykBytes(byte(0), byte(1), byte(2), byte(3));
  return true;
}

// A colour of a space of the resources stays a plain colour, also black and white.
Flow ColorOperators::SetStroke(ColorKind kind, const Statement &statement) {
  uint32_t packed;
  if (!ScanByKind(statement, kind, packed)) return Flow::kNext;
  drawing_.state.strokeKind = kind;
  drawing_.state.strokeColor = kind == ColorKind::kResource ? packed | kDirectColor : CodeFromPacked(packed);
  return Flow::kNext;
}

Flow ColorOperators::SetFill(ColorKind kind, const Statement &statement, uint32_t white) {
  uint32_t packed;
  if (!ScanByKind(statement, kind, packed)) return Flow::kNext;
  drawing_.state.fillKind = kind;
  drawing_.state.fillColor = kind == ColorKind::kResource ? packed | kDirectColor : CodeFromPacked(packed, white);
  return Flow::kNext;
}

Flow ColorOperators::StrokeRgb(const Statement &s) { return SetStroke(ColorKind::kRgb, s); }
Flow ColorOperators::StrokeGray(const Statement &s) { return SetStroke(ColorKind::kGray, s); }
Flow ColorOperators::StrokeCmyk(const Statement &s) { return SetStroke(ColorKind::kCmyk, s); }

// Grey goes through the space in force where there is one, outside text objects.
Flow ColorOperators::StrokeColor(const Statement &s) {
  uint32_t packed;
  if (drawing_.state.strokeKind != ColorKind::kGray || !ScanOne(s, packed)) return StrokeColorInText(s);
  drawing_.state.strokeColor = CodeFromPacked(packed);
  return Flow::kNext;
}

Flow ColorOperators::StrokeColorInText(const Statement &s) { return SetStroke(drawing_.state.strokeKind, s); }

Flow ColorOperators::FillRgb(const Statement &s) { return SetFill(ColorKind::kRgb, s, kWhiteCode); }
Flow ColorOperators::FillGray(const Statement &s) { return SetFill(ColorKind::kGray, s, kWhiteCode); }
Flow ColorOperators::FillCmyk(const Statement &s) { return SetFill(ColorKind::kCmyk, s, kWhiteCode); }
Flow ColorOperators::FillColor(const Statement &s) { return SetFill(drawing_.state.fillKind, s, kWhiteCode); }
Flow ColorOperators::FillRgbInText(const Statement &s) { return SetFill(ColorKind::kRgb, s, kWhiteInText); }
Flow ColorOperators::FillGrayInText(const Statement &s) { return SetFill(ColorKind::kGray, s, kWhiteInText); }
Flow ColorOperators::FillCmykInText(const Statement &s) { return SetFill(ColorKind::kCmyk, s, kWhiteInText); }

Flow ColorOperators::FillColorInText(const Statement &s) {
  if (drawing_.state.fillKind != ColorKind::kCmyk) return SetFill(drawing_.state.fillKind, s, kWhiteInText);
  uint32_t packed;
  if (ScanCmykWhole(s, packed)) drawing_.state.fillColor = CodeFromPacked(packed);
  return Flow::kNext;
}

// A name that is neither a device space nor one of the resources leaves the kind as it is, and no space in force.
void ColorOperators::SelectColorSpace(const Statement &statement, ColorKind &kind) {
  std::string_view name = statement.Word();
  if (name == "/DeviceGray") {
    kind = ColorKind::kGray;
  } else if (name == "/DeviceRGB") {
    kind = ColorKind::kRgb;
  } else if (name == "/DeviceCMYK") {
    kind = ColorKind::kCmyk;
  } else {
    if (!name.empty()) name.remove_prefix(1);
    drawing_.state.colorSpace = drawing_.content->resources.FindColorSpace(name);
    if (!drawing_.state.colorSpace) return;
    switch (drawing_.state.colorSpace->components()) {
      case 1:
        kind = ColorKind::kResource;
        break;
      case ColorSpace::kGrey:
        kind = ColorKind::kGray;
        break;
      case 4:
        kind = ColorKind::kCmyk;
        break;
      default:
        kind = ColorKind::kRgb;
    }
  }
}

Flow ColorOperators::StrokeColorSpace(const Statement &statement) {
  SelectColorSpace(statement, drawing_.state.strokeKind);
  return Flow::kNext;
}

Flow ColorOperators::FillColorSpace(const Statement &statement) {
  SelectColorSpace(statement, drawing_.state.fillKind);
  return Flow::kNext;
}

}  // namespace kapdf
