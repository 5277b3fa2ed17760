#include "geometry/recognition.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <string>
#include <vector>

#include "geometry/curve_fit.h"
#include "geometry/ellipse.h"
#include "geometry/polynomial.h"

namespace kapdf {
namespace {

constexpr double kDegree = std::numbers::pi / 180;
using Points = std::vector<double>;

struct Shape {
  double cx, cy, a, b, rotation, from, sweep;  // degrees, of the parameter
  int points;
};

// Ellipses as a drawing would have them printed: where not a digit is off, or the ellipse is large, rounding alone
// decides whether the fit finds an eigenvalue that is not below zero. A whole turn ends where it began, bit by bit.
Points Traced(const Shape &s) {
  Points points;
  const auto printed = [&](double value) { return s.a == s.b || s.a < 1 ? value : std::round(value * 1e4) / 1e4; };
  for (int i = 0; i < s.points; ++i) {
    const double t = (s.from + s.sweep * i / (s.points - 1)) * kDegree, r = s.rotation * kDegree;
    const double u = s.a * std::cos(t), v = s.b * std::sin(t);
    points.push_back(printed(s.cx + u * std::cos(r) - v * std::sin(r)));
    points.push_back(printed(s.cy + u * std::sin(r) + v * std::cos(r)));
  }
  if (std::fabs(s.sweep) == 360) std::copy_n(points.begin(), 2, points.end() - 2);
  return points;
}

char Kind(const Points &points, double tolerance = 0.002) {
  return "-cae"[static_cast<int>(RecognizeCurve(points, tolerance).kind)];
}

TEST(Recognition, KindsAndTheirLimits) {
  const struct {
    Shape shape;
    char kind;  // circle, arc, ellipse or none
  } cases[] = {
      {{5, 7, 3, 3, 0, 20, 360, 60}, 'c'},
      {{1e6, -1e6, 0.5, 0.5, 0, 0, -360, 60}, 'c'},
      {{0, 0, 5e6, 5e6, 0, 0, 360, 5000}, 'c'},
      {{0, 0, 0.01, 0.01, 0, 0, 360, 12}, '-'},  // the determinant is no relative measure
      {{0, 0, 9, 9, 0, 0, 90, 10}, '-'},         // points
      {{0, 0, 9, 9, 0, 0, 90, 11}, 'a'},
      {{0, 0, 9, 9, 0, 0, 359.9999, 60}, 'a'},
      {{0, 0, 9, 9, 0, 40, 10.1, 20}, 'a'},
      {{0, 0, 9, 9, 0, 40, 9.9, 30}, '-'},  // less than ten degrees
      {{0, 0, 9, 9, 0, 0, 360, 30}, '-'},   // chords lie 0.55 % inside, 0.4 % is allowed
      {{0, 0, 9, 9 / 1.003, 0, 0, 360, 90}, 'c'},
      {{0, 0, 9, 9 / 1.007, 0, 0, 360, 90}, '-'},  // neither round nor long enough
      {{0, 0, 9, 9 / 1.02, 30, 0, 360, 90}, 'e'},
      {{8, 8, 90, 90 / 19.9, 60, 0, 360, 300}, 'e'},
      {{8, 8, 90, 90 / 20.1, 60, 0, 360, 300}, '-'},
      {{0, 0, 0.0118, 0.0006, 60, 0, 360, 90}, '-'},  // thinner than what counts as lying on its axis
      {{0, 0, 9, 5, 10, 0, 180, 20}, '-'},            // points
      {{0, 0, 9, 5, 10, 0, 180, 21}, 'e'},
      {{8, 8, 9000, 600, 30, -5.1, 10.2, 60}, 'e'},  // about a tip, where no circle fits
      {{8, 8, 9000, 600, 30, -4.9, 9.8, 60}, '-'},
  };
  for (const auto &c : cases) {
    const Shape &s = c.shape;
    EXPECT_EQ(Kind(Traced(s)), c.kind) << s.a << " " << s.b << " " << s.sweep << " " << s.points;
  }
}

// The run from start to end goes over the drawn points, whichever way they went.
TEST(Recognition, RunsAreThoseDrawn) {
  for (int from = -180; from < 180; from += 30) {
    for (const double sweep : {12.0, 90.0, 181.0, 300.0, 350.0, 359.99999, 359.99999999}) {
      for (const double b : {4.0, 1.2}) {
        for (const bool back : {false, true}) {
          const Shape s = {3, 4, 4, b, 25, from + (back ? sweep : 0), back ? -sweep : sweep, 200};
          if (b < 4 && (sweep < 90 || sweep > 359)) continue;  // too little or too much for a run of an ellipse
          const RecognizedCurve curve = RecognizeCurve(Traced(s), 0.002);
          ASSERT_NE(curve.kind, RecognizedCurve::Kind::kNone) << from << " " << s.sweep << " " << b;
          const double begins = from * kDegree + (b < 4 ? 0 : 25 * kDegree);
          EXPECT_NEAR(std::remainder(curve.start - begins, kWholeTurn), 0, 3e-4) << from << " " << s.sweep;
          const double run = curve.end - curve.start;
          EXPECT_NEAR(run > 0 ? run : run + kWholeTurn, sweep * kDegree, 3e-4) << from << " " << s.sweep;
        }
      }
    }
  }
}

TEST(Recognition, AbsurdPointsStayAPolyline) {
  const double nan = std::numeric_limits<double>::quiet_NaN(), huge = 1e308;
  const Shape circle = {0, 0, 50, 50, 0, 0, 360, 90};
  Points still(60, 7.0), line, far = Traced({1e15, 1e15, 3000, 3000, 0, 0, 360, 90});
  for (int i = 0; i < 60; ++i) line.insert(line.end(), {i * 3.0, i * 1.5});
  EXPECT_EQ(Kind({}), '-');
  for (const Points &points : {still, line, far}) EXPECT_EQ(Kind(points), '-');
  for (const double value : {nan, huge, -huge, 1e15}) {
    for (const size_t at : {0u, 1u, 90u, 179u}) {
      Points points = Traced(circle);
      points[at] = value;
      EXPECT_EQ(Kind(points), '-') << value << " " << at;
    }
  }
  for (const double tolerance : {nan, -1.0}) EXPECT_EQ(Kind(Traced(circle), tolerance), '-');
  // A point twice in a row is no corner, but the segment behind it meets one of no length.
  Points twice = Traced(circle);
  twice.insert(twice.end(), {twice[0], twice[1]});
  EXPECT_EQ(Kind(twice), 'c');
  twice.insert(twice.begin() + 90, {twice[88], twice[89]});
  EXPECT_EQ(Kind(twice), '-');
}

TEST(CurveFit, KeepsACentreAndFindsEllipsesAlongTheAxes) {
  CurveFit fit;
  const Points points = Traced({1000, 2000, 6, 2, 0, 40, 355, 72});
  for (size_t i = 0; i < points.size(); i += 2) fit.AddPoint(points[i], points[i + 1]);
  for (const bool general : {true, false}) {
    ASSERT_EQ(fit.SolveEllipse(general, false), 1);
    EXPECT_NEAR(fit.centreX(), 1000, 1e-3);
    EXPECT_NEAR(fit.centreY(), 2000, 1e-3);
    EXPECT_NEAR(fit.axisA(), 6, 1e-3);
    EXPECT_NEAR(fit.axisB(), 2, 1e-3);
    EXPECT_NEAR(fit.radius(), std::sqrt(12), 1e-3);
  }
  ASSERT_EQ(fit.SolveCircle(true), 1);
  EXPECT_NEAR(fit.radius(), std::sqrt((36 + 4) / 2.0), 0.2);
  fit.Reset();
  EXPECT_EQ(fit.SolveCircle(false) + fit.SolveEllipse(true, false), 0);
}

TEST(Ellipse, DistancesAndRuns) {
  const double rotation = 30 * kDegree;
  const Ellipse ellipse{10, 20, 8, 3, rotation, 0, 2};
  for (int t = -180; t < 180; t += 15) {
    for (const double beyond : {-0.5, 0.0, 0.7, 50.0}) {  // along the normal
      const double c = std::cos(t * kDegree), s = std::sin(t * kDegree), size = std::hypot(3 * c, 8 * s);
      const double u = 8 * c + beyond * 3 * c / size, v = 3 * s + beyond * 8 * s / size;
      const double x = 10 + u * std::cos(rotation) - v * std::sin(rotation);
      const double y = 20 + u * std::sin(rotation) + v * std::cos(rotation);
      double angle;
      EXPECT_NEAR(ellipse.Distance(x, y, angle), std::fabs(beyond), 1e-7) << t << " " << beyond;
      EXPECT_NEAR(std::remainder(angle - t * kDegree, kWholeTurn), 0, 1e-7) << t << " " << beyond;
      EXPECT_TRUE(beyond != 0 || ellipse.Contains(x, y) == (t >= 0 && t * kDegree < 2)) << t;
    }
  }
  double angle;
  EXPECT_NEAR(Ellipse({0, 0, 8, 3, 0}).Distance(0, 0, angle), 3, 0);
  EXPECT_NEAR(Ellipse({0, 0, 8, 3, 0}).Distance(5, 0, angle), 3 * std::sqrt(1 - 25 / 55.0), 1e-12);
  EXPECT_TRUE(AngleBetween(3, 1, 1 + 9e-7));
  EXPECT_FALSE(AngleBetween(0, 2, -2));
}

TEST(Polynomial, RealRoots) {
  const struct {
    std::vector<double> coefficients, roots;
  } cases[] = {{{}, {}},
               {{-6, 2, 1e-17}, {3}},
               {{6, -5, 1}, {2, 3}},
               {{1, 2, 1}, {-1}},
               {{-6, 11, -6, 1}, {1, 2, 3}},
               {{24, -50, 35, -10, 1}, {1, 2, 3, 4}},
               {{36, 0, -13, 0, 1}, {-3, -2, 2, 3}},
               {{4, 0, 5, 0, 1}, {}},
               {{-4e8, 0, 3e8, 0, 1e8}, {-1, 1}}};
  for (const auto &c : cases) {
    const RealRoots found = SolvePolynomial(c.coefficients);
    std::vector<double> roots(found.begin(), found.end());
    std::sort(roots.begin(), roots.end());
    ASSERT_EQ(roots.size(), c.roots.size()) << testing::PrintToString(c.coefficients);
    for (size_t i = 0; i < roots.size(); ++i) EXPECT_NEAR(roots[i], c.roots[i], 1e-12);
  }
}

}  // namespace
}  // namespace kapdf
