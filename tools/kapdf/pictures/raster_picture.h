// A raster of the module as a PNG picture.
#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "kapdf/kapdf.h"
#include "pictures/png_writer.h"

namespace kapdf::tool {

// Bilevel: the runs are ink unless the header says that they are ground. Palette entries with flags 255 and pixels
// whose fourth byte is 255 are transparent. No more than a row is kept.
class RasterPicture {
 public:
  // Whether the header tells of a picture that PNG can hold.
  static bool Suits(const ElementRecord &header);
  // Null when it does not, or memory is out. `ink`: the packed colour of a bilevel raster, whose
  // ground is then transparent; without it the ink is black and the ground white.
  static std::unique_ptr<RasterPicture> Begin(const ElementRecord &header, std::optional<uint32_t> ink,
                                              PngWriter::Sink sink);
  // Rows beyond the header's height are left out, bytes that a row lacks are zero.
  bool AddRow(const ElementRecord &record);
  // Rows that did not come are ground, or zero.
  bool Finish();

 private:
  explicit RasterPicture(PngWriter::Sink sink) : png_(std::move(sink)) {}
  bool Put();
  void SetRuns(const ElementRecord &record);

  PngWriter png_;
  PngShape shape_;
  bool inkBit_ = false;    // how ink stands in a bilevel row
  bool inverted_ = false;  // the runs are ground
  std::vector<uint8_t> row_;
  uint32_t rows_ = 0;
};

}  // namespace kapdf::tool
