#include "geometry/curve_fit.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "geometry/conic.h"
#include "geometry/matrix.h"

namespace kapdf {
namespace {

constexpr double kPi = std::numbers::pi;
constexpr double kSmallestDeterminant = 1e-5;
constexpr int32_t kEllipsePoints = 4;
constexpr int32_t kConicPoints = 10;
constexpr double kEvenAxes = 1e-9;
constexpr double kSmallestSquareTerm = 1e-9;
constexpr double kEighthTurn = 1e-6;  // of the cosine of twice the rotation

}  // namespace

double CurveFit::diagonal() const { return std::hypot(maxX_ - minX_, maxY_ - minY_); }

int CurveFit::SolveCircle(bool keepCentre) {
  const double n = count_;
  const Sums &s = sum_;
  double cx = centreX_ - originX_, cy = centreY_ - originY_;
  if (!keepCentre) {
    const double squares = s.xx + s.yy;
    const double a = s.x * s.x - n * s.xx;
    const double b = s.x * s.y - n * s.xy;
    const double c = s.y * s.y - n * s.yy;
    const double d = squares * s.x - n * s.xr;
    const double e = squares * s.y - n * s.yr;
    const double determinant = a * c - b * b;
    if (!(std::fabs(determinant) >= kSmallestDeterminant)) return 0;
    cx = (d * c - b * e) / 2 / determinant;
    cy = (a * e - b * d) / 2 / determinant;
  }
  const double radius = std::sqrt((s.xx + s.yy - 2 * cx * s.x - 2 * cy * s.y) / n + cx * cx + cy * cy);
  cx += originX_;
  cy += originY_;
  if (!(radius > 0) || !std::isfinite(radius) || !std::isfinite(cx) || !std::isfinite(cy)) return 0;
  centreX_ = cx;
  centreY_ = cy;
  radius_ = radius;
  return 1;
}

int CurveFit::SolveEllipse(bool general, bool assumeZero) {
  axisA_ = axisB_ = -1.0;
  if (count_ < kEllipsePoints) return 0;
  if (general && count_ >= kConicPoints && FitConic(assumeZero)) {
    if (EvenAxes()) axisAngle_ = 0;
  } else if (FitParallelToAxes()) {
    EvenAxes();
  } else {
    return 0;
  }
  radius_ = std::sqrt(axisA_ * axisB_);
  return 1;
}

// Axes that differ by rounding only become equal.
bool CurveFit::EvenAxes() {
  if (!(1 - std::min(axisA_, axisB_) / std::max(axisA_, axisB_) < kEvenAxes)) return false;
  axisA_ = axisB_ = (axisA_ + axisB_) / 2;
  return true;
}

bool CurveFit::IsFiniteEllipse() const {
  return std::isfinite(centreX_) && std::isfinite(centreY_) && std::isfinite(axisA_) && std::isfinite(axisB_) &&
         std::isfinite(axisAngle_) && axisA_ > 0 && axisB_ > 0;
}

// The direct least squares fit of an ellipse (Fitzgibbon, Pilu, Fisher) with the scatter matrix in blocks (Halir,
// Flusser).
bool CurveFit::FitConic(bool assumeZero) {
  const Sums &s = sum_;
  Matrix s1(3, 3), s2(3, 3), s3(3, 3);
  s1.SetRow(0, s.xxxx, s.xxxy, s.xxyy);
  s1.SetRow(1, s.xxxy, s.xxyy, s.xyyy);
  s1.SetRow(2, s.xxyy, s.xyyy, s.yyyy);
  s2.SetRow(0, s.xxx, s.xxy, s.xx);
  s2.SetRow(1, s.xxy, s.xyy, s.xy);
  s2.SetRow(2, s.xyy, s.yyy, s.yy);
  s3.SetRow(0, s.xx, s.xy, s.x);
  s3.SetRow(1, s.xy, s.yy, s.y);
  s3.SetRow(2, s.x, s.y, count_);
  const Matrix t = Multiply(Inverse(s3), Transpose(s2));
  if (!t.IsFinite()) return false;
  const Matrix squares = ConstrainedEigenvector(Subtract(s1, Multiply(s2, t)), assumeZero);
  const Matrix rest = Scale(Multiply(t, squares), -1);
  return ConicToEllipse(squares(0, 0), squares(1, 0), squares(2, 0), rest(0, 0), rest(1, 0), rest(2, 0));
}

// a x^2 + b x y + c y^2 + d x + e y + f = 0, of which 4 a c - b^2 is 1, relative to the origin of the sums.
bool CurveFit::ConicToEllipse(double a, double b, double c, double d, double e, double f) {
  if (a == 0 || c == 0) return false;
  const double denominator = b * b - 4 * a * c;
  const double x = (2 * c * d - b * e) / denominator, y = (2 * a * e - b * d) / denominator;
  const double size = (a * x * x + b * x * y + c * y * y - f) * 4;
  a *= size;
  b *= size;
  c *= size;
  double angle = std::atan2(b, a - c) / 2;
  const double sine = std::sin(angle), cosine = std::cos(angle);
  const double s2 = sine * sine, c2 = cosine * cosine, turn = 1 - 2 * c2;
  double first, second;
  if (std::fabs(turn) >= kEighthTurn) {
    first = (a * s2 - c * c2) / turn;
    second = (c * s2 - a * c2) / turn;
  } else {
    // Right for a negative b. For a positive one the axes change places, and the ellipse fits no point: deliberate.
    second = (a + c - b) / 2;
    first = a + c - second;
  }
  if (!(first > 0) || !(second > 0)) return false;
  if (first < second) {
    std::swap(first, second);
    angle += kPi / 2;
  }
  if (angle <= -kPi / 2) angle += kPi;
  if (angle > kPi / 2) angle -= kPi;
  centreX_ = x + originX_;
  centreY_ = y + originY_;
  axisA_ = std::sqrt(first);
  axisB_ = std::sqrt(second);
  axisAngle_ = angle;
  return IsFiniteEllipse();
}

// x^2 + p y^2 + q x + r y + s = 0.
bool CurveFit::FitParallelToAxes() {
  const Sums &s = sum_;
  Matrix a(4, 4), right(4, 1), x;
  a.SetRow(0, s.yyyy, s.xyy, s.yyy, s.yy);
  a.SetRow(1, s.xyy, s.xx, s.xy, s.x);
  a.SetRow(2, s.yyy, s.xy, s.yy, s.y);
  a.SetRow(3, s.yy, s.x, s.y, count_);
  right.SetVector(std::initializer_list<double>{-s.xxyy, -s.xxx, -s.xxy, -s.xx});
  if (Solve(x, a, right) != 0) return false;
  const double p = x(0, 0), q = x(1, 0), r = x(2, 0);
  const double square = -x(3, 0) + q * q / 4 + r * r / p / 4;
  if (!(square > 0) || !(p > kSmallestSquareTerm)) return false;
  centreX_ = -q / 2 + originX_;
  centreY_ = -r / p / 2 + originY_;
  axisA_ = std::sqrt(square);
  axisB_ = std::sqrt(square / p);
  axisAngle_ = 0;
  return IsFiniteEllipse();
}

}  // namespace kapdf
