// A TrueType font of three glyphs, made byte by byte.
#pragma once

#include <string>
#include <vector>

#include "support/font_builder.h"
#include "support/pdf_builder.h"

namespace kapdf::test {

// Unicode to glyph: A is 1, B and C both 2. An old table of bytes without glyphs stands ahead of it, or not.
inline std::string Cmap(bool oldFirst = true) {
  const auto words = [](const std::vector<unsigned> &values) {
    std::string text;
    for (const unsigned value : values) text += BigEndian(value & 0xFFFF, 2);
    return text;
  };
  // Ends, starts, differences of glyph and code, offsets into the list of glyphs behind them.
  const std::string segments =
      words({4, 44, 0, 6, 0, 0, 0, 0x41, 0x43, 0xFFFF, 0, 0x41, 0x42, 0xFFFF, 1u - 0x41, 0, 1, 0, 4, 0, 2, 2});
  if (!oldFirst) return words({0, 1, 3, 1, 0, 12}) + segments;
  return words({0, 2, 1, 0, 0, 20, 3, 1, 0, 282, 0, 262}) + std::string(258, '\0') + segments;
}

// 1000 units to the em, ascenders of 800, all in a box with its top at 1000.
inline std::string TrueTypeFont(const std::string &cmap = Cmap()) {
  const std::string head = BigEndian(0x00010000, 4) + std::string(8, '\0') + BigEndian(0x5F0F3CF5, 4) +
                           BigEndian(0, 2) + BigEndian(1000, 2) + std::string(16, '\0') + BigEndian(0, 4) +
                           BigEndian(1000, 2) + BigEndian(1000, 2) + std::string(10, '\0');
  const std::string hhea = BigEndian(0x00010000, 4) + BigEndian(800, 2) + BigEndian(0x10000 - 200, 2) +
                           std::string(26, '\0') + BigEndian(1, 2);
  const std::string maxp = BigEndian(0x00010000, 4) + BigEndian(3, 2) + std::string(26, '\0');
  return Sfnt({{"cmap", cmap},
               {"glyf", std::string(4, '\0')},
               {"head", head},
               {"hhea", hhea},
               {"hmtx", BigEndian(500, 2) + std::string(6, '\0')},
               {"loca", std::string(8, '\0')},
               {"maxp", maxp}});
}

}  // namespace kapdf::test
