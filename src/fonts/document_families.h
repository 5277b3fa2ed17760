// The families of the system, as the fonts of one document are looked up among them.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/system_fonts.h"

namespace kapdf {

// Asks the system once, at the first use: a font that is installed later counts for the next document.
class DocumentFamilies {
 public:
  struct Family {
    std::u16string name;
    std::string narrow;  // in the system's code page
    bool italic;         // begins with that word
  };

  // With TrueType outlines, the longest first.
  const std::vector<Family> &List();
  // The family of a font with this PostScript name; empty for none.
  std::u16string OfPostScriptName(std::u16string_view name);

 private:
  std::shared_ptr<const platform::FontFamilies> system_;
  std::vector<Family> list_;
};

// In any case.
bool BeginsWithItalic(std::string_view name);

}  // namespace kapdf
