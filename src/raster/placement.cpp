#include "raster/placement.h"

#include <algorithm>
#include <cmath>

#include "base/units.h"

namespace kapdf {
namespace {

constexpr double kFlat = 1e-12;
constexpr double kMostDpi = 2147483647.0;

double Finite(double value, double otherwise) { return std::isfinite(value) ? value : otherwise; }

// Position, angle, and the resolutions of both directions with their signs.
Placement Place(const Affine &m, uint32_t width, uint32_t height, double &dpiX, double &dpiY) {
  Placement placed;
  placed.x = Finite(m.e * kMillimetresPerPoint, 0);
  placed.y = Finite(m.f * kMillimetresPerPoint, 0);
  placed.angle = Finite(std::atan2(m.b, m.a), 0);
  const double sine = std::sin(placed.angle), cosine = std::cos(placed.angle);
  double scaleX = m.a / cosine, scaleY = m.d / cosine;
  if (std::fabs(sine) >= kFlat && m.b != 0 && (std::fabs(cosine) < kFlat || m.a == 0)) {
    scaleX = m.b / sine;
    scaleY = -m.c / sine;
  }
  dpiX = scaleX == 0 ? 0 : Finite(width * kPointsPerInch / scaleX, 0);
  dpiY = scaleY == 0 ? 0 : Finite(height * kPointsPerInch / scaleY, 0);
  if (dpiX == 0) dpiX = dpiY;
  if (dpiY == 0) dpiY = dpiX;
  return placed;
}

}  // namespace

Placement PlaceImage(const Affine &matrix, uint32_t width, uint32_t height) {
  double dpiX, dpiY;
  Placement placed = Place(matrix, width, height, dpiX, dpiY);
  const double dpi = std::round(std::min(std::fabs(dpiX), std::fabs(dpiY)));
  placed.dpi = dpi == 0 ? 72 : static_cast<uint32_t>(std::min(dpi, kMostDpi));
  placed.scaleX = Finite(placed.dpi / dpiX, 1);
  placed.scaleY = Finite(placed.dpi / dpiY, 1);
  return placed;
}

Placement PlaceInlineImage(const Affine &matrix, uint32_t width, uint32_t height) {
  double dpiX, dpiY;
  Placement placed = Place(matrix, width, height, dpiX, dpiY);
  placed.dpi = static_cast<uint32_t>(std::min(std::min(std::fabs(dpiX), std::fabs(dpiY)), kMostDpi));
  if (placed.dpi == 0) return placed;
  placed.scaleX = Finite(placed.dpi / dpiX, 1);
  placed.scaleY = Finite(placed.dpi / dpiY, 1);
  return placed;
}

}  // namespace kapdf
