// A PNG picture beside a drawing as the header and the rows of a raster.
#pragma once

#include <string>
#include <vector>

#include "kapdf/kapdf.h"
#include "pictures/png_reader.h"
#include "system/outcome.h"

namespace kapdf::tool {

// Black of a bilevel picture is what paints; the runs are always ink. A raster with a mask becomes RGB, white where it
// is hidden, since the module's four samples a pixel are inks. A header without a palette takes the picture's.
class PictureRows {
 public:
  // `name` is what the drawing calls the file. The header's payload is replaced by one that lives as long as the
  // object.
  Outcome Open(const std::filesystem::path &path, const std::string &name, ElementRecord &header);
  // Makes `record` the next row, which stays until the next one is asked for.
  Outcome Next(ElementRecord &record);

 private:
  void SetPalette(const void *given);
  void SetRuns();

  std::string name_;
  PngReader png_;
  RasterHeaderPayload header_{};
  bool bilevel_ = false;
  std::vector<uint8_t> palette_, row_;
  std::vector<uint32_t> runs_;
};

}  // namespace kapdf::tool
