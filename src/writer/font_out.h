// Fonts of the host's text styles, as the document that is written uses them.
#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "fonts/code_table.h"
#include "kapdf/kapdf.h"
#include "platform/system_fonts.h"
#include "writer/name_map.h"
#include "writer/truetype_subset.h"

namespace kapdf {

// A face of the system, as far as every font made of it is the same. Measured in thousandths of the em.
struct FontFace {
  std::unique_ptr<platform::SystemFont> font;  // null where the system has none at all
  std::unique_ptr<CodeTable> glyphs;           // null for a font without a table of characters
  std::u16string name;                         // as the system spells it; as asked for without a font
  uint32_t firstChar = 0;                      // that has a glyph
  double sizeFactor = 1;                       // em per height of a capital letter
  platform::FontMetrics metrics;
  int32_t stemV = 0;
};

// The faces in use. Text styles are many, their faces few, and an open one takes handles and memory.
class FaceTable {
 public:
  // Style bits of a definition.
  static constexpr uint32_t kBold = 1, kItalic = 2;

  const FontFace &Face(const std::u16string &name, uint32_t style);

 private:
  std::map<std::pair<std::u16string, uint32_t>, FontFace> faces_;
};

// A font of the system with the characters that the document's text takes from it. Text is written in the font's own
// glyph numbers, and everything is measured in thousandths of the em.
class FontOut {
 public:
  // `name` is that of the resource. The face is not looked for before the first text.
  FontOut(FaceTable &faces, std::string name, std::u16string_view faceName, uint32_t style);

  const std::string &name() const { return name_; }
  bool used() const { return face_ != nullptr; }
  int32_t objectNumber = 0;  // from the resources on

  // Takes the characters into use. What is told below is asked for after the first of these calls.
  void MarkGlyphs(std::u16string_view text);
  // 0 for a character that the font does not have. Where the system has no font at all, the character itself.
  uint16_t GlyphOf(char16_t code) const { return face_->glyphs ? (*face_->glyphs)[code] : face_->font ? 0 : code; }
  // Characters in use, and the first one that any text could show.
  const CodeSet &glyphUse() const { return *glyphUse_; }
  uint32_t firstChar() const { return face_->firstChar; }

  // Em per height of a capital letter; a text's height is that of its capitals.
  double sizeFactor() const { return face_->sizeFactor; }
  const platform::FontMetrics &metrics() const { return face_->metrics; }
  int32_t stemV() const { return face_->stemV; }
  // Advance widths of the characters in use from `firstChar` on, in their order.
  std::vector<int32_t> Widths() const;

  // As the font system calls the face, in its code page and with its blanks; the subset's prefix may stand ahead.
  const std::string &baseFontName() const { return baseFontName_; }
  // Whether readers could not know the face: it is one of those that a program installs for itself while it runs.
  bool IsTemporary() const;

  struct Program {
    enum class Outlines { kTrueType, kCompact };
    std::vector<uint8_t> deflated;  // empty: nothing that may be embedded
    size_t wholeSize = 0;           // of the font file
    Outlines outlines = Outlines::kTrueType;
  };
  // The used part of the font, or all of it where that is not much more. A part has a name of its own; a font of a
  // collection goes as one by itself. Compact outlines (CFF) go whole. What readers would show wrongly stays outside:
  // outlines that a character collection's identifiers find, since the text is made of glyph numbers; instances of
  // variable fonts other than the one whose outlines stand in the file; damaged fonts.
  Program MakeProgram();

 private:
  void Open();

  FaceTable *faces_;
  std::string name_;
  std::u16string faceName_;
  uint32_t style_;

  const FontFace *face_ = nullptr;  // of the table, once text uses it
  std::unique_ptr<CodeSet> glyphUse_;
  std::string baseFontName_;
};

// Fonts in the order of their definition, found by the name of the text style.
class FontTable {
 public:
  void DefineFont(const FontDefPayload &definition);
  // The first of that name, null when there is none.
  FontOut *FindFont(std::u16string_view styleName);
  std::deque<FontOut> &all() { return fonts_; }

 private:
  FaceTable faces_;
  std::deque<FontOut> fonts_;
  FirstNameMap<FontOut *> byName_;
  std::u16string lastName_;
  FontOut *last_ = nullptr;  // found under the last name
};

}  // namespace kapdf
