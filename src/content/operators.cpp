#include "content/operators.h"

#include <array>

#include "content/interpreter.h"

namespace kapdf {
namespace {

using I = Interpreter;
using C = ColorOperators;
using P = PathPainter;
using T = TextShow;

template <class Part>
Part PartOf(Flow (Part::*)(const Statement &));

// A handler that is a member of one of the interpreter's parts.
template <auto Method>
Flow On(Interpreter &interpreter, const Statement &statement) {
  using Part = decltype(PartOf(Method));
  return (interpreter.template Part<Part>().*Method)(statement);
}

using enum Operands;

// clang-format off
constexpr OperatorRow kOperators[] = {
    {"\"", 18, kText, nullptr, On<&T::SpacedNextLineShow>},
    {"%", 1, kText, nullptr, nullptr},
    {"'", 17, kText, nullptr, On<&T::NextLineShow>},
    {"B", 8, kNone, On<&P::FillStroke>, nullptr},
    {"B*", 9, kNone, On<&P::FillStroke>, nullptr},
    {"BDC", 51, kText, On<&I::BeginMarkedContent>, nullptr},
    {"BI", 48, kText, On<&I::InlineImage>, nullptr},
    {"BMC", 52, kText, On<&I::BeginUnnamedContent>, nullptr},
    {"BT", 14, kText, On<&T::BeginText>, nullptr},
    {"BX", 1, kText, nullptr, nullptr},
    {"CS", 39, kText, On<&C::StrokeColorSpace>, On<&C::StrokeColorSpace>},
    {"DP", 1, kText, nullptr, nullptr},
    {"Do", 30, kText, On<&I::PaintXObject>, nullptr},
    {"EI", 49, kText, nullptr, nullptr},
    {"EMC", 53, kNone, On<&I::EndMarkedContent>, nullptr},
    {"ET", 15, kText, nullptr, On<&T::EndText>},
    {"EX", 1, kText, nullptr, nullptr},
    {"F", 6, kNone, On<&P::Fill>, nullptr},
    {"G", 42, kNumbers, On<&C::StrokeGray>, On<&C::StrokeGray>},
    {"ID", 1, kText, nullptr, nullptr},
    {"J", 1, kNumbers, nullptr, nullptr},
    {"K", 44, kNumbers, On<&C::StrokeCmyk>, On<&C::StrokeCmyk>},
    {"M", 1, kNumbers, nullptr, nullptr},
    {"MP", 1, kText, nullptr, nullptr},
    {"Q", 3, kNone, On<&I::PopState>, nullptr},
    {"RG", 31, kNumbers, On<&C::StrokeRgb>, On<&C::StrokeRgb>},
    {"S", 12, kNone, On<&P::Stroke>, nullptr},
    {"SC", 46, kNumbers, On<&C::StrokeColor>, On<&C::StrokeColorInText>},
    {"SCN", 46, kNumbers, On<&C::StrokeColor>, On<&C::StrokeColorInText>},
    {"T*", 27, kNone, nullptr, On<&T::NextLine>},
    {"TD", 24, kNumbers, nullptr, On<&T::MoveTextSetLeading>},
    {"TJ", 16, kText, nullptr, On<&T::ShowText>},
    {"TL", 26, kNumbers, On<&T::Leading>, On<&T::Leading>},
    {"Tc", 22, kNumbers, On<&T::CharSpacing>, On<&T::CharSpacing>},
    {"Td", 23, kNumbers, nullptr, On<&T::MoveText>},
    {"Tf", 19, kText, On<&T::SelectFont>, On<&T::SelectFont>},
    {"Tj", 16, kText, nullptr, On<&T::ShowText>},
    {"Tm", 25, kNumbers, nullptr, On<&T::TextMatrix>},
    {"Tr", 28, kNumbers, On<&T::RenderMode>, On<&T::RenderMode>},
    {"Ts", 1, kText, nullptr, nullptr},
    {"Tw", 21, kNumbers, On<&T::WordSpacing>, On<&T::WordSpacing>},
    {"Tz", 20, kNumbers, On<&T::HorizontalScale>, On<&T::HorizontalScale>},
    {"W", 1, kNumbers, nullptr, nullptr},
    {"W*", 1, kNumbers, nullptr, nullptr},
    {"b", 10, kNone, On<&P::CloseFillStroke>, nullptr},
    {"b*", 11, kNone, On<&P::CloseFillStroke>, nullptr},
    {"c", 35, kNumbers, On<&P::CurveTo>, nullptr},
    {"cm", 29, kNumbers, On<&I::ConcatenateMatrix>, nullptr},
    {"cs", 40, kText, On<&C::FillColorSpace>, On<&C::FillColorSpace>},
    {"d", 54, kText, On<&I::Dash>, nullptr},
    {"d0", 1, kText, nullptr, nullptr},
    {"d1", 1, kText, nullptr, nullptr},
    {"f", 6, kNone, On<&P::Fill>, nullptr},
    {"f*", 7, kNone, On<&P::FillEvenOdd>, nullptr},
    {"g", 43, kNumbers, On<&C::FillGray>, On<&C::FillGrayInText>},
    {"gs", 50, kText, On<&I::StateParameters>, On<&I::StateParametersInText>},
    {"h", 34, kNone, On<&P::ClosePath>, nullptr},
    {"i", 1, kNumbers, nullptr, nullptr},
    {"j", 1, kNumbers, nullptr, nullptr},
    {"k", 45, kNumbers, On<&C::FillCmyk>, On<&C::FillCmykInText>},
    {"l", 5, kNumbers, On<&P::LineTo>, nullptr},
    {"m", 4, kNumbers, On<&P::MoveTo>, nullptr},
    {"n", 41, kNone, On<&P::DiscardPath>, nullptr},
    {"q", 2, kNone, On<&I::PushState>, nullptr},
    {"re", 38, kNumbers, On<&P::Rectangle>, nullptr},
    {"rg", 32, kNumbers, On<&C::FillRgb>, On<&C::FillRgbInText>},
    {"ri", 1, kText, nullptr, nullptr},
    {"s", 13, kNone, On<&P::CloseStroke>, nullptr},
    {"sc", 47, kNumbers, On<&C::FillColor>, On<&C::FillColorInText>},
    {"scn", 47, kNumbers, On<&C::FillColor>, On<&C::FillColorInText>},
    {"sh", 1, kText, nullptr, nullptr},
    {"v", 37, kNumbers, On<&P::CurveFromCurrent>, nullptr},
    {"w", 33, kNumbers, On<&I::LineWidth>, nullptr},
    {"y", 36, kNumbers, On<&P::CurveToEnd>, nullptr},
};
// clang-format on
static_assert(std::size(kOperators) == 74);

// Rows by their bytes, one more than their place: one byte, two, and the handful of three.
struct Index {
  std::array<uint8_t, 128> one{};
  std::array<uint8_t, 128 * 128> two{};

  constexpr Index() {
    for (size_t i = 0; i < std::size(kOperators); ++i) {
      const std::string_view text = kOperators[i].text;
      const auto first = static_cast<unsigned char>(text[0]);
      if (text.size() == 1) one[first] = static_cast<uint8_t>(i + 1);
      if (text.size() == 2) two[first * 128u + static_cast<unsigned char>(text[1])] = static_cast<uint8_t>(i + 1);
    }
  }
};
constexpr Index kIndex;

const OperatorRow *RowAt(unsigned place) { return place == 0 ? nullptr : &kOperators[place - 1]; }
const OperatorRow *Plain(const OperatorRow *row) { return row && row->operands != kText ? row : nullptr; }

const OperatorRow *FindRow(char first) {
  const auto a = static_cast<unsigned char>(first);
  return a < 128 ? RowAt(kIndex.one[a]) : nullptr;
}

const OperatorRow *FindRow(char first, char second) {
  const auto a = static_cast<unsigned char>(first), b = static_cast<unsigned char>(second);
  return a < 128 && b < 128 ? RowAt(kIndex.two[a * 128u + b]) : nullptr;
}

}  // namespace

const OperatorRow *FindOperatorRow(std::string_view text) {
  if (text.size() == 1) return FindRow(text[0]);
  if (text.size() == 2) return FindRow(text[0], text[1]);
  if (text.size() != 3) return nullptr;
  for (const OperatorRow &row : kOperators) {
    if (row.text.size() == 3 && row.text == text) return &row;
  }
  return nullptr;
}

const OperatorRow *FindPlainOperator(char first) { return Plain(FindRow(first)); }
const OperatorRow *FindPlainOperator(char first, char second) { return Plain(FindRow(first, second)); }

}  // namespace kapdf
