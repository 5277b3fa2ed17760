// Where an image stands on the page.
#pragma once

#include <cstdint>

#include "geometry/affine.h"

namespace kapdf {

struct Placement {
  double x = 0, y = 0;            // of the lower left corner, mm
  double angle = 0;               // radians
  double scaleX = 1, scaleY = 1;  // of the image's size at its resolution
  uint32_t dpi = 72;
};

// How a matrix, from the unit square to points on the page, places an image of so many pixels. Resolution is the
// smaller one of both directions, rounded, and 72 where there is none.
Placement PlaceImage(const Affine &matrix, uint32_t width, uint32_t height);
// The same for an image inside the content: the resolution is cut to a whole number and may be 0.
Placement PlaceInlineImage(const Affine &matrix, uint32_t width, uint32_t height);

}  // namespace kapdf
