#include "geometry/polynomial.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace kapdf {
namespace {

constexpr double kNoCoefficient = 1e-16;
constexpr double kLeastDiscriminant = -1e-9;
constexpr double kDoubleRoot = 1e-20;
constexpr double kThirdTurn = 2.0943951023931953;
constexpr double kTwoThirdTurns = 4.1887902047863905;
constexpr int kNewtonSteps = 4;

// a x^2 + b x + c. The root that is no difference comes first and gives the other one.
void AddQuadratic(RealRoots &roots, double a, double b, double c) {
  const double discriminant = b * b - 4 * a * c;
  if (!(discriminant >= kLeastDiscriminant)) return;
  if (discriminant < kDoubleRoot) return roots.Add(-b / a / 2);
  const double larger = -(b + std::copysign(std::sqrt(discriminant), b)) / 2;
  roots.Add(larger / a);
  roots.Add(c / larger);
}

// x^3 + a x^2 + b x + c.
void AddMonicCubic(RealRoots &roots, double a, double b, double c) {
  const double q = (a * a - 3 * b) / 9, r = (2 * a * a * a - 9 * a * b + 27 * c) / 54;
  const double q3 = q * q * q;
  if (q > 0 && r * r <= q3) {
    const double angle = std::acos(std::clamp(r / std::sqrt(q3), -1.0, 1.0)) / 3;
    const double size = -2 * std::sqrt(q);
    for (const double turn : {0.0, kThirdTurn, kTwoThirdTurns}) roots.Add(size * std::cos(angle + turn) - a / 3);
    return;
  }
  const double first = -std::copysign(std::cbrt(std::fabs(r) + std::sqrt(r * r - q3)), r);
  roots.Add(first + (first != 0 ? q / first : 0) - a / 3);
}

// x^4 + a x^3 + b x^2 + c x + d, as the product of two quadratics that a root of the resolvent cubic gives.
void AddMonicQuartic(RealRoots &roots, double a, double b, double c, double d) {
  const double shift = a / 4;
  const double p = b - 6 * shift * shift;
  const double q = c - 2 * b * shift + 8 * shift * shift * shift;
  const double r = d - c * shift + b * shift * shift - 3 * shift * shift * shift * shift;
  const double resolvent[] = {-q * q, p * p - 4 * r, 2 * p, 1};
  const double square = LargestRoot(resolvent, 0);
  const int before = roots.count;
  const double linear = std::sqrt(square);
  // Without a linear term the quartic is a quadratic in x^2, and both factors follow from that one's roots.
  const double half = square > 0 ? q / linear / 2 : std::sqrt(std::max(0.0, p * p / 4 - r));
  AddQuadratic(roots, 1, linear, (p + square) / 2 - half);
  AddQuadratic(roots, 1, -linear, (p + square) / 2 + half);
  for (int i = before; i < roots.count; ++i) roots.values[static_cast<size_t>(i)] -= shift;
}

double ValueAt(std::span<const double> coefficients, double x, double &slope) {
  double value = 0;
  slope = 0;
  for (size_t i = coefficients.size(); i-- > 0;) {
    slope = slope * x + value;
    value = value * x + coefficients[i];
  }
  return value;
}

// Steps as long as they lead nearer to zero.
double Polish(std::span<const double> coefficients, double root) {
  double slope;
  double value = ValueAt(coefficients, root, slope);
  for (int step = 0; step < kNewtonSteps && value != 0 && slope != 0; ++step) {
    const double next = root - value / slope;
    const double nextValue = ValueAt(coefficients, next, slope);
    if (!(std::fabs(nextValue) < std::fabs(value))) break;
    root = next;
    value = nextValue;
  }
  return root;
}

using Coefficients = std::span<const double>;

Coefficients WithoutSmallOnes(Coefficients c) {
  while (!c.empty() && std::fabs(c.back()) < kNoCoefficient) c = c.first(c.size() - 1);
  return c;
}

RealRoots FindRoots(Coefficients c) {
  RealRoots found;
  if (c.size() == 2) found.Add(-c[0] / c[1]);
  if (c.size() == 3) AddQuadratic(found, c[2], c[1], c[0]);
  if (c.size() == 4) AddMonicCubic(found, c[2] / c[3], c[1] / c[3], c[0] / c[3]);
  if (c.size() == 5) AddMonicQuartic(found, c[3] / c[4], c[2] / c[4], c[1] / c[4], c[0] / c[4]);
  return found;
}

}  // namespace

RealRoots SolvePolynomial(std::span<const double> coefficients) {
  const Coefficients c = WithoutSmallOnes(coefficients);
  RealRoots roots;
  for (const double root : FindRoots(c)) {
    const double polished = Polish(c, root);
    if (std::isfinite(polished)) roots.Add(polished);
  }
  return roots;
}

double LargestRoot(std::span<const double> coefficients, double least) {
  const Coefficients c = WithoutSmallOnes(coefficients);
  double largest = -std::numeric_limits<double>::infinity();
  for (const double root : FindRoots(c)) {
    if (std::isfinite(root)) largest = std::max(largest, root);
  }
  return std::max(least, Polish(c, largest));
}

}  // namespace kapdf
