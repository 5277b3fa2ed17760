#include "geometry/curve_fit.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "geometry/conic.h"
#include "geometry/lanes.h"
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

// Sums of every fourth point in a lane of their own.
[[gnu::always_inline]] inline void CurveFit::AddFoursInline(const double *points, size_t fours, CurveFit &fit) {
  FourLanes x = {}, y = {}, xx = {}, yy = {}, xr = {}, yr = {}, xy = {}, xxx = {}, yyy = {}, xxy = {}, xyy = {},
            xxxx = {}, yyyy = {}, xxxy = {}, xyyy = {}, xxyy = {};
  FourLanes leastX = FourLanes{} + fit.minX_, leastY = FourLanes{} + fit.minY_;
  FourLanes mostX = FourLanes{} + fit.maxX_, mostY = FourLanes{} + fit.maxY_;
  for (size_t i = 0; i < fours; ++i, points += 8) {
    FourLanes px, py;
    LoadFourPoints(points, px, py);
    leastX = px < leastX ? px : leastX;
    leastY = py < leastY ? py : leastY;
    mostX = px > mostX ? px : mostX;
    mostY = py > mostY ? py : mostY;
    const FourLanes dx = px - fit.originX_, dy = py - fit.originY_;
    const FourLanes dxx = dx * dx, dyy = dy * dy, dxy = dx * dy, square = dxx + dyy;
    x += dx;
    y += dy;
    xx += dxx;
    yy += dyy;
    xy += dxy;
    xr += dx * square;
    yr += dy * square;
    xxx += dxx * dx;
    yyy += dyy * dy;
    xxy += dx * dxy;
    xyy += dy * dxy;
    xxxx += dxx * dxx;
    yyyy += dyy * dyy;
    xxxy += dxx * dxy;
    xyyy += dyy * dxy;
    xxyy += dxx * dyy;
  }
  const auto total = [](const FourLanes &lanes) { return (lanes[0] + lanes[2]) + (lanes[1] + lanes[3]); };
  Sums &s = fit.sum_;
  s.x += total(x);
  s.y += total(y);
  s.xx += total(xx);
  s.yy += total(yy);
  s.xy += total(xy);
  s.xr += total(xr);
  s.yr += total(yr);
  s.xxx += total(xxx);
  s.yyy += total(yyy);
  s.xxy += total(xxy);
  s.xyy += total(xyy);
  s.xxxx += total(xxxx);
  s.yyyy += total(yyyy);
  s.xxxy += total(xxxy);
  s.xyyy += total(xyyy);
  s.xxyy += total(xxyy);
  for (int lane = 0; lane < 4; ++lane) {
    fit.minX_ = std::min(fit.minX_, leastX[lane]);
    fit.minY_ = std::min(fit.minY_, leastY[lane]);
    fit.maxX_ = std::max(fit.maxX_, mostX[lane]);
    fit.maxY_ = std::max(fit.maxY_, mostY[lane]);
  }
  fit.count_ += static_cast<int32_t>(4 * fours);
}

KAPDF_WIDE_LANES void CurveFit::AddFoursWide(const double *points, size_t fours, CurveFit &fit) {
  AddFoursInline(points, fours, fit);
}

void CurveFit::AddFours(const double *points, size_t fours, CurveFit &fit) { AddFoursInline(points, fours, fit); }

void CurveFit::AddPoints(std::span<const double> points) {
  size_t i = 0;
  if (count_ == 0 && points.size() >= 2) {
    AddPoint(points[0], points[1]);
    i = 2;
  }
  const size_t fours = (points.size() - i) / 8;
  (HasWideLanes() ? AddFoursWide : AddFours)(points.data() + i, fours, *this);
  for (i += 8 * fours; i + 1 < points.size(); i += 2) AddPoint(points[i], points[i + 1]);
}

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
  const Matrix<3, 3> s1{{{{s.xxxx, s.xxxy, s.xxyy}, {s.xxxy, s.xxyy, s.xyyy}, {s.xxyy, s.xyyy, s.yyyy}}}};
  const Matrix<3, 3> s2{{{{s.xxx, s.xxy, s.xx}, {s.xxy, s.xyy, s.xy}, {s.xyy, s.yyy, s.yy}}}};
  const Matrix<3, 3> s3{{{{s.xx, s.xy, s.x}, {s.xy, s.yy, s.y}, {s.x, s.y, double(count_)}}}};
  const Matrix<3, 3> t = Multiply(Inverse(s3), Transpose(s2));
  if (!t.IsFinite()) return false;
  const Matrix<3, 1> squares = ConstrainedEigenvector(Subtract(s1, Multiply(s2, t)), assumeZero);
  const Matrix<3, 1> rest = Scale(Multiply(t, squares), -1);
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
  const Matrix<4, 4> a{{{{s.yyyy, s.xyy, s.yyy, s.yy},
                         {s.xyy, s.xx, s.xy, s.x},
                         {s.yyy, s.xy, s.yy, s.y},
                         {s.yy, s.x, s.y, double(count_)}}}};
  Matrix<4, 1> x;
  if (Solve(x, a, {{{{-s.xxyy}, {-s.xxx}, {-s.xxy}, {-s.xx}}}}) != 0) return false;
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
