#include "io/codec_ccitt_encoder.h"

#include <algorithm>
#include <bit>

#include "base/bytes.h"

namespace kapdf::ccitt {
namespace {

// Behind `end`, the positions in the word's 64 pixels where the bits of `changes` are set.
inline int32_t *AddChanges(uint64_t changes, int32_t position, int32_t *end) {
  while (changes != 0) {
    const int zeros = std::countl_zero(changes);
    *end++ = position + zeros;
    changes &= ~(uint64_t{1} << 63 >> zeros);
  }
  return end;
}

void FindChanges(const uint8_t *packed, size_t rowBytes, ChangeRow &row) {
  int32_t *end = row.at();
  uint64_t before = 0;  // the last pixel of the word before, as the first bit
  int32_t position = 0;
  for (; rowBytes >= 8; rowBytes -= 8, packed += 8, position += 64) {
    const uint64_t word = LoadWord(packed);
    end = AddChanges(word ^ (word >> 1 | before), position, end);
    before = word << 63;
  }
  if (rowBytes > 0) {
    const uint64_t word = LoadBigEndian(packed, static_cast<unsigned>(rowBytes)) << (64 - 8 * rowBytes);
    // The word's end looks white and may add one change there, which is none as it lies behind the row.
    end = AddChanges(word ^ (word >> 1 | before), position, end);
  }
  row.End(end);
}

inline void PutRun(BitWriter &out, bool black, int32_t run) {
  const auto &codes = kRunCodesOf[black];
  for (; run >= kLongestRunCode + 64; run -= kLongestRunCode) out.Put(codes[RunCodeIndex(kLongestRunCode)]);
  if (run >= 64) out.Put(codes[RunCodeIndex(run)]);
  out.Put(codes[static_cast<size_t>(run & 63)]);
}

void PutRow(BitWriter &out, const ChangeRow &aboveRow, const ChangeRow &row) {
  const int32_t columns = row.columns();
  const int32_t *above = aboveRow.at(), *change = row.at();
  for (int32_t here = 0; here < columns;) {
    const int32_t distance = *change - *above;
    if (above[1] < *change) {
      out.Put(kPassCode);
      here = above[1];
      above += 2;
    } else if (distance >= -3 && distance <= 3) {
      out.Put(kVerticalCodes[distance + 3]);
      here = *change++;
      above += distance < 0 ? -1 : 1;
    } else {
      const bool black = ((change - row.at()) & 1) != 0;
      out.Put(kHorizontalCode);
      PutRun(out, black, change[0] - here);
      PutRun(out, !black, change[1] - change[0]);
      here = change[1];
      change += 2;
    }
    while (*above <= here) above += 2;
  }
}

}  // namespace

void BitWriter::Spill(uint64_t bits, unsigned count) {
  const unsigned later = count - room_;
  window_ |= bits >> later;
  StoreBigEndian(bytes_.data() + used_, window_, 8);
  used_ += 8;
  if (used_ == bytes_.size()) HandOver();
  room_ = 64 - later;
  window_ = bits << room_;
}

void BitWriter::HandOver() {
  good_ = good_ && sink_.Write(bytes_.data(), used_) == used_;
  used_ = 0;
}

bool BitWriter::Finish() {
  StoreBigEndian(bytes_.data() + used_, window_, 8);
  used_ += (64 - room_ + 7) / 8;
  HandOver();
  return good_;
}

Encoder::Encoder(CZVBaseIO &sink, int32_t columns)
    : out_(sink), rows_{ChangeRow(columns), ChangeRow(columns)}, rowBytes_((static_cast<size_t>(columns) + 7) / 8) {
  part_.reserve(rowBytes_);
}

void Encoder::EncodeRow(const uint8_t *packed) {
  const ChangeRow &above = rows_[current_];
  current_ = 1 - current_;
  FindChanges(packed, rowBytes_, rows_[current_]);
  PutRow(out_, above, rows_[current_]);
}

bool Encoder::Write(const uint8_t *rows, size_t count) {
  while (count > 0) {
    if (part_.empty() && count >= rowBytes_) {
      EncodeRow(rows);
      rows += rowBytes_;
      count -= rowBytes_;
      continue;
    }
    const size_t taken = std::min(count, rowBytes_ - part_.size());
    part_.insert(part_.end(), rows, rows + taken);
    rows += taken;
    count -= taken;
    if (part_.size() < rowBytes_) break;
    EncodeRow(part_.data());
    part_.clear();
  }
  return out_.good();
}

bool Encoder::Finish() {
  if (!part_.empty()) {
    part_.resize(rowBytes_);
    EncodeRow(part_.data());
  }
  out_.Put(kEndOfLine);
  out_.Put(kEndOfLine);
  return out_.Finish();
}

}  // namespace kapdf::ccitt
