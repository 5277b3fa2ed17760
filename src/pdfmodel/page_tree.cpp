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

int PDFPageTree::Walk(int32_t objectNumber) { return WalkNode(objectNumber, 0); }

int PDFPageTree::WalkNode(int32_t objectNumber, int depth) {
  uint8_t firstChar;
  if (depth >= limits::kPageTreeDepth || !OpenObject(objects_, objectNumber, firstChar)) return -1;
  CPDFDictionary node(objects_.source());
  if (node.Parse(firstChar) != 0) return -1;
  ReadBox(node.Get("MediaBox"), box_);
  ReadBox(node.Get("CropBox"), box_);
  const auto *type = node.GetAs<CPDFNameObject>("Type");
  if (!type) return -1;
  if (type->name == "Page") {
    if (pageObjects_.size() >= limits::kPages) return -1;
    pageObjects_.push_back(static_cast<uint32_t>(objectNumber));
    return 0;
  }
  if (type->name != "Pages" || !walked_.insert(objectNumber).second) return -1;

  int result = 0;
  if (const auto *kids = node.GetAs<CPDFArray>("Kids")) {
    result = WalkKids(*kids, depth);
  } else if (const auto *reference = node.GetAs<CPDFIndirectObject>("Kids")) {
    CPDFArray list(objects_.source());
    result = -1;
    if (OpenObject(objects_, reference->objectNumber, firstChar) && list.Parse(firstChar) == 0) result = WalkKids(list, depth);
  }
  if (const auto *angle = node.GetAs<CPDFNumeric>("Rotate")) rotate_ = angle->realValue / 360.0 * 2.0 * std::numbers::pi;
  return result;
}

// One kid that cannot be read ends the walk: later siblings are lost.
int PDFPageTree::WalkKids(const CPDFArray &kids, int depth) {
  for (uint32_t i = 0; i < kids.Count(); ++i) {
    const auto *kid = dynamic_cast<const CPDFIndirectObject *>(kids.GetAt(i));
    if (kid && WalkNode(kid->objectNumber, depth + 1) != 0) return -1;
  }
  return 0;
}

}  // namespace kapdf
