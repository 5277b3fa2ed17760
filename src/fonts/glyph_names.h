// Character codes from the glyph names of a font's Differences.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace kapdf {

struct GlyphCode {
  uint16_t code = 0;        // 0: the name tells nothing
  std::string_view prefix;  // "MT", "B" or "g" when a number stood behind it in the name; else empty. Static.
};

// Names by number ("MT41", "B41" hexadecimal, "g41"), single characters, the names of the table, and plain numbers. The
// result is a Unicode code, or whatever the font's maker counted.
GlyphCode CodeOfGlyphName(const std::string &name);

}  // namespace kapdf
