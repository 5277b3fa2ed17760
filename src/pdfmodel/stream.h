// A stream object and the decoder that stands on its data.
#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "base/byte_buffer.h"
#include "io/codec.h"
#include "pdfmodel/locator.h"

namespace kapdf {

// One codec, with at most one ASCII85 stage in front of a Flate stage.
class CPDFStream final : public CPDFObject {
 public:
  explicit CPDFStream(ObjectLocator &objects);

  // Fails for a stream without a known filter or without a length, whose dictionary can be used all the same, and when
  // "stream" does not follow the dictionary.
  bool Parse(uint8_t firstChar) override;

  // Decoded bytes, when fewer than `size` came; 0 when the buffer is full and more may follow, or when nothing came.
  // 1 without a codec.
  uint32_t ReadDecoded(uint8_t *buffer, uint32_t size);
  // One decoded byte; `status` takes the codec's state, or 5 at the end.
  uint8_t ReadByte();
  // Everything that the codec gives, up to the bound for one stream. The source stands at `dataStart`.
  // False when memory ran out or there is no codec.
  bool ReadAll(ByteBuffer &decoded);

  CPDFDictionary *dictionary() const { return dictionary_.get(); }
  // Hands the dictionary over.
  std::unique_ptr<CPDFDictionary> TakeDictionary() { return std::move(dictionary_); }
  CCompressionClass *codec() const { return codec_.get(); }
  bool passThrough() const { return passThrough_; }
  int32_t length() const { return length_; }
  int32_t length1() const { return length1_; }
  // Whether data with a length stand behind the dictionary, which is so even where no codec is known for them.
  bool hasData() const { return hasData_; }
  int64_t dataStart() const { return dataStart_; }
  int32_t predictor() const { return predictor_; }
  int32_t columns() const { return columns_; }
  uint32_t status() const { return status_; }

 private:
  // Value of a number, direct or behind a reference; the reading position is kept. False when the key holds neither.
  bool ReadLength(const char *key, int32_t &value);
  bool MakeCodec();
  bool ReadFlateParameters();
  bool MakeFacsimileCodec();
  bool SkipKeyword();

  ObjectLocator &objects_;
  std::unique_ptr<CPDFDictionary> dictionary_;
  std::unique_ptr<CCompressionClass> codec_;
  bool passThrough_ = false;
  bool plainFlate_ = false;  // Flate with no stage in front of it
  int32_t length_ = 0;
  int32_t length1_ = 0;
  uint32_t status_ = 0;
  bool hasData_ = false;
  int64_t dataStart_ = 0;
  int32_t predictor_ = 0;
  int32_t columns_ = -1;
};

// Undoes the row prediction of cross-reference and object streams in place and gives the bytes that remain. Rows have a
// tag and `columns` bytes. Rows tagged 0 vanish and rows with tags above 2 write nothing, whatever the predictor is
// called: that is how such streams have always been read here.
size_t UndoRows(std::span<uint8_t> bytes, int32_t predictor, int32_t columns);

}  // namespace kapdf
