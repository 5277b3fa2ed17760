// JPEG by libjpeg.
#pragma once

#include <memory>
#include <vector>

#include "io/codec.h"

namespace kapdf {

// What an image is coded as.
struct JpegShape {
  uint32_t bitsPerPixel;  // 8 (grey) or 24 (RGB)
  uint32_t columns;       // pixels of a row
  int quality;            // 1 to 100
};

// Decoding delivers rows of width() * components() interleaved samples of 8 bits. Damaged data deliver the rows that
// are there; libjpeg's warnings are passed over.
class CZVDCT final : public CCompressionClass {
 public:
  // Decodes. `length`, unless it is 0, bounds the coded bytes that are read.
  CZVDCT(CZVBaseIO &io, uint32_t length);
  // Codes.
  CZVDCT(CZVBaseIO &io, const JpegShape &shape);
  ~CZVDCT() override;

  // Reads the header; false when it cannot be read or asks for what is not decoded: other than 1, 3 or 4 components,
  // other than 8 bits, progressive data beyond 1 GiB of coefficients. `Read` opens by itself.
  bool Open();
  // Of the header, 0 before it was read.
  uint32_t width() const;
  uint32_t height() const;
  uint32_t components() const;  // 1 grey, 3 RGB, 4 CMYK
  uint32_t bitsPerComponent() const { return 8; }
  // Whether the data are marked as Adobe's, whose programs store CMYK with 0 for full ink.
  bool adobeMarker() const;
  // Delivers CMYK as 255 minus the stored sample. Off: as stored.
  void SetInvertedCmyk(bool inverted) { invertedCmyk_ = inverted; }

  // Rows that will be written; to be told before the first `Write`.
  void SetHeight(uint32_t height) { rows_ = height; }
  // Ends the image; false as well when rows are missing.
  bool flush() override;
  void reset() override;

 protected:
  size_t compress(const uint8_t *buffer, size_t count) override;
  size_t decompress(uint8_t *buffer, size_t count) override;
  std::string_view name() const override { return "DCT"; }

 private:
  struct Decoder;
  struct Encoder;
  // Both take a number of whole rows and answer with how many went through, 0 on failure or at the end.
  size_t DecodeRows(uint8_t *samples, size_t count);
  size_t EncodeRows(const uint8_t *samples, size_t count);
  bool StartEncoder();

  size_t codedRowBytes() const { return size_t{shape_.columns} * (shape_.bitsPerPixel / 8); }

  CodecMode mode_;
  JpegShape shape_{};
  uint32_t rows_ = 0;
  bool invertedCmyk_ = false;
  std::unique_ptr<Decoder> decoder_;
  std::unique_ptr<Encoder> encoder_;
  std::vector<uint8_t> row_;  // a row that was asked for, or has come, in part
  size_t rowUsed_ = 0;        // bytes of it that were delivered or have come
};

}  // namespace kapdf
