// Where a page lies on its sheet, and at what scale.
#pragma once

#include "base/units.h"
#include "kapdf/kapdf.h"

namespace kapdf {

struct PageLayout {
  double xmin = 0, ymin = 0, xmax = 0, ymax = 0;  // sheet, millimetres, relative to the origin
  double originX = 0, originY = 0;                // millimetres, taken off every coordinate that is written
  double scale = kPointsPerMillimetre;            // PDF units for one millimetre
};

// The drawing's extents grown by the frame. A drawing near the origin keeps its coordinates and its sheet starts at 0;
// one far away, or any with `atOrigin`, is moved so that the sheet's corner is (0, 0). A sheet longer than 5000 mm is
// scaled down to that. `frame`: millimetres, not below zero. Extents that are not finite are taken as 0.
PageLayout LayOutPage(const FileInfo &info, double frame, bool atOrigin);

}  // namespace kapdf
