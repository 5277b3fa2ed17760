// The encodings that a font may name, and the map to Unicode of the characters of each.
#pragma once

#include <string_view>

namespace kapdf {

// One of the table's rows.
struct CMapName {
  std::string_view name;        // also the name of its file in the encoding folder
  int codePage;                 // of the shown bytes; 0 when they are codes of something else
  bool twoByte;                 // codes are taken through the code spaces, not as bytes
  bool vertical;                // the file adds to the one whose name ends in H
  std::string_view unicodeMap;  // file in the encoding folder from CIDs to Unicode; may be empty
};

// Row of the encoding with exactly this name; -1 when there is none.
int FindCMapName(std::string_view name);
// `row` from FindCMapName, not -1.
const CMapName &CMapNameAt(int row);

// File in the encoding folder that takes the CIDs of a character collection to Unicode, for a font with the encoding
// `row` and this Ordering in its CIDSystemInfo. Empty when there is none.
std::string_view UnicodeMapFor(const CMapName &row, std::string_view ordering);

}  // namespace kapdf
