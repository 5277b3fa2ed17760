// Operators of text objects other than showing.
#include <cstring>

#include "base/scan.h"
#include "content/interpreter.h"

namespace kapdf {
namespace {

constexpr size_t kNameText = 255;

}  // namespace

// On every pass through an open text object: the pieces of the last one have been taken. The first piece keeps what the
// one before it had, but for its text.
void Interpreter::StartTextPass() {
  if (text_.pieces.empty()) text_.pieces.push_back(std::make_unique<TextPiece>());
  text_.piece = 0;
  text_.width = 0;
  text_.lastRecord = nullptr;
  TextPiece &piece = text_.current();
  piece.text.clear();
  if (const CPDFFontObject *font = text_.object()) piece.face = font->faceName();
  piece.widthFactor = state_.horizontalScale;
}

Flow Interpreter::BeginText(const Statement &) {
  StartTextPass();
  text_.matrix = text_.line = Affine{};
  text_.pen = 0;
  text_.current().widthFactor = settings_.defaultTextWidth;
  text_.active = true;
  return Flow::kNext;
}

Flow Interpreter::EndText(const Statement &) {
  text_.active = false;
  text_.pen = 0;
  return Flow::kNext;
}

Flow Interpreter::CharSpacing(const Statement &statement) {
  statement.Reals(&state_.charSpacing, 1);
  return Flow::kNext;
}

Flow Interpreter::WordSpacing(const Statement &statement) {
  statement.Reals(&state_.wordSpacing, 1);
  return Flow::kNext;
}

Flow Interpreter::Leading(const Statement &statement) {
  statement.Reals(&state_.leading, 1);
  return Flow::kNext;
}

Flow Interpreter::HorizontalScale(const Statement &statement) {
  double percent;
  if (statement.Reals(&percent, 1) != 1) return Flow::kNext;
  state_.horizontalScale = percent / 100.0;
  if (text_.active) text_.current().widthFactor = state_.horizontalScale;
  return Flow::kNext;
}

Flow Interpreter::RenderMode(const Statement &statement) {
  double mode;
  if (statement.Reals(&mode, 1) == 1) state_.renderMode = TruncateToInteger(mode);
  return Flow::kNext;
}

void Interpreter::MoveLine(double x, double y) {
  text_.matrix = Affine{1, 0, 0, 1, x, y} * text_.matrix;
  text_.line = text_.matrix;
  text_.pen = 0;
}

Flow Interpreter::MoveText(const Statement &statement) {
  double v[2];
  if (statement.Reals(v, 2) == 2) MoveLine(v[0], v[1]);
  return Flow::kNext;
}

Flow Interpreter::MoveTextSetLeading(const Statement &statement) {
  double v[2];
  if (statement.Reals(v, 2) != 2) return Flow::kNext;
  state_.leading = -v[1];
  MoveLine(v[0], v[1]);
  return Flow::kNext;
}

Flow Interpreter::NextLine(const Statement &) {
  MoveLine(0, -state_.leading);
  return Flow::kNext;
}

Flow Interpreter::TextMatrix(const Statement &statement) {
  double v[6];
  if (statement.Reals(v, 6) != 6) return Flow::kNext;
  text_.matrix = text_.line = {v[0], v[1], v[2], v[3], v[4], v[5]};
  text_.pen = 0;
  return Flow::kNext;
}

// From the context at hand or the nearest one around it.
FontUse *Interpreter::FindFont(std::string_view name) {
  for (CPDFContentStream *context = context_; context; context = context->parent) {
    if (FontUse *found = context->resources.FindFont(name)) return found;
  }
  return nullptr;
}

// The page's default stands in for a font that implies no code page, unless its own program comes along.
void Interpreter::UseDecoding(const CPDFFontObject *font) {
  if (font) text_.decoding = {font->codePage(), font->hasDifferences() ? font : nullptr};
  if (text_.decoding.codePage == -1 && (!font || !font->hasProgram())) text_.decoding.codePage = settings_.codePage;
}

// The host gets a font's definition ahead of what is first shown with it. The name goes into the saved state only
// outside text objects.
Flow Interpreter::SelectFont(const Statement &statement) {
  std::string_view name = statement.Word();
  if (name.empty() || name.front() != '/') return Flow::kNext;
  const char *behind = statement.text + (name.data() - statement.text) + name.size();
  name = name.substr(1, kNameText);
  FontUse *found = FindFont(name);
  text_.font = found;
  UseDecoding(text_.object());
  if (!text_.active)
    state_.fontName = name;
  else if (found)
    text_.current().face = found->font->faceName();
  ScanReal(behind, state_.fontSize);
  if (!found || found->announced) return Flow::kNext;
  found->announced = true;
  const CPDFFontObject &font = *found->font;
  StartDefinition(ElemFontDef, font.definition(), 0);
  record_->payloadBytes = font.definitionSize();
  CopyName(record_->styleName, font.faceName());
  return Flow::kRecord;
}

// Behind `Q` bytes are taken by the font that is named in the state that came back.
void Interpreter::RestoreDecoding() {
  if (state_.fontName.empty()) return;
  const FontUse *found = FindFont(state_.fontName);
  UseDecoding(found ? found->font.get() : nullptr);
}

}  // namespace kapdf
