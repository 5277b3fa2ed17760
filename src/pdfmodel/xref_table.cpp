#include "pdfmodel/xref_table.h"

#include <algorithm>
#include <iterator>

namespace kapdf {

void PDFXRef::AddBlock(PDFXRefBlock block) { blocks_.push_back(std::move(block)); }

// Enters what no earlier block holds. The covered ranges that are met become one, so that none is met often.
void PDFXRef::IndexBlock(size_t block) const {
  int64_t first = blocks_[block].firstObject;
  int64_t end = first + blocks_[block].count;
  if (end <= first) return;
  auto next = covered_.upper_bound(first);
  if (next != covered_.begin() && std::prev(next)->second >= first) --next;
  int64_t at = first;
  while (next != covered_.end() && next->first <= end) {
    if (at < next->first) ranges_[at] = {next->first, block};
    at = std::max(at, next->second);
    first = std::min(first, next->first);
    next = covered_.erase(next);
  }
  if (at < end) ranges_[at] = {end, block};
  covered_[first] = std::max(at, end);
}

const PDFXRefBlock *PDFXRef::FindBlock(int32_t objectNumber) const {
  if (indexedBlocks_ == 0) {
    ranges_.clear();
    covered_.clear();
  }
  for (; indexedBlocks_ < blocks_.size(); ++indexedBlocks_) IndexBlock(indexedBlocks_);
  const auto after = ranges_.upper_bound(objectNumber);
  if (after == ranges_.begin()) return nullptr;
  const Range &range = std::prev(after)->second;
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
  indexedBlocks_ = 0;
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
  indexedBlocks_ = 0;
}

}  // namespace kapdf
