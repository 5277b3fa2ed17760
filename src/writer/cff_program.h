// Fonts with outlines of the compact form (CFF) that a document can carry as they are.
#pragma once

#include <cstdint>
#include <span>

namespace kapdf {

// The `CFF ` table of an OpenType file when glyph numbers find its glyphs. Empty for every other font: one of another
// form, one whose glyphs are found by the identifiers of a character collection, or a damaged one.
std::span<const uint8_t> CffProgram(std::span<const uint8_t> font);

}  // namespace kapdf
