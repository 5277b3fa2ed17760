// Rasters as the import gives them, in the forms that the export takes.
#pragma once

#include <vector>

#include "kapdf/kapdf.h"

namespace kapdf::tool {

bool IsBilevel(const RasterHeaderPayload &header);

// What is transparent becomes white, since the module writes no masks, and the runs of a bilevel raster the ink. One
// row is kept.
class RasterForExport {
 public:
  // Changes the header in place; its payload then belongs to this object. False for one without a payload.
  bool Open(ElementRecord &header);
  // Changes a row of that raster likewise.
  void Convert(ElementRecord &row);

 private:
  void Flatten(ElementRecord &row);
  void InvertRuns(ElementRecord &row);

  RasterHeaderPayload header_{};
  bool masked_ = false, inverted_ = false;
  std::vector<uint8_t> palette_, bytes_;
  std::vector<uint32_t> runs_;
};

}  // namespace kapdf::tool
