#include "pdfmodel/xref_table.h"

#include <algorithm>
#include <queue>

namespace kapdf {

void PDFXRef::AddBlock(PDFXRefBlock block) { blocks_.push_back(std::move(block)); }

namespace {

struct Boundary {
  int64_t at;
  bool opens;
  size_t block;
};

}  // namespace

// Sweeps over the ends of all blocks and keeps, between two ends, the first block that is open there. The result is a list
// of disjoint ranges in ascending order, so that a lookup is one binary search whatever the number of sections.
const PDFXRefBlock *PDFXRef::FindBlock(int32_t objectNumber) const {
  if (rangedBlocks_ != blocks_.size()) {
    std::vector<Boundary> ends;
    for (size_t i = 0; i < blocks_.size(); ++i) {
      if (blocks_[i].count < 1) continue;
      ends.push_back({blocks_[i].firstObject, true, i});
      ends.push_back({int64_t{blocks_[i].firstObject} + blocks_[i].count, false, i});
    }
    std::sort(ends.begin(), ends.end(), [](const Boundary &a, const Boundary &b) { return a.at < b.at; });
    ranges_.clear();
    std::priority_queue<size_t, std::vector<size_t>, std::greater<>> open;
    std::vector<bool> closed(blocks_.size());
    for (size_t i = 0; i < ends.size();) {
      const int64_t at = ends[i].at;
      for (; i < ends.size() && ends[i].at == at; ++i) {
        if (ends[i].opens) open.push(ends[i].block);
        else closed[ends[i].block] = true;
      }
      while (!open.empty() && closed[open.top()]) open.pop();
      if (!ranges_.empty()) ranges_.back().end = std::min(ranges_.back().end, at);
      if (!open.empty()) ranges_.push_back({at, int64_t{1} << 40, open.top()});
    }
    rangedBlocks_ = blocks_.size();
  }
  auto after = std::upper_bound(ranges_.begin(), ranges_.end(), int64_t{objectNumber},
                                [](int64_t number, const Range &range) { return number < range.first; });
  if (after == ranges_.begin()) return nullptr;
  const Range &range = *--after;
  return objectNumber < range.end ? &blocks_[range.block] : nullptr;
}

const PDFXRefEntry *PDFXRef::Find(int32_t objectNumber) const {
  if (objectNumber < 0) return nullptr;
  const PDFXRefBlock *block = FindBlock(objectNumber);
  if (!block) return nullptr;
  const auto index = static_cast<size_t>(int64_t{objectNumber} - block->firstObject);
  return index < block->entries.size() ? &block->entries[index] : nullptr;
}

int32_t PDFXRef::HighestObject() const {
  int64_t highest = -1;
  for (const PDFXRefBlock &block : blocks_) highest = std::max(highest, int64_t{block.firstObject} + block.count - 1);
  return static_cast<int32_t>(std::min<int64_t>(highest, INT32_MAX));
}

void PDFXRef::BeginSection(int32_t first) {
  if (first != 0) {
    blocks_.push_back({first, 0, {}});
  } else if (blocks_.empty()) {
    blocks_.push_back({0, 1, {{0, 65535, 'f'}}});
  }
}

int32_t PDFXRef::Append(uint32_t offset, int32_t generation, uint8_t type) {
  if (blocks_.empty()) blocks_.push_back({});
  PDFXRefBlock &last = blocks_.back();
  last.entries.push_back({offset, generation < 0 ? 0u : static_cast<uint32_t>(generation), type});
  rangedBlocks_ = 0;
  return last.firstObject + last.count++;
}

void PDFXRef::Set(uint32_t offset, int32_t objectNumber, uint8_t type) {
  // The number is almost always one of the section that is being written.
  for (auto block = blocks_.rbegin(); block != blocks_.rend(); ++block) {
    const int64_t index = int64_t{objectNumber} - block->firstObject;
    if (index < 0 || index >= static_cast<int64_t>(block->entries.size())) continue;
    block->entries[static_cast<size_t>(index)].offset = offset;
    block->entries[static_cast<size_t>(index)].type = type;
    return;
  }
  Append(offset, 0, type);
}

void PDFXRef::CopyFrom(const PDFXRef &other) {
  for (PDFXRefBlock block : other.blocks_) {
    block.entries.resize(static_cast<size_t>(std::max(block.count, 0)));
    blocks_.push_back(std::move(block));
  }
  rangedBlocks_ = 0;
}

}  // namespace kapdf
