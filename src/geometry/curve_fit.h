// Least squares circles and ellipses from running sums.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>

namespace kapdf {

// Takes the points of one polyline; each solver then costs the same however many there were. Nothing is allocated.
class CurveFit {
 public:
  void Reset() { *this = CurveFit(); }

  // The first point becomes the origin of all sums, which keeps them small far away from zero.
  void AddPoint(double x, double y) {
    if (count_++ == 0) {
      originX_ = x;
      originY_ = y;
    }
    maxX_ = std::max(maxX_, x);
    minX_ = std::min(minX_, x);
    maxY_ = std::max(maxY_, y);
    minY_ = std::min(minY_, y);
    const double dx = x - originX_, dy = y - originY_;
    const double xx = dx * dx, yy = dy * dy, xy = dx * dy, square = xx + yy;
    sum_.x += dx;
    sum_.y += dy;
    sum_.xx += xx;
    sum_.yy += yy;
    sum_.xr += dx * square;
    sum_.yr += dy * square;
    sum_.xxx += xx * dx;
    sum_.yyy += yy * dy;
    sum_.xxxx += xx * xx;
    sum_.yyyy += yy * yy;
    sum_.xxy += dx * xy;
    sum_.xyy += dy * xy;
    sum_.xxxy += xx * xy;
    sum_.xyyy += yy * xy;
    sum_.xy += xy;
    sum_.xxyy += xx * yy;
  }

  // The same for many points, x and y in turn, several at a time.
  void AddPoints(std::span<const double> points);

  // 1 with centre and radius set; 0 when the points do not tell a circle: the determinant is below 1e-5 in size, by no
  // relative measure, or a result is not finite. `keepCentre` takes the centre as it stands and finds the radius.
  int SolveCircle(bool keepCentre);
  // 1 with centre, axes, rotation and radius (the geometric mean of the axes) set; 0 when no ellipse results. `general`
  // allows any rotation, from 10 points on; without it, or where that fails, the axes are those of the coordinates.
  // `assumeZero` takes the error of the general fit as none.
  int SolveEllipse(bool general, bool assumeZero);

  int32_t count() const { return count_; }
  double centreX() const { return centreX_; }
  double centreY() const { return centreY_; }
  double radius() const { return radius_; }
  double axisA() const { return axisA_; }
  double axisB() const { return axisB_; }
  double axisAngle() const { return axisAngle_; }  // of the axis A, radians
  // Of the bounding box.
  double diagonal() const;
  // All points lay within the range that the bounds can tell, 1e10 either way.
  bool WithinBounds() const {
    return minX_ >= -kFarthest && maxX_ <= kFarthest && minY_ >= -kFarthest && maxY_ <= kFarthest;
  }

 private:
  static constexpr double kFarthest = 1e10;
  // Named by the powers of dx and dy; r is dx^2 + dy^2.
  struct Sums {  // in pairs that compilers add as one
    double x = 0, y = 0, xx = 0, yy = 0, xr = 0, yr = 0, xxx = 0, yyy = 0;
    double xxxx = 0, yyyy = 0, xxy = 0, xyy = 0, xxxy = 0, xyyy = 0, xy = 0, xxyy = 0;
  };

  static void AddFours(const double *points, size_t fours, CurveFit &fit);
  static void AddFoursWide(const double *points, size_t fours, CurveFit &fit);
  static void AddFoursInline(const double *points, size_t fours, CurveFit &fit);

  bool FitConic(bool assumeZero);
  bool FitParallelToAxes();
  bool ConicToEllipse(double a, double b, double c, double d, double e, double f);
  bool EvenAxes();
  bool IsFiniteEllipse() const;

  int32_t count_ = 0;
  double originX_ = 0, originY_ = 0;
  Sums sum_;
  double maxX_ = -kFarthest, minX_ = kFarthest, maxY_ = -kFarthest, minY_ = kFarthest;
  double centreX_ = 0, centreY_ = 0, radius_ = 0;
  double axisA_ = 0, axisB_ = 0, axisAngle_ = 0;
};

}  // namespace kapdf
