#include "geometry/recognition.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "geometry/curve_fit.h"
#include "geometry/ellipse.h"
#include "geometry/lanes.h"

namespace kapdf {
namespace {

constexpr size_t kLeastValues = 20;  // no more than these are never tried
constexpr size_t kEllipsePoints = 20;
constexpr double kTenDegrees = 0.17453292519943295;
constexpr double kFlattest = 20;
constexpr double kRoundest = 0.01;
constexpr double kSameAngle = 1e-6;

using FourFlags = decltype(FourLanes{} < FourLanes{});  // all bits or none of a lane

bool AnyOf(const FourFlags &flags) { return (flags[0] | flags[1] | flags[2] | flags[3]) != 0; }

// False when two segments meet at 90 degrees or less. A segment without length does not count as such a corner, but the
// next one does.
[[gnu::always_inline]] inline bool IsSmoothInline(std::span<const double> points) {
  size_t i = 4;
  for (; i + 8 <= points.size(); i += 8) {
    FourLanes firstX, firstY, middleX, middleY, lastX, lastY;
    LoadFourPoints(&points[i - 4], firstX, firstY);
    LoadFourPoints(&points[i - 2], middleX, middleY);
    LoadFourPoints(&points[i], lastX, lastY);
    const FourLanes dx = lastX - middleX, dy = lastY - middleY;
    const FourLanes dot = dx * (middleX - firstX) + dy * (middleY - firstY), square = dx * dx + dy * dy;
    if (AnyOf((dot <= 0) & (square > 0))) return false;
  }
  for (; i < points.size(); i += 2) {
    const double dx = points[i] - points[i - 2], dy = points[i + 1] - points[i - 1];
    const double beforeX = points[i - 2] - points[i - 4], beforeY = points[i - 1] - points[i - 3];
    if (dx * beforeX + dy * beforeY <= 0 && dx * dx + dy * dy > 0) return false;
  }
  return true;
}

KAPDF_WIDE_LANES bool IsSmoothWide(std::span<const double> points) { return IsSmoothInline(points); }

bool IsSmooth(std::span<const double> points) { return HasWideLanes() ? IsSmoothWide(points) : IsSmoothInline(points); }

// Whether the segments together are at least that long; those that are not needed to tell are not looked at.
bool IsAsLong(std::span<const double> points, double length) {
  double sum = 0;
  for (size_t i = 2; i < points.size() && !(sum >= length); i += 2) {
    const double dx = points[i] - points[i - 2], dy = points[i + 1] - points[i - 1];
    sum += std::sqrt(dx * dx + dy * dy);
  }
  return sum >= length;
}

// The room between two circles around one centre, both included.
struct Ring {
  Ring(const CurveFit &fit, double tolerance) : centreX(fit.centreX()), centreY(fit.centreY()) {
    const double least = std::max(0.0, 1 - tolerance) * fit.radius(), most = (1 + tolerance) * fit.radius();
    inner = least * least;
    outer = most * most;
  }
  double centreX, centreY, inner, outer;  // radii squared

  bool Misses(double x, double y) const {
    const double dx = x - centreX, dy = y - centreY, square = dx * dx + dy * dy;
    return !(square >= inner && square <= outer);
  }
  void FindMisses(const FourLanes &x, const FourLanes &y, FourFlags &misses) const {
    const FourLanes dx = x - centreX, dy = y - centreY, square = dx * dx + dy * dy;
    misses |= ~((square >= inner) & (square <= outer));
  }
};

// The middle of a chord lies inside its arc and has twice the room of a point.
[[gnu::always_inline]] inline bool FitsCircleInline(std::span<const double> points, const Ring &ring,
                                                    const Ring &wide) {
  if (ring.Misses(points[0], points[1])) return false;
  size_t i = 2;
  for (; i + 8 <= points.size(); i += 8) {
    FourLanes beforeX, beforeY, x, y;
    LoadFourPoints(&points[i - 2], beforeX, beforeY);
    LoadFourPoints(&points[i], x, y);
    FourFlags misses{};
    ring.FindMisses(x, y, misses);
    wide.FindMisses((beforeX + x) / 2, (beforeY + y) / 2, misses);
    if (AnyOf(misses)) return false;
  }
  for (; i < points.size(); i += 2) {
    if (ring.Misses(points[i], points[i + 1])) return false;
    if (wide.Misses((points[i - 2] + points[i]) / 2, (points[i - 1] + points[i + 1]) / 2)) return false;
  }
  return true;
}

KAPDF_WIDE_LANES bool FitsCircleWide(std::span<const double> points, const Ring &ring, const Ring &wide) {
  return FitsCircleInline(points, ring, wide);
}

bool FitsCircle(std::span<const double> points, const CurveFit &fit, double tolerance) {
  const Ring ring(fit, tolerance), wide(fit, 2 * tolerance);
  return HasWideLanes() ? FitsCircleWide(points, ring, wide) : FitsCircleInline(points, ring, wide);
}

// Whether points are near to an ellipse. Most of them need no distance. With q = (u/a)^2 + (v/b)^2, what is left along
// the line from the centre is |1 - 1/sqrt(q)| of the point's distance from it, below |q - 1| a while that is small; and
// it is no less than the real distance. That one in turn is no less than |sqrt(q) - 1| b. Points near to an axis have a
// distance that is a little different, so of ellipses as small as that every point needs one.
class Band {
 public:
  Band(const Ellipse &ellipse, double limit)
      : ellipse_(ellipse),
        limit_(limit),
        reach_(limit * ellipse.a - Ellipse::kOnAxis),
        plainLimit_(std::min(reach_ / ellipse.a, kPlainReach)),
        uOfX_(std::cos(ellipse.rotation) / ellipse.a),
        uOfY_(std::sin(ellipse.rotation) / ellipse.a),
        vOfX_(-std::sin(ellipse.rotation) / ellipse.b),
        vOfY_(std::cos(ellipse.rotation) / ellipse.b) {
    const double beyond = (limit * ellipse.a * kSureFactor + kSureLength) / ellipse.b;
    const double least = std::max(0.0, 1 - beyond), most = 1 + beyond;
    inner_ = least * least;
    outer_ = most * most;
  }
  // Sure to be too far away.
  bool Misses(double x, double y) const {
    const double square = Square(x, y);
    return square < inner_ || square > outer_;
  }
  bool Holds(double x, double y) const {
    const double square = Square(x, y);
    if (std::fabs(square - 1) <= plainLimit_) return true;
    const double dx = x - ellipse_.centreX, dy = y - ellipse_.centreY;
    const double beyond = std::fabs(1 - 1 / std::sqrt(square)) * std::sqrt(dx * dx + dy * dy);
    if (beyond <= reach_) return true;
    double angle;
    return std::fabs(ellipse_.Distance(x, y, angle) / ellipse_.a) <= limit_;
  }

 private:
  static constexpr double kPlainReach = 0.4;
  // More than what distances are rounded by.
  static constexpr double kSureFactor = 1.001, kSureLength = 1e-3;

  double Square(double x, double y) const {
    const double dx = x - ellipse_.centreX, dy = y - ellipse_.centreY;
    const double u = dx * uOfX_ + dy * uOfY_, v = dx * vOfX_ + dy * vOfY_;
    return u * u + v * v;
  }

  const Ellipse &ellipse_;
  double limit_, reach_, plainLimit_, uOfX_, uOfY_, vOfX_, vOfY_, inner_, outer_;
};

bool FitsEllipse(std::span<const double> points, const Ellipse &ellipse, double tolerance) {
  const Band band(ellipse, 2 * tolerance);
  for (size_t i = 0; i < points.size(); i += 2) {
    if (band.Misses(points[i], points[i + 1])) return false;
  }
  if (!band.Holds(points[0], points[1])) return false;
  for (size_t i = 2; i < points.size(); i += 2) {
    if (!band.Holds(points[i], points[i + 1])) return false;
    if (!band.Holds((points[i - 2] + points[i]) / 2, (points[i - 1] + points[i + 1]) / 2)) return false;
  }
  return true;
}

// The counter-clockwise run has to pass through the middle point. First and last may have the same angle, but for
// rounding: the run is then the long one, since the short one would be nothing.
void RunThroughMiddle(std::span<const double> points, RecognizedCurve &arc) {
  const auto angleOf = [&](size_t point) {
    return std::atan2(points[2 * point + 1] - arc.centreY, points[2 * point] - arc.centreX);
  };
  const size_t count = points.size() / 2;
  const double first = angleOf(0), last = angleOf(count - 1);
  arc.start = last;
  arc.end = first;
  if (std::fabs(first - last) < kSameAngle ? first >= last : AngleBetween(angleOf(count / 2), first, last)) {
    std::swap(arc.start, arc.end);
  }
}

bool RunOfEllipse(std::span<const double> points, Ellipse &ellipse) {
  const size_t last = points.size() - 2, middle = points.size() / 4 * 2;
  ellipse.Distance(points[0], points[1], ellipse.start);
  ellipse.Distance(points[last], points[last + 1], ellipse.end);
  if (!ellipse.Contains(points[middle], points[middle + 1])) std::swap(ellipse.start, ellipse.end);
  while (ellipse.end <= ellipse.start) ellipse.end += kWholeTurn;
  return ellipse.end - ellipse.start >= kTenDegrees;
}

RecognizedCurve CurveOf(const CurveFit &fit, bool closed) {
  RecognizedCurve curve;
  curve.kind = closed ? RecognizedCurve::Kind::kCircle : RecognizedCurve::Kind::kArc;
  curve.centreX = fit.centreX();
  curve.centreY = fit.centreY();
  curve.a = curve.b = fit.radius();
  return curve;
}

RecognizedCurve RecognizeEllipse(std::span<const double> points, CurveFit &fit, double tolerance, bool closed) {
  if (points.size() / 2 <= kEllipsePoints || !fit.SolveEllipse(true, false)) return {};
  Ellipse ellipse{fit.centreX(), fit.centreY(), fit.axisA(), fit.axisB(), fit.axisAngle()};
  if (ellipse.a < ellipse.b) {
    std::swap(ellipse.a, ellipse.b);
    ellipse.rotation += std::numbers::pi / 2;
  }
  const double ratio = ellipse.a / ellipse.b;
  if (ratio > kFlattest || ratio - 1 < kRoundest || !FitsEllipse(points, ellipse, tolerance)) return {};
  if (closed)
    ellipse.start = ellipse.end = 0;
  else if (!RunOfEllipse(points, ellipse))
    return {};
  return {RecognizedCurve::Kind::kEllipse,
          ellipse.centreX,
          ellipse.centreY,
          ellipse.a,
          ellipse.b,
          ellipse.rotation,
          ellipse.start,
          ellipse.end};
}

}  // namespace

RecognizedCurve RecognizeCurve(std::span<const double> points, double tolerance) {
  if (points.size() <= kLeastValues || !IsSmooth(points)) return {};
  CurveFit fit;
  fit.AddPoints(points);
  if (!fit.WithinBounds()) return {};
  const bool closed = points[0] == points[points.size() - 2] && points[1] == points[points.size() - 1];
  if (fit.SolveCircle(false) && FitsCircle(points, fit, tolerance) &&
      IsAsLong(points, fit.radius() * (std::numbers::pi / 18))) {
    RecognizedCurve curve = CurveOf(fit, closed);
    if (!closed) RunThroughMiddle(points, curve);
    return curve;
  }
  return RecognizeEllipse(points, fit, tolerance, closed);
}

}  // namespace kapdf
