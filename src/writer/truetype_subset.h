// The part of a TrueType font that a document needs. Glyphs keep their numbers, as the text of a page is made of them;
// those that nothing uses are left empty.
#pragma once

#include <bitset>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "base/byte_buffer.h"
#include "fonts/code_table.h"

namespace kapdf {

// One flag per UTF-16 unit.
using CodeSet = std::bitset<65536>;

// Glyph by UTF-16 unit, 0 for none, from a font's `cmap`: its table for Unicode, or where it has none the byte table
// for the Macintosh, byte for unit. Null when it has neither.
std::unique_ptr<CodeTable> GlyphsOfCmap(std::span<const uint8_t> cmap);

// The seven bytes in front of the names of the subset of that number, "ZVNEWA+" for 0. The letters count as one number
// to the base 26: ZVNEWZ, ZVNEXA, ..., ZZZZZZ, and then AAAAAA.
std::string SubsetPrefix(uint32_t number);
// Of the process's next subset, from 0.
std::string NextSubsetPrefix();

struct FontSubset {
  enum class Kind {
    kNotEmbeddable,  // no bytes: outlines that are not TrueType, a collection of fonts, or a damaged font
    kWhole,          // the font as it is, under its own name: a subset would save little
    kSubset,         // a font whose names begin with the prefix
  };
  Kind kind = Kind::kNotEmbeddable;
  ByteBuffer bytes;
};

// Of a font file, the glyphs of the codes 1 to 65534 that are used and glyph 0, with their components. `glyphs` has to
// be the table that the text was written with. No glyph of a damaged font is cut: it answers kNotEmbeddable when a
// needed table or the outline of a used glyph does not lie in the file. Throws std::bad_alloc only.
FontSubset MakeTrueTypeSubset(std::span<const uint8_t> font, const CodeTable &glyphs, const CodeSet &used,
                              std::string_view prefix);

}  // namespace kapdf
