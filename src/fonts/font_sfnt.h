// Tables in the file of a TrueType or OpenType font. Every offset is checked.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

#include "fonts/code_table.h"

namespace kapdf {

// A table by its tag, cut where the file ends; empty when there is none.
std::span<const uint8_t> SfntTable(std::span<const uint8_t> file, std::string_view tag);

// Glyph by UTF-16 unit, 0 for none, as the `cmap` table tells for Unicode (platform 3, encoding 1, format 0 or 4). Null
// when it does not.
std::unique_ptr<CodeTable> GlyphsByUnicode(std::span<const uint8_t> cmap);

}  // namespace kapdf
