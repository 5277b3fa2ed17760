// One row of facsimile data, as the positions where its colour changes.
#pragma once

#include <climits>
#include <cstddef>
#include <cstdint>
#include <memory>

#include "io/codec_ccitt_bits.h"

namespace kapdf::ccitt {

// The positions rise; the first one, and then every other one, starts black pixels. Behind the last one stands the
// row's end several times, so that a row which refers to this one may look there, and values that are beyond any
// position; ahead of the first one stands 0. The memory is not touched beyond what rows need.
class ChangeRow {
 public:
  explicit ChangeRow(int32_t columns)
      : columns_(columns), memory_(std::make_unique_for_overwrite<int32_t[]>(static_cast<size_t>(columns) + 16)) {
    memory_[0] = 0;
    End(at());
  }

  int32_t columns() const { return columns_; }
  int32_t *at() { return memory_.get() + 1; }
  const int32_t *at() const { return memory_.get() + 1; }
  size_t count() const { return count_; }

  // `end`: behind the last change. Changes at or behind the row's end are none.
  void End(int32_t *end) {
    while (end != at() && end[-1] >= columns_) --end;
    count_ = static_cast<size_t>(end - at());
    for (int i = 0; i < 4; ++i) *end++ = columns_;
    end[0] = end[1] = INT_MAX;
  }

 private:
  int32_t columns_;
  std::unique_ptr<int32_t[]> memory_;
  size_t count_ = 0;
};

// Each reads one row and leaves the input behind it. False for a row that broke off at bits which are no code, where
// the input then stands, or that did not end at the row's end; the rest of it is white, what is too long is cut.
bool ReadRow1D(BitReader &input, ChangeRow &row);
bool ReadRow2D(BitReader &input, const ChangeRow &above, ChangeRow &row);

}  // namespace kapdf::ccitt
