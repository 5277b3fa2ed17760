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

// The Bernstein sum of one coordinate, gathered by powers of the parameter: ((a t + b) t + c) t + d.
struct Cubic {
  Cubic(double p0, double p1, double p2, double p3)
      : a(p3 - p0 + 3.0 * (p1 - p2)), b(3.0 * (p0 - 2.0 * p1 + p2)), c(3.0 * (p1 - p0)), d(p0) {}
  double At(double t) const { return ((a * t + b) * t + c) * t + d; }
  double a, b, c, d;
};

// The same for values whose differences may not be representable: every one on the way lies between two others.
double Between(double p0, double p1, double p2, double p3, double t) {
  const double left = std::lerp(p0, p1, t), middle = std::lerp(p1, p2, t), right = std::lerp(p2, p3, t);
  return std::lerp(std::lerp(left, middle, t), std::lerp(middle, right, t), t);
}

double Distance(double x0, double y0, double x1, double y1) {
  const double dx = x1 - x0, dy = y1 - y0;
  return std::sqrt(dx * dx + dy * dy);
}

}  // namespace

void FlattenCubic(CoordArray &points, double x1, double y1, double x2, double y2, double x3, double y3,
                  size_t maxPoints) {
  if (points.size() < 2 || points.size() / 2 >= maxPoints) return;
  const double x0 = points.data()[points.size() - 2], y0 = points.data()[points.size() - 1];
  const double legs = Distance(x0, y0, x1, y1) + Distance(x1, y1, x2, y2) + Distance(x2, y2, x3, y3);
  int steps = StepsFor(legs);
  if (steps > limits::kCurvePoints || points.size() / 2 + static_cast<size_t>(steps) > maxPoints) steps = 1;
  const double step = 1.0 / steps;
  double *out = points.Extend(static_cast<size_t>(steps) * 2);
  const auto count = static_cast<size_t>(steps);
  out[2 * count - 2] = x3;
  out[2 * count - 1] = y3;
  if (!std::isfinite(legs)) {
    for (int i = 1; i < steps; ++i, out += 2) {
      out[0] = Between(x0, x1, x2, x3, i * step);
      out[1] = Between(y0, y1, y2, y3, i * step);
    }
    return;
  }
  const Cubic x(x0, x1, x2, x3), y(y0, y1, y2, y3);
  double counter = 1.0;
  for (size_t i = 0; i + 1 < count; ++i, counter += 1.0) {
    const double t = counter * step;
    out[2 * i] = x.At(t);
    out[2 * i + 1] = y.At(t);
  }
}

}  // namespace kapdf
