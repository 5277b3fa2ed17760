// The font files that fontconfig knows.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kapdf::platform {

// One face of a file that GDI would list, too.
struct FontFace {
  std::u16string family;  // by which fonts of one weight and its bold and italic forms are grouped
  std::string postScriptName;
  std::string file;
  int index = 0;  // in the file
  bool trueType = false;
  int weight = 0, slant = 0, width = 0;  // fontconfig's numbers
};

// Made once per process, sorted by family.
const std::vector<FontFace> &FontFaces();

// The face of that family, in any case, which is nearest to the style; else the nearest that the system puts in its
// place. Null when there is no font at all.
const FontFace *FindFace(std::u16string_view family, bool bold, bool italic);

// Number by which the face that stands for its family has less than the others: upright, ordinary weight and width.
int StyleDistance(const FontFace &face, bool bold, bool italic);

}  // namespace kapdf::platform
