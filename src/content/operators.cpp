#include "content/operators.h"

#include "content/interpreter.h"

namespace kapdf {
namespace {

using I = Interpreter;

// clang-format off
constexpr OperatorRow kOperators[] = {
    {"\"", 18, nullptr, &I::SpacedNextLineShow},
    {"%", 1, nullptr, nullptr},
    {"'", 17, nullptr, &I::NextLineShow},
    {"B", 8, &I::FillStroke, nullptr},
    {"B*", 9, &I::FillStrokeEvenOdd, nullptr},
    {"BDC", 51, &I::BeginMarkedContent, nullptr},
    {"BI", 48, &I::InlineImage, nullptr},
    {"BMC", 52, nullptr, nullptr},
    {"BT", 14, &I::BeginText, nullptr},
    {"BX", 1, nullptr, nullptr},
    {"CS", 39, &I::StrokeColorSpace, &I::StrokeColorSpace},
    {"DP", 1, nullptr, nullptr},
    {"Do", 30, &I::PaintXObject, nullptr},
    {"EI", 49, nullptr, nullptr},
    {"EMC", 53, &I::EndMarkedContent, nullptr},
    {"ET", 15, nullptr, &I::EndText},
    {"EX", 1, nullptr, nullptr},
    {"F", 6, &I::Fill, nullptr},
    {"G", 42, &I::StrokeGray, &I::StrokeGray},
    {"ID", 1, nullptr, nullptr},
    {"J", 1, nullptr, nullptr},
    {"K", 44, &I::StrokeCmyk, &I::StrokeCmyk},
    {"M", 1, nullptr, nullptr},
    {"MP", 1, nullptr, nullptr},
    {"Q", 3, &I::PopState, nullptr},
    {"RG", 31, &I::StrokeRgb, &I::StrokeRgb},
    {"S", 12, &I::Stroke, nullptr},
    {"SC", 46, &I::StrokeColor, &I::StrokeColor},
    {"SCN", 46, &I::StrokeColor, &I::StrokeColor},
    {"T*", 27, nullptr, &I::NextLine},
    {"TD", 24, nullptr, &I::MoveTextSetLeading},
    {"TJ", 16, nullptr, &I::ShowText},
    {"TL", 26, &I::Leading, &I::Leading},
    {"Tc", 22, &I::CharSpacing, &I::CharSpacing},
    {"Td", 23, nullptr, &I::MoveText},
    {"Tf", 19, &I::SelectFont, &I::SelectFont},
    {"Tj", 16, nullptr, &I::ShowText},
    {"Tm", 25, nullptr, &I::TextMatrix},
    {"Tr", 28, &I::RenderMode, &I::RenderMode},
    {"Ts", 1, nullptr, nullptr},
    {"Tw", 21, &I::WordSpacing, &I::WordSpacing},
    {"Tz", 20, &I::HorizontalScale, &I::HorizontalScale},
    {"W", 1, nullptr, nullptr},
    {"W*", 1, nullptr, nullptr},
    {"b", 10, &I::CloseFillStroke, nullptr},
    {"b*", 11, &I::CloseFillStrokeEvenOdd, nullptr},
    {"c", 35, &I::CurveTo, nullptr},
    {"cm", 29, &I::ConcatenateMatrix, nullptr},
    {"cs", 40, &I::FillColorSpace, &I::FillColorSpace},
    {"d", 54, &I::Dash, nullptr},
    {"d0", 1, nullptr, nullptr},
    {"d1", 1, nullptr, nullptr},
    {"f", 6, &I::Fill, nullptr},
    {"f*", 7, &I::FillEvenOdd, nullptr},
    {"g", 43, &I::FillGray, &I::FillGrayInText},
    {"gs", 50, &I::StateParameters, &I::StateParametersInText},
    {"h", 34, &I::ClosePath, nullptr},
    {"i", 1, nullptr, nullptr},
    {"j", 1, nullptr, nullptr},
    {"k", 45, &I::FillCmyk, &I::FillCmykInText},
    {"l", 5, &I::LineTo, nullptr},
    {"m", 4, &I::MoveTo, nullptr},
    {"n", 41, &I::DiscardPath, nullptr},
    {"q", 2, &I::PushState, nullptr},
    {"re", 38, &I::Rectangle, nullptr},
    {"rg", 32, &I::FillRgb, &I::FillRgbInText},
    {"ri", 1, nullptr, nullptr},
    {"s", 13, &I::CloseStroke, nullptr},
    {"sc", 47, &I::FillColor, &I::FillColorInText},
    {"scn", 47, &I::FillColor, &I::FillColorInText},
    {"sh", 1, nullptr, nullptr},
    {"v", 37, &I::CurveFromCurrent, nullptr},
    {"w", 33, &I::LineWidth, nullptr},
    {"y", 36, &I::CurveToEnd, nullptr},
};
// clang-format on
static_assert(std::size(kOperators) == 74);

// Operators by their bytes: one, two, and the handful of three.
struct Index {
  std::array<uint8_t, 128> one{};
  std::array<uint8_t, 128 * 128> two{};
  std::array<OperatorHandler, kOperatorNumbers> outside{}, inside{};

  constexpr Index() {
    for (const OperatorRow &row : kOperators) {
      const auto first = static_cast<unsigned char>(row.text[0]);
      if (row.text.size() == 1) one[first] = row.number;
      if (row.text.size() == 2) two[first * 128u + static_cast<unsigned char>(row.text[1])] = row.number;
      outside[row.number] = row.outside;
      inside[row.number] = row.inside;
    }
  }
};
constexpr Index kIndex;

// Operators that take a name, a string, an array or the bytes behind them.
constexpr bool TakesMoreThanNumbers(uint8_t number) {
  switch (number) {
    case 14:
    case 15:
    case 16:
    case 17:
    case 18:
    case 19:
    case 30:
    case 39:
    case 40:
    case 48:
    case 49:
    case 50:
    case 51:
    case 52:
    case 54:
      return true;
    default:
      return false;
  }
}

}  // namespace

uint8_t FindOperatorNumber(const char *text, size_t length) {
  const auto a = static_cast<unsigned char>(text[0]);
  if (length == 1) return a < 128 ? kIndex.one[a] : 0;
  const auto b = static_cast<unsigned char>(text[1]);
  if (length == 2) return a < 128 && b < 128 ? kIndex.two[a * 128u + b] : 0;
  if (length != 3) return 0;
  for (const OperatorRow &row : kOperators) {
    if (row.text.size() == 3 && row.text == std::string_view(text, 3)) return row.number;
  }
  return 0;
}

uint8_t FindPlainOperator(char first) {
  const auto byte = static_cast<unsigned char>(first);
  const uint8_t number = byte < 128 && first != '%' ? kIndex.one[byte] : 0;
  return TakesMoreThanNumbers(number) ? 0 : number;
}

uint8_t FindPlainOperator(char first, char second) {
  const auto a = static_cast<unsigned char>(first), b = static_cast<unsigned char>(second);
  if (a >= 128 || b >= 128) return 0;
  const uint8_t number = kIndex.two[a * 128u + b];
  // Of the ignored ones only W* cannot stand beside a name or binary data.
  if (TakesMoreThanNumbers(number) || (number == 1 && second != '*')) return 0;
  return number;
}

OperatorHandler HandlerOutside(uint8_t number) { return kIndex.outside[number]; }
OperatorHandler HandlerInside(uint8_t number) { return kIndex.inside[number]; }

}  // namespace kapdf
