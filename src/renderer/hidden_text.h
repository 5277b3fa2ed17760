// The text of a page as the renderer finds it, piece by piece.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace kapdf {

// Of the style that begins at byte 1200 of the first block.
struct HiddenTextStyle {
  double height;   // at 272
  uint64_t style;  // at 280
  uint32_t color;  // at 288, a colour code
};

// Of the second block.
struct HiddenTextRun {
  double x, y;        // at 0 and 8
  int32_t degrees;    // at 16
  std::string bytes;  // one from each 4 bytes from 20 on; at 4116 their number, of which up to 1024 count
};

// Item i of the one belongs to item i of the other.
struct HiddenText {
  std::vector<HiddenTextStyle> hiddenTextStyles;
  std::vector<HiddenTextRun> hiddenTextRuns;
};

// Handed to the renderer, which has no place for a context, so the pieces gather in lists of the whole process.
int HiddenTextCallback(int type, void *a, const void *styleBlock, const void *runBlock);
// Gives the lists away, and leaves them empty.
HiddenText TakeHiddenText();

}  // namespace kapdf
