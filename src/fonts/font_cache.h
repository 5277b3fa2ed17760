// The fonts of a document, each read once.
#pragma once

#include <cstdint>
#include <memory>
#include <unordered_map>

#include "base/settings_table.h"
#include "fonts/document_families.h"
#include "fonts/encoding_folder.h"
#include "fonts/font_object.h"
#include "pdfmodel/locator.h"

namespace kapdf {

struct FontSettings {
  bool useEmbeddedFonts =
      DefaultOf<bool>("UseEmbeddedFonts");  // keep the programs of fonts that match a family of the system, too
  bool useUnicodeMap =
      DefaultOf<bool>("UseUnicodeMap");  // where a program is kept with mapping data, keep the way to Unicode
  int32_t codePage = DefaultOf<int32_t>("CodePage");  // in the definition of a font that implies none
};

// Not for several threads at a time.
class FontCache {
 public:
  FontCache(ObjectLocator &objects, const FontSettings &settings, EncodingFolder encodings = {});

  // Null when the object is a dictionary that is no font (a dictionary of fonts is told from a font by that), or when
  // all fonts in use take too much memory. The document's source is moved.
  std::shared_ptr<const CPDFFontObject> Get(int32_t objectNumber);
  EncodingFolder &encodings() { return encodings_; }

 private:
  struct Entry {
    std::shared_ptr<const CPDFFontObject> font;  // null for what is no font
    size_t memory = 0;
  };
  void DropUnused();

  ObjectLocator &objects_;
  FontSettings settings_;
  EncodingFolder encodings_;
  DocumentFamilies families_;
  std::unordered_map<int32_t, Entry> fonts_;
  size_t memory_ = 0;
  int64_t streamBytes_;  // that may still be decoded
};

}  // namespace kapdf
