// Lempel, Ziv and Welch's codes of 9 to 12 bits.
#pragma once

#include <memory>

#include "io/row_predictor.h"

namespace kapdf {

// Codes stand with their high bit first; 256 clears the table, 257 ends. A first code that is no clear code is taken as
// if one had come before, a full table stays as it is until it is cleared, a code that the table does not have yet is
// damage.
class CZVLzw final : public RowPredictedCodec {
 public:
  CZVLzw(CZVBaseIO &io, uint32_t length, CodecMode mode = CodecMode::kDecode);
  ~CZVLzw() override;

  // Codes grow by a bit one code earlier than they would have to. On unless told; to be told before the first byte.
  void SetEarlyChange(bool on) { early_ = on ? 1 : 0; }
  bool flush() override;
  void reset() override;

 protected:
  size_t compress(const uint8_t *buffer, size_t count) override;
  size_t DecodePlain(uint8_t *buffer, size_t count) override;
  std::string_view name() const override { return "LZW"; }

 private:
  struct Decoder;
  struct Encoder;
  bool FillBits();
  bool Put(unsigned code);  // codes one code; false when the sink did not take it
  bool PutAndGrow(unsigned code);

  CodecMode mode_;
  unsigned early_ = 1;
  std::unique_ptr<Decoder> decoder_;
  std::unique_ptr<Encoder> encoder_;
};

}  // namespace kapdf
