#include "writer/arc_path.h"

#include <algorithm>
#include <cmath>

namespace kapdf {
namespace {

constexpr double kLargeAngle = 1e6;      // beyond it full turns are taken off before anything is computed
constexpr double kTurnTolerance = 1e-9;  // a sweep this close to whole turns is a full turn
constexpr double kLeastSweep = 1e-12;    // a last segment below this is rounding, not drawing

double Tame(double angle) {
  if (!std::isfinite(angle)) return 0;
  return std::fabs(angle) > kLargeAngle ? std::fmod(angle, kFullTurn) : angle;
}

double SweepOf(double start, double end) {
  const double sweep = end - start;
  if (sweep > 0 && sweep <= kFullTurn + kTurnTolerance) return std::min(sweep, kFullTurn);
  const double rest = std::fmod(sweep, kFullTurn);
  if (rest <= 0) return rest + kFullTurn;
  return rest < kTurnTolerance ? kFullTurn : rest;
}

// The angle within the first turn.
double WithinTurn(double angle) {
  angle = std::fmod(angle, kFullTurn);
  if (angle < 0) angle += kFullTurn;
  return angle < kFullTurn ? angle : 0;
}

// Quarter 0 to 3 with quarter * pi/2 <= angle < (quarter + 1) * pi/2.
int QuarterOf(double angle) {
  int quarter = 0;
  while (quarter < 3 && angle >= (quarter + 1) * kQuarterTurn) ++quarter;
  return quarter;
}

struct Place {
  double x, y, dx, dy;  // point and derivative by the angle
};

class Ellipse {
 public:
  explicit Ellipse(const EllipseArc &arc) : arc_(arc), cos_(std::cos(arc.rotation)), sin_(std::sin(arc.rotation)) {}
  Place At(double angle) const {
    const double c = std::cos(angle), s = std::sin(angle);
    const double x = arc_.radiusX * c, y = arc_.radiusY * s;
    const double dx = -arc_.radiusX * s, dy = arc_.radiusY * c;
    return {arc_.cx + x * cos_ - y * sin_, arc_.cy + x * sin_ + y * cos_, dx * cos_ - dy * sin_, dx * sin_ + dy * cos_};
  }

 private:
  const EllipseArc &arc_;
  double cos_, sin_;
};

}  // namespace

ArcPath TraceArc(const EllipseArc &arc) {
  const double start = Tame(arc.startAngle);
  const double sweep = SweepOf(start, Tame(arc.endAngle));
  const Ellipse ellipse(arc);

  double angle = WithinTurn(start);
  const double end = angle + sweep;
  int quarter = QuarterOf(angle);
  Place from = ellipse.At(angle);
  ArcPath path;
  path.startX = from.x;
  path.startY = from.y;
  while (path.count < path.segments.size() && (path.count == 0 || end - angle >= kLeastSweep)) {
    const double next = std::min(end, (quarter + 1) * kQuarterTurn);
    const double step = next - angle;
    const double tangent = std::tan(step / 2);
    const double factor = std::sin(step) * (std::sqrt(4 + 3 * tangent * tangent) - 1) / 3;
    const Place to = ellipse.At(next);
    path.segments[path.count++] = {
        from.x + factor * from.dx, from.y + factor * from.dy, to.x - factor * to.dx, to.y - factor * to.dy, to.x, to.y};
    from = to;
    angle = next;
    ++quarter;
  }
  return path;
}

}  // namespace kapdf
