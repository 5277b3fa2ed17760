// Operators of text objects other than showing.
#include <cstring>

#include "base/scan.h"
#include "content/text_show.h"

namespace kapdf {
namespace {

constexpr size_t kNameText = 255;

}  // namespace

// On every pass through an open text object: the pieces of the last one have been taken. The first piece keeps what the
// one before it had, but for its text.
void TextShow::StartPass() {
  if (text_.pieces.empty()) text_.pieces.push_back(std::make_unique<TextPiece>());
  text_.piece = 0;
  text_.width = 0;
  TextPiece &piece = text_.current();
  piece.text.clear();
  if (const CPDFFontObject *font = text_.object()) piece.face = font->faceName();
  piece.widthFactor = drawing_.state.horizontalScale;
}

Flow TextShow::BeginText(const Statement &) {
  StartPass();
  text_.matrix = text_.line = Affine{};
  text_.pen = 0;
  text_.current().widthFactor = drawing_.settings.defaultTextWidth;
  text_.active = true;
  return Flow::kNext;
}

Flow TextShow::EndText(const Statement &) {
  text_.active = false;
  text_.pen = 0;
  return Flow::kNext;
}

Flow TextShow::CharSpacing(const Statement &statement) {
  statement.Reals(&drawing_.state.charSpacing, 1);
  return Flow::kNext;
}

Flow TextShow::WordSpacing(const Statement &statement) {
  statement.Reals(&drawing_.state.wordSpacing, 1);
  return Flow::kNext;
}

Flow TextShow::Leading(const Statement &statement) {
  statement.Reals(&drawing_.state.leading, 1);
  return Flow::kNext;
}

Flow TextShow::HorizontalScale(const Statement &statement) {
  double percent;
  if (statement.Reals(&percent, 1) != 1) return Flow::kNext;
  drawing_.state.horizontalScale = percent / 100.0;
  if (text_.active) text_.current().widthFactor = drawing_.state.horizontalScale;
  return Flow::kNext;
}

Flow TextShow::RenderMode(const Statement &statement) {
  double mode;
  if (statement.Reals(&mode, 1) == 1) drawing_.state.renderMode = TruncateToInteger(mode);
  return Flow::kNext;
}

void TextShow::MoveLine(double x, double y) {
  text_.matrix = Affine{1, 0, 0, 1, x, y} * text_.matrix;
  text_.line = text_.matrix;
  text_.pen = 0;
}

Flow TextShow::MoveText(const Statement &statement) {
  double v[2];
  if (statement.Reals(v, 2) == 2) MoveLine(v[0], v[1]);
  return Flow::kNext;
}

Flow TextShow::MoveTextSetLeading(const Statement &statement) {
  double v[2];
  if (statement.Reals(v, 2) != 2) return Flow::kNext;
  drawing_.state.leading = -v[1];
  MoveLine(v[0], v[1]);
  return Flow::kNext;
}

Flow TextShow::NextLine(const Statement &) {
  MoveLine(0, -drawing_.state.leading);
  return Flow::kNext;
}

Flow TextShow::TextMatrix(const Statement &statement) {
  double v[6];
  if (statement.Reals(v, 6) != 6) return Flow::kNext;
  text_.matrix = text_.line = {v[0], v[1], v[2], v[3], v[4], v[5]};
  text_.pen = 0;
  return Flow::kNext;
}

FontUse *TextShow::FindFont(std::string_view name) const {
  return drawing_.FindOutwards([&](PageResources &resources) { return resources.FindFont(name); });
}

// The page's default stands in for a font that implies no code page, unless its own program comes along.
void TextShow::UseDecoding(const CPDFFontObject *font) {
  if (font) text_.decoding = {font->codePage(), font->hasDifferences() ? font : nullptr};
  if (text_.decoding.codePage == -1 && (!font || !font->hasProgram()))
    text_.decoding.codePage = drawing_.settings.codePage;
}

// The host gets a font's definition ahead of what is first shown with it. The name goes into the saved state only
// outside text objects.
Flow TextShow::SelectFont(const Statement &statement) {
  std::string_view name = statement.Word();
  if (name.empty() || name.front() != '/') return Flow::kNext;
  const char *behind = name.data() + name.size();
  name = name.substr(1, kNameText);
  FontUse *found = FindFont(name);
  text_.font = found;
  UseDecoding(text_.object());
  if (!text_.active)
    drawing_.state.fontName = name;
  else if (found)
    text_.current().face = found->font->faceName();
  ScanReal(behind, drawing_.state.fontSize);
  if (!found || found->announced) return Flow::kNext;
  found->announced = true;
  const CPDFFontObject &font = *found->font;
  sink_.StartDefinition(ElemFontDef, font.definition(), font.definitionSize());
  CopyName(sink_.record().styleName, font.faceName());
  return Flow::kRecord;
}

void TextShow::RestoreDecoding() {
  if (drawing_.state.fontName.empty()) return;
  const FontUse *found = FindFont(drawing_.state.fontName);
  UseDecoding(found ? found->font.get() : nullptr);
}

}  // namespace kapdf
