// JPEG 2000 by OpenJPEG, decoding only.
#pragma once

#include <vector>

#include "io/codec.h"

namespace kapdf {

// Takes JP2 files and bare code streams. Delivers rows of width() * components() interleaved samples of 8 bits: other
// depths are scaled, sub-sampled bands widened, luma and chroma turned into RGB, palettes applied and opacity left out.
// The image is decoded as a whole by `Open` or the first `Read` and kept: `reset` goes back to its first row and leaves
// the source alone. A truncated image delivers what is there.
class CZVJP2000 final : public CCompressionClass {
 public:
  // `length`: coded bytes, 0 for all that the source has.
  CZVJP2000(CZVBaseIO &io, uint32_t length) : CCompressionClass(io, length) {}

  // Before the image is decoded. Colour bands that the page's colour space has, 0 for as many as the file tells: four
  // bands that no file calls CMYK are RGB and opacity otherwise.
  void SetColorBands(uint32_t bands) { colorBands_ = bands; }
  // Samples are indexes of the page's palette: one band, not scaled, the file's own palette left alone.
  void SetIndexed(bool indexed) { indexed_ = indexed; }
  // Samples of all bands together beyond which an image is refused.
  void SetMostSamples(uint64_t samples) { mostSamples_ = samples; }

  // Decodes; false when there is no image or it is too large.
  bool Open();
  // Pixels and samples of a pixel (1 grey, 3 RGB, 4 CMYK), 0 before the image was decoded.
  uint32_t width() const { return width_; }
  uint32_t height() const { return height_; }
  uint32_t components() const { return components_; }
  void reset() override;

 protected:
  size_t compress(const uint8_t *, size_t) override { return 0; }
  size_t decompress(uint8_t *buffer, size_t count) override;
  std::string_view name() const override { return "JPEG 2000"; }

 private:
  void Decode();

  uint32_t colorBands_ = 0;
  bool indexed_ = false;
  uint64_t mostSamples_ = uint64_t{1} << 28;  // the library keeps four bytes for each
  bool decoded_ = false;
  uint32_t width_ = 0, height_ = 0, components_ = 0;
  std::vector<uint8_t> samples_;
  size_t used_ = 0;  // bytes of it that were delivered
};

}  // namespace kapdf
