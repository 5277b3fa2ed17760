// The flat table of a document's pages.
#pragma once

#include <cstdint>
#include <optional>
#include <unordered_set>
#include <vector>

#include "pdfmodel/locator.h"

namespace kapdf {

// Left, right, bottom, top, in points.
struct PageBox {
  double left = 0, right = 0, bottom = 0, top = 0;
};

// Reads a box array: left, bottom, right, top. Missing items are 0; an array of fewer than four changes nothing.
void ReadBox(const CPDFObject *object, PageBox &box);

// `rotate` and `box` are single values, overwritten as the walk goes on: the last node met decides what a page gets
// that says nothing itself.
class PDFPageTree {
 public:
  explicit PDFPageTree(ObjectLocator &objects) : objects_(objects) {}

  // Walks the tree below a node. False when a node could not be read; the pages found up to there count.
  bool Walk(int32_t objectNumber);

  const std::vector<uint32_t> &pageObjects() const { return pageObjects_; }
  double rotate() const { return rotate_; }  // radians
  const PageBox &box() const { return box_; }

 private:
  bool WalkNode(int32_t objectNumber, int depth);
  // Takes a page into the table, or gives the kids of an inner node. False for a node that cannot be read.
  bool ReadNode(int32_t objectNumber, std::vector<int32_t> &kids, std::optional<double> &angle);
  bool ReadKids(const CPDFObject *object, std::vector<int32_t> &kids);

  ObjectLocator &objects_;
  std::vector<uint32_t> pageObjects_;
  std::unordered_set<int32_t> walked_;  // inner nodes
  double rotate_ = 0;
  PageBox box_;
};

}  // namespace kapdf
