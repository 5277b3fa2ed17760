// PostScript names in the `name` table of a TrueType or OpenType font.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace kapdf::platform {

// One for each record that tells it, in the table's order; none for a damaged table.
std::vector<std::u16string> PostScriptNames(std::span<const uint8_t> table);

}  // namespace kapdf::platform
