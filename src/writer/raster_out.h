// The rows of one raster of the host, on their way into an image.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "io/codec.h"
#include "kapdf/kapdf.h"
#include "writer/write_options.h"

namespace kapdf {

enum class RasterMode { kBilevel, kPalette, kRgb, kCmyk };

struct RasterShape {
  // Nothing when the header is of no form that can be written: an unknown pixel type (its upper half are hints), a side
  // of no pixels or of too many. A resolution of 0 is 300. Grey palettes are palettes like any other.
  static std::optional<RasterShape> Of(const ElementRecord &header);

  uint32_t samplesPerPixel() const;
  uint32_t bitsPerSample() const { return mode == RasterMode::kBilevel ? 1 : 8; }

  RasterMode mode = RasterMode::kBilevel;
  uint32_t width = 0, height = 0;  // pixels
  uint32_t dpi = 0;
  std::vector<uint8_t> palette;  // three bytes an entry; empty when the header has none
};

enum class RasterCoding { kNone, kCcitt, kLzw, kDct };

RasterCoding CodingOf(RasterMode mode, const WriteSettings &settings);

// False for what has more rows or columns than the coding knows.
bool Carries(RasterCoding coding, const RasterShape &shape);

// Codes rows as they come; no more than one is held. DCT gets three samples a pixel: palettes are looked up, a missing
// one is the ramp from black to white, CMYK is converted.
class RasterOut {
 public:
  // `file` is borrowed; the coded data start at its position.
  RasterOut(CZVBaseIO &file, RasterShape shape, RasterCoding coding, int32_t quality);

  // A row's bytes, those behind its last pixel left out; of a bilevel raster a list of runs or one byte a pixel, what
  // is set paints. `FilterBadRaster`: the row is too short or of no known form, and does not count; or it was not
  // taken.
  uint32_t AddRow(const ElementRecord &record);
  // Ends the coded data, whether or not all rows have come.
  void Finish() { codec_->flush(); }

  bool complete() const { return rows_ >= shape_.height; }
  double fraction() const { return static_cast<double>(rows_) / shape_.height; }

 private:
  bool PackRow(const uint8_t *row, size_t bytes);
  bool PackRuns(const uint8_t *row, size_t bytes);
  void ExpandPalette(const uint8_t *row);
  void ConvertCmyk(const uint8_t *row);

  RasterShape shape_;
  bool expand_;  // to three samples a pixel
  std::unique_ptr<CCompressionClass> codec_;
  std::vector<uint8_t> row_;  // as the codec takes it, when that is not what the host gives
  uint32_t rows_ = 0;
};

}  // namespace kapdf
