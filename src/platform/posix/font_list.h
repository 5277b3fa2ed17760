// The font files that fontconfig knows.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

struct _FcConfig;

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

// The fonts at one time.
struct FontList {
  std::vector<FontFace> faces;                           // sorted by family
  std::shared_ptr<_FcConfig> config;                     // null where fontconfig is not set up
  std::vector<std::pair<std::string, int64_t>> changed;  // folders with fonts, and when they did, in ns
};

// As it is now; the one of the last call while no folder has changed.
std::shared_ptr<const FontList> CurrentFonts();

// The face of that family, in any case, which is nearest to the style; else the nearest that the system puts in its
// place. Null when there is no font at all.
const FontFace *FindFace(const FontList &fonts, std::u16string_view family, bool bold, bool italic);

// Number by which the face that stands for its family has less than the others: upright, ordinary weight and width.
int StyleDistance(const FontFace &face, bool bold, bool italic);

}  // namespace kapdf::platform
