// Counts of elements as a sentence for people.
#pragma once

#include <cstdint>
#include <map>
#include <string>

namespace kapdf::tool {

class KindCounts {
 public:
  void Count(uint32_t kind, uint64_t by = 1) { counts_[kind] += by; }
  void Add(const KindCounts &other) {
    for (const auto &[kind, count] : other.counts_) Count(kind, count);
  }
  // "3 layers, 1 line, 20 polylines"; "nothing" when there are none.
  std::string Tell() const;
  bool empty() const { return counts_.empty(); }

 private:
  std::map<uint32_t, uint64_t> counts_;
};

}  // namespace kapdf::tool
