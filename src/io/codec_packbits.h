// Runs of equal bytes.
#pragma once

#include "io/codec.h"

namespace kapdf {

// A byte n of 0 to 127 is followed by n + 1 bytes as they are, one of 129 to 255 by one byte that stands 257 - n times;
// 128 or the end of the source ends.
class CZVPackBits final : public CCompressionClass {
 public:
  using CCompressionClass::CCompressionClass;
  bool flush() override;
  void reset() override;

 protected:
  size_t compress(const uint8_t *buffer, size_t count) override;
  size_t decompress(uint8_t *buffer, size_t count) override;
  std::string_view name() const override { return "PackBits"; }

 private:
  bool StartRun();     // reads what a run begins with; false at the end
  bool PutLiterals();  // the two ways out; false when the sink did not take it
  bool PutRun();

  size_t left_ = 0;       // decoding: bytes of the run to come
  bool repeats_ = false;  // the run is one byte again and again
  uint8_t byte_ = 0;      // the byte of the run, both ways
  size_t run_ = 0;        // coding: times that it came last
  size_t literals_ = 0;   // bytes in front of the run that stay as they are
  uint8_t held_[129];     // room for the count in front of them
};

}  // namespace kapdf
