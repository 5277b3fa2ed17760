#include "writer/page_layout.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>

namespace kapdf {
namespace {

static_assert(std::bit_cast<uint64_t>(kPointsPerMillimetre) == 0x4006AD5AB56AD5ACu);

constexpr double kLongestSide = 5000;  // millimetres
constexpr double kNearOrigin = 1.25;   // area from the origin to the far corner, in sheets

double Finite(double value) { return std::isfinite(value) ? value : 0; }

bool WithinReach(double value) { return std::fabs(value) <= kLongestSide; }

void StartAtZero(double &minimum, double maximum, double frame) {
  if (minimum > -frame && maximum <= kLongestSide) minimum = 0;
}

}  // namespace

PageLayout LayOutPage(const FileInfo &info, double frame, bool atOrigin) {
  PageLayout page;
  page.xmin = Finite(Finite(info.xmin) - frame);
  page.ymin = Finite(Finite(info.ymin) - frame);
  page.xmax = Finite(Finite(info.xmax) + frame);
  page.ymax = Finite(Finite(info.ymax) + frame);
  const double width = page.xmax - page.xmin, height = page.ymax - page.ymin;
  if (width > kLongestSide || height > kLongestSide) {
    page.scale = kLongestSide / std::max(width, height) * kPointsPerInch / kMillimetresPerInch;
  }
  if (!atOrigin && WithinReach(page.xmin) && WithinReach(page.ymin) && WithinReach(page.xmax) &&
      WithinReach(page.ymax)) {
    const double area = width * height;
    if (area != 0 && kNearOrigin > page.xmax * page.ymax / area) {
      StartAtZero(page.xmin, page.xmax, frame);
      StartAtZero(page.ymin, page.ymax, frame);
    }
    return page;
  }
  page.originX = page.xmin;
  page.originY = page.ymin;
  page.xmax = Finite(page.xmax - page.originX);
  page.ymax = Finite(page.ymax - page.originY);
  page.xmin = page.ymin = 0;
  return page;
}

}  // namespace kapdf
