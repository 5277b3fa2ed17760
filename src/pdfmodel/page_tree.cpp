#include "pdfmodel/page_tree.h"

#include <cmath>
#include <numbers>

#include "base/limits.h"

namespace kapdf {

void ReadBox(const CPDFObject *object, PageBox &box) {
  const auto *list = dynamic_cast<const CPDFArray *>(object);
  if (!list || list->Count() < 4) return;
  const auto item = [&](uint32_t index) {
    const auto *number = dynamic_cast<const CPDFNumeric *>(list->GetAt(index));
    return number && std::isfinite(number->realValue) ? number->realValue : 0.0;
  };
  box = {item(0), item(2), item(1), item(3)};
}

bool PDFPageTree::Walk(int32_t objectNumber) { return WalkNode(objectNumber, 0); }

// What a node holds is gone before its kids are walked: they may be many, and the way down is long.
bool PDFPageTree::WalkNode(int32_t objectNumber, int depth) {
  std::vector<int32_t> kids;
  std::optional<double> angle;
  bool read = depth < limits::kPageTreeDepth && ReadNode(objectNumber, kids, angle);
  // One kid that cannot be read ends the walk: later siblings are lost.
  for (size_t i = 0; i < kids.size() && read; ++i) read = WalkNode(kids[i], depth + 1);
  if (angle) rotate_ = *angle;
  return read;
}

bool PDFPageTree::ReadNode(int32_t objectNumber, std::vector<int32_t> &kids, std::optional<double> &angle) {
  uint8_t firstChar;
  int32_t foundNumber;
  if (!OpenObject(objects_, objectNumber, firstChar, &foundNumber)) return false;
  CPDFDictionary node(objects_.source());
  if (!node.Parse(firstChar)) return false;
  ReadBox(node.Get("MediaBox"), box_);
  ReadBox(node.Get("CropBox"), box_);
  const auto *type = node.GetAs<CPDFNameObject>("Type");
  if (!type) return false;
  if (type->name == "Page") {
    if (pageObjects_.size() >= limits::kPages) return false;
    pageObjects_.push_back(static_cast<uint32_t>(foundNumber));
    return true;
  }
  if (type->name != "Pages" || !walked_.insert(objectNumber).second) return false;
  if (const auto *number = node.GetAs<CPDFNumeric>("Rotate"))
    angle = number->realValue / 360.0 * 2.0 * std::numbers::pi;
  return ReadKids(node.Get("Kids"), kids);
}

// False when a list behind a reference cannot be read. Items that are no references are passed over.
bool PDFPageTree::ReadKids(const CPDFObject *object, std::vector<int32_t> &kids) {
  CPDFArray fetched(objects_.source());
  const auto *list = dynamic_cast<const CPDFArray *>(object);
  if (const auto *reference = dynamic_cast<const CPDFIndirectObject *>(object)) {
    uint8_t firstChar;
    if (!OpenObject(objects_, reference->objectNumber, firstChar) || !fetched.Parse(firstChar)) return false;
    list = &fetched;
  }
  for (uint32_t i = 0; list && i < list->Count(); ++i) {
    if (const auto *kid = dynamic_cast<const CPDFIndirectObject *>(list->GetAt(i))) kids.push_back(kid->objectNumber);
  }
  return true;
}

}  // namespace kapdf
