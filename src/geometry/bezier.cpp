#include "geometry/bezier.h"

#include <array>
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

// Bernstein weights of one parameter.
struct Weights {
  double b0, b1, b2, b3;
};

Weights WeightsAt(double t) {
  const double u = 1.0 - t;
  return {u * u * u, 3.0 * t * u * u, 3.0 * t * t * u, t * t * t};
}

// Those of a curve of the fewest steps, which most curves are.
const std::array<Weights, kFewestSteps - 1> kShortCurve = [] {
  std::array<Weights, kFewestSteps - 1> weights{};
  for (int i = 1; i < kFewestSteps; ++i) weights[static_cast<size_t>(i - 1)] = WeightsAt(i * (1.0 / kFewestSteps));
  return weights;
}();

double Distance(double x0, double y0, double x1, double y1) {
  const double dx = x1 - x0, dy = y1 - y0;
  return std::sqrt(dx * dx + dy * dy);
}

}  // namespace

void FlattenCubic(CoordArray &points, double x1, double y1, double x2, double y2, double x3, double y3, size_t maxPoints) {
  if (points.size() < 2) return;
  const double x0 = points.data()[points.size() - 2], y0 = points.data()[points.size() - 1];
  int steps = StepsFor(Distance(x0, y0, x1, y1) + Distance(x1, y1, x2, y2) + Distance(x2, y2, x3, y3));
  if (steps > limits::kCurvePoints || points.size() / 2 + static_cast<size_t>(steps) > maxPoints) steps = 1;
  const double step = 1.0 / steps;
  double *out = points.Extend(static_cast<size_t>(steps) * 2);
  for (int i = 1; i < steps; ++i) {
    const Weights w = steps == kFewestSteps ? kShortCurve[static_cast<size_t>(i - 1)] : WeightsAt(i * step);
    *out++ = w.b0 * x0 + w.b1 * x1 + w.b2 * x2 + w.b3 * x3;
    *out++ = w.b0 * y0 + w.b1 * y1 + w.b2 * y2 + w.b3 * y3;
  }
  *out++ = x3;
  *out = y3;
}

}  // namespace kapdf
