// Reads a font dictionary into a font object.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "fonts/document_families.h"
#include "fonts/encoding_folder.h"
#include "fonts/font_cache.h"
#include "fonts/font_object.h"
#include "fonts/font_program.h"
#include "pdfmodel/locator.h"

namespace kapdf {

// For one font. What is missing or damaged leaves the font with what it had.
class FontLoader {
 public:
  FontLoader(ObjectLocator &objects, const FontSettings &settings, EncodingFolder &encodings,
             DocumentFamilies &families, int64_t &streamBytes, CPDFFontObject &font)
      : objects_(objects),
        settings_(settings),
        encodings_(encodings),
        families_(families),
        streamBytes_(streamBytes),
        font_(font) {}

  // False for a dictionary that is no font, and when there is no such object. An object that is no dictionary is an
  // empty font.
  bool Load(int32_t objectNumber);

 private:
  bool IsFont() const;
  bool IsSimple() const;
  bool TakesPairsOnly() const;
  void ReadParts();
  void ReadEncoding();
  void ReadDifferences(const CPDFArray &differences);
  void ReadToUnicode();
  void ReadEncodingFile();
  bool GoToDescendant();
  void ReadSimpleWidths(bool glyphProcedures);
  void ReadCidWidths();
  void MapWidthsToCodes();
  void SetWidths(int64_t first, int64_t last, double width);
  void ReadCidToGid();
  void ReadCharacterCollection();
  void ReadDescriptor();

  void FindFamily();
  // Searches the families in a name; blanks in theirs count as the separator, or not at all when there is none.
  bool MatchFamily(std::string_view name, std::string_view separator);
  void TakeLook(const std::u16string &family, int32_t emPixels);
  void FindByPostScriptName();

  void UseProgram(std::span<const uint8_t> bytes);
  void ReadCmap(std::span<const uint8_t> bytes);
  // Puts the program behind the definition, `size` bytes of it counted.
  void KeepProgram(std::span<const uint8_t> bytes, size_t size);
  // The glyphs of UTF-16 units, for the host; false when the font tells nothing of them.
  bool FillMapping(FontProgram &program, uint8_t *mapping);
  uint16_t NamedGlyph(FontProgram &program, uint32_t code);
  void Define();

  // The value of a key of that type, direct or behind a reference, which `fetched` then keeps; null for any other.
  template <class T>
  const T *Value(const char *key, std::unique_ptr<CPDFObject> &fetched) {
    return dynamic_cast<const T *>(Follow(objects_, dictionary_->Get(key), fetched));
  }
  // A finite number, direct or behind a reference.
  std::optional<double> Number(const CPDFObject *value);
  // The decoded bytes of a stream; false when it cannot be read.
  bool ReadStream(const CPDFIndirectObject &reference, ByteBuffer &bytes);

  ObjectLocator &objects_;
  const FontSettings &settings_;
  EncodingFolder &encodings_;
  DocumentFamilies &families_;
  int64_t &streamBytes_;  // that the document may still have decoded for its fonts
  CPDFFontObject &font_;

  std::unique_ptr<CPDFObject> own_;
  std::unique_ptr<CPDFObject> ownDescendants_, ownDescendant_;
  const CPDFDictionary *dictionary_ = nullptr;
  std::string baseFont_;
  std::string face_;       // in the system's code page
  bool matched_ = false;   // with a family of the system
  bool embedded_ = false;  // the program is a font and stays
  bool toUnicode_ = false;
  int row_ = -1;                                 // of the table of encodings
  std::string_view prefix_;                      // of numbered glyph names in Differences
  std::shared_ptr<const CodeTable> cids_;        // of a predefined encoding's codes
  std::shared_ptr<const CodeTable> collection_;  // from CIDs to Unicode
  std::shared_ptr<const CodeTable> cidOfCode_;   // where characters and widths go through it
  int64_t widthsSet_ = 0;
};

}  // namespace kapdf
