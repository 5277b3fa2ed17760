#include "fonts/code_table.h"

#include <algorithm>
#include <numeric>
#include <vector>

namespace kapdf {
namespace {

constexpr uint32_t kCodes = 65536;

// The codes that have no target yet: each one that has points to some code behind it, in the end to the next without.
class FreeCodes {
 public:
  FreeCodes() : next_(kCodes + 1) { std::iota(next_.begin(), next_.end(), 0u); }

  // The first free code at or behind `code`; kCodes when there is none.
  uint32_t From(uint32_t code) {
    while (next_[code] != code) code = next_[code] = next_[next_[code]];
    return code;
  }
  void Occupy(uint32_t code) { next_[code] = code + 1; }

 private:
  std::vector<uint32_t> next_;
};

}  // namespace

std::shared_ptr<CodeTable> MakeCodeTable() {
  auto table = std::make_shared_for_overwrite<CodeTable>();
  table->fill(kNoTarget);
  return table;
}

std::shared_ptr<CodeTable> MakeCodeTable(std::span<const CodeRange> ranges) {
  auto table = MakeCodeTable();
  FreeCodes codes;
  // Backwards, so that each code is written once, however the ranges overlap.
  for (size_t i = ranges.size(); i-- > 0;) {
    const CodeRange &range = ranges[i];
    if (range.first < 0 || static_cast<uint32_t>(range.first) >= kCodes) continue;
    const auto first = static_cast<uint32_t>(range.first);
    const uint32_t end = first + std::min(range.count, kCodes - first);
    for (uint32_t code = codes.From(first); code < end; code = codes.From(code)) {
      (*table)[code] = static_cast<uint16_t>(range.target + (code - first));
      codes.Occupy(code);
    }
  }
  return table;
}

}  // namespace kapdf
