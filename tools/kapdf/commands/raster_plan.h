// Which raster of a drawing a placement shows, and in which order the rasters go out.
#pragma once

#include <unordered_map>

#include "jsonl/drawing.h"

namespace kapdf::tool {

// The module knows images and placements to belong together by the order of arrival: the first identity that is placed
// is the first image. So the images go in the order in which they are placed first, each under one identity.
//
// A placement shows the raster whose header follows it. Without one it shows the raster of its `imageKey`, or of its
// name.
struct RasterPlan {
  struct Image {
    size_t header;     // index of the record
    size_t rowsEnd;    // index behind the rows, which follow the header
    uint64_t key = 0;  // the drawing's own where it has one that is not taken
  };
  std::vector<Image> images;                  // those that nothing places come last
  std::unordered_map<size_t, size_t> placed;  // index of the placement to index of the image
};

RasterPlan PlanRasters(const Drawing &drawing);

}  // namespace kapdf::tool
