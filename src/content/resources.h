// What the operators of a content may name, and the line styles that its dashes have made.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "kapdf/kapdf.h"
#include "pdfmodel/locator.h"

namespace kapdf {

// Graphics state parameters. A value that its dictionary does not hold is 0.
struct ExtGState {
  double alpha = 0;      // `ca`
  double lineWidth = 0;  // `LW`, PDF units
};

// The resources of one page or form. Each table is read when something in it is first asked for.
class PageResources {
 public:
  // `owner`: the page or stream dictionary whose `Resources` counts, or null; it must outlive the object. Resources of
  // the tree above a page are not looked at.
  PageResources(ObjectLocator &objects, const CPDFDictionary *owner) : objects_(objects), owner_(owner) {}

  // Null when this holder has none of that name. The first of equal names counts.
  const ExtGState *FindExtGState(std::string_view name);

 private:
  const CPDFDictionary *Dictionary();
  void LoadExtGStates();
  // Nothing when the object is no dictionary or holds neither value.
  std::optional<ExtGState> ReadExtGState(const CPDFIndirectObject &reference);

  ObjectLocator &objects_;
  const CPDFDictionary *owner_;
  std::unique_ptr<CPDFDictionary> ownDictionary_;  // `Resources` when it came through a reference
  const CPDFDictionary *dictionary_ = nullptr;
  bool dictionaryRead_ = false;
  bool extGStatesRead_ = false;
  std::unordered_map<std::string, ExtGState> extGStates_;
};

// The dash patterns of one content, named in the order in which they came.
class LineStyles {
 public:
  struct Entry {
    std::u16string name;  // "D1", "D2", ...
    std::string pattern;
  };
  // The style of a dash pattern's text, and whether it is new. The pattern is the text between the brackets. The
  // pointer stays valid as long as the object lives.
  std::pair<const Entry *, bool> Find(std::string_view pattern);

 private:
  std::unordered_map<std::string, std::unique_ptr<Entry>> entries_;
};

// Fills a line type's definition from a dash pattern in PDF units: dashes above zero, gaps below. More segments than
// the structure holds are counted and not stored.
void FillLineType(std::string_view pattern, LineTypeDefPayload &lineType);

}  // namespace kapdf
