#include "geometry/bezier.h"

#include <cmath>
#include <cstring>

#include "base/limits.h"
#include "geometry/lanes.h"

namespace kapdf {
namespace {

constexpr double kStepLength = 0.2;
constexpr int kFewestSteps = 10;
constexpr double kPlainReach = 1e300;  // sums of coordinates that are not larger are representable

int StepsFor(double legs) {
  if (!std::isfinite(legs)) return kFewestSteps;
  const double steps = legs / kStepLength;
  return steps > kFewestSteps ? static_cast<int>(std::fmin(steps, limits::kCurvePoints)) : kFewestSteps;
}

struct Point {
  double x, y;
};
inline Point operator+(Point a, Point b) { return {a.x + b.x, a.y + b.y}; }
inline Point operator-(Point a, Point b) { return {a.x - b.x, a.y - b.y}; }
inline Point operator*(Point a, double s) { return {a.x * s, a.y * s}; }

// The curve by powers of the distance from its middle, counted in steps of the parameter: the Bernstein sum, gathered.
// Points at equal distances on both sides share the even powers and differ in the sign of the odd ones, which takes
// half the work of one by one.
struct Powers {
  Powers(Point p0, Point p1, Point p2, Point p3, double step)
      : cubic((p3 - p0 + (p1 - p2) * 3.0) * (step * step * step)),
        square(((p0 - p1) + (p3 - p2)) * (1.5 * step * step)),
        linear(((p3 - p0) + (p2 - p1)) * (0.75 * step)),
        middle(p0 + ((p3 - p0) + ((p1 - p0) + (p2 - p0)) * 3.0) * 0.125) {}
  Point cubic, square, linear, middle;
};

using TwoPoints = FourLanes;  // x and y in turn

[[gnu::always_inline]] inline void PushInnerPairs(double *out, int steps, const Powers &powers) {
  const TwoPoints cubic = {powers.cubic.x, powers.cubic.y, powers.cubic.x, powers.cubic.y};
  const TwoPoints square = {powers.square.x, powers.square.y, powers.square.x, powers.square.y};
  const TwoPoints linear = {powers.linear.x, powers.linear.y, powers.linear.x, powers.linear.y};
  const TwoPoints middle = {powers.middle.x, powers.middle.y, powers.middle.x, powers.middle.y};
  double *back = out + 2 * (steps - 1) - 2;  // the last inner point
  const double nearest = 0.5 * steps - 1.0;
  TwoPoints distance = {nearest, nearest, nearest - 1.0, nearest - 1.0};
  // Two from either end; a turn that meets the middle writes some points twice, with the same values.
  for (int pairs = (steps - 1) / 2; pairs > 1; pairs -= 2, out += 4, back -= 4, distance -= 2.0) {
    const TwoPoints squared = distance * distance;
    const TwoPoints even = square * squared + middle, odd = (cubic * squared + linear) * distance;
    const TwoPoints before = even - odd, behind = even + odd;
    const TwoPoints turned = {behind[2], behind[3], behind[0], behind[1]};
    std::memcpy(out, &before, sizeof before);
    std::memcpy(back - 2, &turned, sizeof turned);
  }
  for (; out <= back; out += 2, back -= 2, distance -= 1.0) {
    const TwoPoints squared = distance * distance;
    const TwoPoints even = square * squared + middle, odd = (cubic * squared + linear) * distance;
    const TwoPoints before = even - odd, behind = even + odd;
    std::memcpy(out, &before, sizeof(Point));
    std::memcpy(back, &behind, sizeof(Point));
  }
}

KAPDF_WIDE_LANES void PushInnerWide(double *out, int steps, const Powers &powers) {
  PushInnerPairs(out, steps, powers);
}

// The points between both ends.
void PushInner(double *out, int steps, const Powers &powers) {
  HasWideLanes() ? PushInnerWide(out, steps, powers) : PushInnerPairs(out, steps, powers);
}

// One coordinate of a point whose differences may not be representable: every value on the way lies between two others.
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
  if (points.size() / 2 + static_cast<size_t>(steps) > maxPoints) steps = 1;
  double *out = points.Extend(static_cast<size_t>(steps) * 2);
  double *end = out + 2 * (steps - 1);
  end[0] = x3;
  end[1] = y3;
  if (!(legs + std::fabs(x0) + std::fabs(y0) < kPlainReach)) {
    const double step = 1.0 / steps;
    for (int i = 1; i < steps; ++i, out += 2) {
      out[0] = Between(x0, x1, x2, x3, i * step);
      out[1] = Between(y0, y1, y2, y3, i * step);
    }
    return;
  }
  PushInner(out, steps, Powers({x0, y0}, {x1, y1}, {x2, y2}, {x3, y3}, 1.0 / steps));
}

}  // namespace kapdf
