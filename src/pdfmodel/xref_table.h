// The cross-reference table of a document, filled by the reader in file order and extended by the writer.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <vector>

namespace kapdf {

struct PDFXRefEntry {
  uint32_t offset = 0;      // byte position; for type '2' the number of the object stream
  uint32_t generation = 0;  // for type '2' the index in the object stream
  uint8_t type = 'f';       // 'n' in use, 'f' free, '2' in an object stream
};

// Consecutive object numbers. `count` is what the section announced; fewer entries may really be there.
struct PDFXRefBlock {
  int32_t firstObject = 0;
  int32_t count = 0;
  std::vector<PDFXRefEntry> entries;
};

// Blocks in the order in which they were added: for a reader the newest section first. The first block that holds a
// number wins.
class PDFXRef {
 public:
  const std::vector<PDFXRefBlock> &blocks() const { return blocks_; }

  void AddBlock(PDFXRefBlock block);
  // The entry of the first block whose announced range holds the number; null when none does, or when that block has no
  // entry at that place.
  const PDFXRefEntry *Find(int32_t objectNumber) const;
  // The largest firstObject + count - 1 over all blocks; -1 for an empty table.
  int32_t HighestObject() const;

  // The writer's side. Numbers are given out in file order, so a number that is reserved ahead of its object needs a
  // placeholder entry at the same place of the sequence.
  //
  // Opens an empty section at `first`. 0 goes on with the last section, or opens section 0 with the free head entry.
  void BeginSection(int32_t first);
  // Adds an entry to the last section and returns the object number that it stands for. A negative generation is stored
  // as 0.
  int32_t Append(uint32_t offset, int32_t generation, uint8_t type);
  // Overwrites offset and type of the entry of a number; a number that no section holds is appended instead.
  void Set(uint32_t offset, int32_t objectNumber, uint8_t type);
  // Copies every section of another table. Sections with fewer entries than announced are padded with free ones.
  void CopyFrom(const PDFXRef &other);

 private:
  const PDFXRefBlock *FindBlock(int32_t objectNumber) const;
  void IndexBlock(size_t block) const;

  std::vector<PDFXRefBlock> blocks_;
  // What each block holds first, as disjoint ranges by their first number: files with one object a section exist.
  struct Range {
    int64_t end;
    size_t block;
  };
  mutable std::map<int64_t, Range> ranges_;
  mutable std::map<int64_t, int64_t> covered_;  // all of them joined, first number to end
  mutable size_t indexedBlocks_ = 0;
};

}  // namespace kapdf
