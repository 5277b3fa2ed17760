// Glyph names and their Unicode codes. Some are deliberately crude: the two ligatures give their first letter.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace kapdf {

struct GlyphName {
  std::string_view name;
  uint16_t code;
};

// Sorted by name.
inline constexpr std::array kGlyphNames = {
    // clang-format off
    GlyphName{"Adieresis", 0xC4},
    GlyphName{"Lslash", 0x0141},
    GlyphName{"Odieresis", 0xD6},
    GlyphName{"Ohm", 0x2126},
    GlyphName{"Oslash", 0xD8},
    GlyphName{"Udieresis", 0xDC},
    GlyphName{"acute", 0xB4},
    GlyphName{"adieresis", 0xE4},
    GlyphName{"ampersand", 0x26},
    GlyphName{"at", 0x40},
    GlyphName{"bracketleft", 0x5B},
    GlyphName{"bracketright", 0x5D},
    GlyphName{"breve", 0x02D8},
    GlyphName{"caron", 0x02C7},
    GlyphName{"cedilla", 0xB8},
    GlyphName{"circumflex", 0x5E},
    GlyphName{"colon", 0x3A},
    GlyphName{"comma", 0x2C},
    GlyphName{"copyright", 0xA9},
    GlyphName{"degree", 0xB0},
    GlyphName{"dieresis", 0xA8},
    GlyphName{"dotaccent", 0x02D9},
    GlyphName{"dotlessi", 0x0131},
    GlyphName{"eight", 0x38},
    GlyphName{"ellipsis", 0x2026},
    GlyphName{"emdash", 0x2014},
    GlyphName{"endash", 0x2013},
    GlyphName{"equal", 0x3D},
    GlyphName{"exclam", 0x21},
    GlyphName{"fi", 0x66},
    GlyphName{"five", 0x35},
    GlyphName{"fl", 0x66},
    GlyphName{"four", 0x34},
    GlyphName{"fraction", 0x2F},
    GlyphName{"germandbls", 0xDF},
    GlyphName{"grave", 0x60},
    GlyphName{"greater", 0x3E},
    GlyphName{"hungarumlaut", 0x02DD},
    GlyphName{"hyphen", 0x2D},
    GlyphName{"less", 0x3C},
    GlyphName{"lslash", 0x0142},
    GlyphName{"macron", 0xAF},
    GlyphName{"minus", 0x2D},
    GlyphName{"nine", 0x39},
    GlyphName{"odieresis", 0xF6},
    GlyphName{"ogonek", 0x02DB},
    GlyphName{"one", 0x31},
    GlyphName{"oslash", 0xF8},
    GlyphName{"parenleft", 0x28},
    GlyphName{"parenright", 0x29},
    GlyphName{"period", 0x2E},
    GlyphName{"perthousand", 0x2030},
    GlyphName{"plus", 0x2B},
    GlyphName{"question", 0x3F},
    GlyphName{"quotedbl", 0x22},
    GlyphName{"quotedblbase", 0x201E},
    GlyphName{"quotedblleft", 0x201C},
    GlyphName{"quotedblright", 0x201D},
    GlyphName{"quoteleft", 0x2018},
    GlyphName{"quoteright", 0x2019},
    GlyphName{"quotesingle", 0x27},
    GlyphName{"ring", 0x02DA},
    GlyphName{"semicolon", 0x3B},
    GlyphName{"seven", 0x37},
    GlyphName{"six", 0x36},
    GlyphName{"slash", 0x2F},
    GlyphName{"space", 0x20},
    GlyphName{"three", 0x33},
    GlyphName{"threesuperior", 0xB3},
    GlyphName{"tilde", 0x7E},
    GlyphName{"two", 0x32},
    GlyphName{"twosuperior", 0xB2},
    GlyphName{"udieresis", 0xFC},
    GlyphName{"underscore", 0x5F},
    GlyphName{"zero", 0x30},
    // clang-format on
};

}  // namespace kapdf
