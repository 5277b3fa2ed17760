#include "geometry/ellipse.h"

#include <cmath>

#include "geometry/polynomial.h"

namespace kapdf {
namespace {

constexpr double kPi = std::numbers::pi;
constexpr double kSameAngle = 1e-6;
constexpr double kAngleSlack = 1e-10;
constexpr double kBeyondAxis = 0.01;  // length: a foot point further out is none
constexpr double kFarthestSquare = 1e40;

// The nearest of some foot points; of equally near ones the first.
struct Nearest {
  double u, v;
  double square = kFarthestSquare;
  double angle = 0;

  bool Offer(double footU, double footV) {
    const double du = footU - u, dv = footV - v;
    if (!(du * du + dv * dv < square)) return false;
    square = du * du + dv * dv;
    return true;
  }
};

// Foot points of a point on one axis, at `t` along it: its end, and where they exist the two beside it. Gives their
// place along the axis and, positive, across it.
bool FeetBesideAxis(double t, double along, double across, double &footAlong, double &footAcross) {
  footAlong = along * along * t / (along * along - across * across);
  const double part = footAlong / along;
  footAcross = across * std::sqrt(1 - part * part);
  return std::isfinite(footAcross);
}

// Places of the foot points of (u, v) along the axis `a`, in units of it, from the quartic that is left when the other
// coordinate is eliminated.
RealRoots FeetAlong(double u, double v, double a, double b) {
  const double ratio = b / a, c = ratio * ratio - 1;
  const double pu = u / a, pv = v / a * ratio;
  const double coefficients[] = {-pu * pu, -2 * pu * c, pu * pu - c * c + pv * pv, 2 * pu * c, c * c};
  return SolvePolynomial(coefficients);
}

}  // namespace

bool AngleBetween(double mid, double start, double end) {
  if (std::fabs(end - start) < kSameAngle) return true;
  double u = end - mid, v = mid - start;
  if (u < -kAngleSlack) u += kWholeTurn;
  if (v < -kAngleSlack) v += kWholeTurn;
  return kWholeTurn - u - v > 0;
}

void Ellipse::ToFrame(double &x, double &y) const {
  const double dx = x - centreX, dy = y - centreY;
  const double cosine = std::cos(rotation), sine = std::sin(rotation);
  x = dx * cosine + dy * sine;
  y = dy * cosine - dx * sine;
}

// An end below the range becomes the start and a turn, not itself and a turn: deliberate.
bool Ellipse::Contains(double x, double y) const {
  ToFrame(x, y);
  if (std::fabs(end - start) < kSameAngle) return true;
  double from = start, to = end;
  if (from > kPi) from -= kWholeTurn;
  if (from < -kPi) from += kWholeTurn;
  if (to > kPi) to -= kWholeTurn;
  if (to < -kPi) to = from + kWholeTurn;
  return AngleBetween(std::atan2(y / b, x / a), from, to);
}

double Ellipse::Distance(double x, double y, double &angleOut) const {
  ToFrame(x, y);
  Nearest nearest{x, y};
  double along, across;
  if (std::fabs(x) < kOnAxis) {
    nearest.u = 0;
    if (nearest.Offer(0, std::copysign(b, y))) nearest.angle = y < 0 ? -kPi / 2 : kPi / 2;
    if (FeetBesideAxis(y, b, a, along, across)) {
      if (nearest.Offer(across, along)) nearest.angle = std::atan2(along / b, across / a);
      if (nearest.Offer(-across, along)) nearest.angle = std::atan2(along / b, -across / a);
    }
  } else if (std::fabs(y) < kOnAxis) {
    nearest.v = 0;
    if (nearest.Offer(std::copysign(a, x), 0)) nearest.angle = x < 0 ? kPi : 0;
    if (FeetBesideAxis(x, a, b, along, across)) {
      if (nearest.Offer(along, across)) nearest.angle = std::atan2(across / b, along / a);
      if (nearest.Offer(along, -across)) nearest.angle = std::atan2(-across / b, along / a);
    }
  } else {
    // The larger part of the point's direction is the better known one.
    const bool byU = std::fabs(x / a) >= std::fabs(y / b);
    const double p = byU ? a : b, q = byU ? b : a, s = byU ? x : y, t = byU ? y : x;
    for (const double root : FeetAlong(s, t, p, q)) {
      const double foot = root * p, other = q * q * foot * t / (p * p * s + (q * q - p * p) * foot);
      if (!(std::fabs(other) <= q + kBeyondAxis)) continue;
      if (byU ? nearest.Offer(foot, other) : nearest.Offer(other, foot)) {
        nearest.angle = byU ? std::atan2(other / b, foot / a) : std::atan2(foot / b, other / a);
      }
    }
  }
  angleOut = nearest.angle;
  return std::sqrt(nearest.square);
}

}  // namespace kapdf
