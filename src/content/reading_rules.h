// What differs between the two ways of reading a page, in one place. The parts of the interpreter ask these rules and
// never which way is on.
#pragma once

#include <cstddef>

namespace kapdf {

struct ReadingRules {
  // Statements are cut as ISO 32000-1, 7.2 and 7.8.2 have them: operands may lie on several lines or in several
  // streams, strings nest and may hold any byte, a comment ends with its line.
  bool lexed = false;
  // An operator that knows nothing of text objects acts inside them as outside, as viewers do.
  bool allOperatorsInText = false;
  // Marked content nests: what ends puts elements back on the layer around it.
  bool nestedLayers = false;
  // Letters of a name after `Do` that count.
  size_t xObjectName = 29;
};

inline constexpr ReadingRules kClassicReading{};
inline constexpr ReadingRules kExtendedReading{true, true, true, 255};

}  // namespace kapdf
