#include "geometry/bezier.h"

#include <cmath>

#include "base/limits.h"

namespace kapdf {
namespace {

constexpr double kStepLength = 0.2;
constexpr int kFewestSteps = 10;

int StepsFor(double legs) {
  if (!std::isfinite(legs)) return kFewestSteps;
  const double steps = legs / kStepLength;
  return steps > kFewestSteps ? static_cast<int>(std::fmin(steps, limits::kCurvePoints + 1.0)) : kFewestSteps;
}

}  // namespace

void FlattenCubic(CoordArray &points, double x1, double y1, double x2, double y2, double x3, double y3, size_t maxPoints) {
  if (points.size() < 2) return;
  const double x0 = points.data()[points.size() - 2], y0 = points.data()[points.size() - 1];
  const double legs = std::hypot(x1 - x0, y1 - y0) + std::hypot(x2 - x1, y2 - y1) + std::hypot(x3 - x2, y3 - y2);
  int steps = StepsFor(legs);
  if (steps > limits::kCurvePoints || points.size() / 2 + static_cast<size_t>(steps) > maxPoints) steps = 1;
  const double step = 1.0 / steps;
  for (int i = 1; i < steps; ++i) {
    const double t = i * step, u = 1.0 - t;
    const double b0 = u * u * u, b1 = 3.0 * t * u * u, b2 = 3.0 * t * t * u, b3 = t * t * t;
    points.PushPoint(b0 * x0 + b1 * x1 + b2 * x2 + b3 * x3, b0 * y0 + b1 * y1 + b2 * y2 + b3 * y3);
  }
  points.PushPoint(x3, y3);
}

}  // namespace kapdf
