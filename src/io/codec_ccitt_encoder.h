// Codes packed rows so that each one refers to the row above it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "io/base_io.h"
#include "io/codec_ccitt_rows.h"
#include "io/codec_ccitt_tables.h"

namespace kapdf::ccitt {

// Takes 1 to 13 bits at a time, the last ones of a number, gathered to bytes and handed over in large pieces.
class BitWriter {
 public:
  explicit BitWriter(CZVBaseIO &sink) : sink_(sink), bytes_(kPieceBytes) {}

  void Put(uint64_t bits, unsigned count) {
    if (count > room_) [[unlikely]] {
      Spill(bits, count);
      return;
    }
    room_ -= count;
    window_ |= bits << room_;
  }
  void Put(Code code) { Put(code.bits, code.count); }
  // Hands over all, padded to a byte. False when the sink did not take some byte.
  bool Finish();
  bool good() const { return good_; }

 private:
  void Spill(uint64_t bits, unsigned count);
  void HandOver();

  CZVBaseIO &sink_;
  std::vector<uint8_t> bytes_;
  size_t used_ = 0;
  uint64_t window_ = 0;
  unsigned room_ = 64;
  bool good_ = true;
};

class Encoder {
 public:
  Encoder(CZVBaseIO &sink, int32_t columns);

  // False when the sink did not take what was handed over.
  bool Write(const uint8_t *rows, size_t count);
  // Fills up a row that was begun, and ends the data.
  bool Finish();

 private:
  void EncodeRow(const uint8_t *packed);

  BitWriter out_;
  ChangeRow rows_[2];
  int current_ = 0;
  size_t rowBytes_;
  std::vector<uint8_t> part_;  // of a row whose end is not there yet
};

}  // namespace kapdf::ccitt
