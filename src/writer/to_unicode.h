// The map by which readers find the characters of a written font's glyphs.
#pragma once

#include <string>

#include "writer/font_out.h"

namespace kapdf {

// Text of the CMap, glyphs as two bytes. Runs of characters whose glyphs run along are told by their ends.
std::string ToUnicodeMap(const FontOut &font);

}  // namespace kapdf
