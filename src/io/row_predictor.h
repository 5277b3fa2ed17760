// Row prediction behind a codec.
#pragma once

#include "base/byte_buffer.h"
#include "io/codec.h"

namespace kapdf {

// A codec whose decoded rows may have been predicted before they were coded. Delivers them restored, in reads of any
// size; a last row that is cut is delivered as far as it goes. Without a predictor, or with a shape that no image has
// (no columns, above 256 colours, other than 1, 2, 4, 8 or 16 bits, a row above the bound of decoded streams), the
// decoded bytes pass as they are. Memory grows with the rows that really come.
class RowPredictedCodec : public CCompressionClass {
 public:
  using CCompressionClass::CCompressionClass;
  void UsePredictor(uint8_t predictor) override;
  void SetSampleShape(const SampleShape &shape) override;
  void reset() override;

 protected:
  size_t decompress(uint8_t *buffer, size_t count) final;
  // The decoded bytes as they stand in the coded data. A short answer sets the state.
  virtual size_t DecodePlain(uint8_t *buffer, size_t count) = 0;

 private:
  void Configure();
  bool FillRows();     // restores the next rows; false at the end
  size_t FetchRows();  // decodes as much as `predicted_` is to hold, gives the bytes
  void RestoreRow(const uint8_t *in, size_t count, uint8_t *out, const uint8_t *above) const;

  uint8_t predictor_ = 1;
  SampleShape shape_;
  size_t rowBytes_ = 0;    // of a restored row, 0 when nothing is to be done
  size_t pixelBytes_ = 1;  // distance to the left neighbour
  ByteBuffer predicted_;   // rows as they were decoded, with their tags when PNG's
  ByteBuffer rows_;        // the row above, then the restored ones
  size_t next_ = 0;        // what `rows_` still has to deliver
  size_t end_ = 0;
  bool hasAbove_ = false;
  unsigned ended_ = kCodecOk;  // the state to tell when the restored rows are delivered
};

}  // namespace kapdf
