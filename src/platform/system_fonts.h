// Fonts of the system: families, metrics, outlines' boxes, tables and whole files. GDI on Windows; elsewhere the same
// questions are answered from the fonts' own tables.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "base/byte_buffer.h"

namespace kapdf::platform {

// The families that the system has at one time. A list never changes: hold it for as long as one answer shall count,
// for instance for a document.
class FontFamilies {
 public:
  // As they are now. As long as nothing was installed or removed it is the list of the last call, with what was found
  // out for it. For any thread.
  static std::shared_ptr<const FontFamilies> Now();
  virtual ~FontFamilies() = default;

  // Names of those with TrueType outlines, the longest first; empty without fonts.
  virtual const std::vector<std::u16string> &TrueType() const = 0;
  // The family whose upright font of ordinary weight has this PostScript name; empty for none.
  virtual std::u16string OfPostScriptName(std::u16string_view name) const = 0;
};

// In pixels at the size that was asked for: with 1000 to the em, thousandths of it.
struct FontMetrics {
  int32_t height = 0;  // ascent and descent
  int32_t ascent = 0;
  int32_t descent = 0;  // positive below the base line
  int32_t internalLeading = 0;
  int32_t externalLeading = 0;
  int32_t averageWidth = 0;
  int32_t italicAngle = 0;                           // tenths of a degree, counter-clockwise
  int32_t left = 0, bottom = 0, right = 0, top = 0;  // box around all glyphs
  uint8_t pitchAndFamily = 0;  // as in Windows' TEXTMETRIC: bit 0 set for variable pitch, family in the upper half
  uint8_t charSet = 0;         // Windows' number; 2 for symbols
};

// Black box of a glyph in pixels.
struct GlyphBox {
  int32_t left = 0, top = 0;  // upper left corner, from the origin, upwards
  int32_t width = 0, height = 0;
};

// One font, opened. Not for several threads at a time.
class SystemFont {
 public:
  struct Request {
    std::u16string family;
    int32_t emPixels = 1000;  // 1 or more
    bool bold = false;
    bool italic = false;
  };
  // A family that is not installed gives the system's substitute. Null when there is none.
  static std::unique_ptr<SystemFont> Open(const Request &request);
  virtual ~SystemFont() = default;

  // Of the face that was found, with the system's spelling.
  virtual std::u16string FaceName() = 0;
  virtual FontMetrics Metrics() = 0;
  // False when the font cannot tell.
  virtual bool Box(char16_t character, GlyphBox &box) = 0;
  // Advance widths of the characters from first to last, in pixels; of the font's replacement where it has no glyph.
  virtual std::vector<int32_t> Advances(char16_t first, char16_t last) = 0;
  // A table of the font by its tag ("cmap"), or with an empty tag a file of this one font. Empty when there is none, as
  // for an instance of a variable font whose outlines are not those of the file, and for more than
  // limits::kFontProgram bytes.
  virtual ByteBuffer Table(std::string_view tag) = 0;
};

}  // namespace kapdf::platform
