// A TrueType font made in memory, and its installation for the process that tests with it.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kapdf::test {

// A font file of tables. Offsets count from `base` bytes ahead of it, as in a collection.
std::string Sfnt(const std::vector<std::pair<std::string, std::string>> &tables, size_t base = 0);

// A square 700 units high and 500 wide for each character, glyph 1 for the first; glyph 0 is empty. 1000 units to the
// em, 900 and 200 above and below the base line. Glyph i is 600 + i units wide. The characters ascend.
// With `varies` it is a variable font, whose instance "Bold" weighs 700, and a table of symbols stands ahead of the
// characters.
std::string BuildFont(const std::string &family, std::u16string_view characters, size_t base = 0, bool varies = false);

// Writes the font to a file in the current folder and makes the font system know it, besides its own. The first one must
// come before the font system's first use.
void InstallFont(const std::string &fileName, const std::string &bytes);

}  // namespace kapdf::test
