#include "geometry/bezier.h"

#include <gtest/gtest.h>

#include <cmath>

#include "base/limits.h"

namespace kapdf {
namespace {

CoordArray Flattened(double x0, double x1, double x2, double x3, size_t maxPoints = limits::kPathPoints) {
  CoordArray points;
  points.PushPoint(x0, 1);
  FlattenCubic(points, x1, 1, x2, 1, x3, 1, maxPoints);
  return points;
}

// Steps by the length of the control polygon; the end comes bit by bit.
TEST(Bezier, StepsFollowTheControlPolygon) {
  const struct {
    double x1, x2, x3;
    size_t points;  // with the start
  } cases[] = {{0, 0, 2, 11},
               {0, 0, 2.2001, 12},
               {600, 1300, 2000, 10'001},
               {600, 1300, 2001, 10'001},  // no more steps than the bound
               {1.5, 0, 1.5, 23},          // there and back and there again
               {1e7, 2e7, 3e7, 10'001},
               {1e200, -1e200, 0.1, 11}};  // a length that cannot be summed
  for (const auto &c : cases) {
    const CoordArray points = Flattened(0, c.x1, c.x2, c.x3);
    ASSERT_EQ(points.size(), c.points * 2) << c.x3;
    EXPECT_EQ(points.data()[points.size() - 2], c.x3);
    EXPECT_EQ(points.data()[points.size() - 1], 1.0);
  }
}

TEST(Bezier, PointsLieOnTheCurve) {
  for (const double end : {-5.0, -5.2, -5.4, -5.6, -5.8}) {  // a step more each time
    CoordArray points;
    points.PushPoint(1, 2);
    FlattenCubic(points, 3, 9, -4, 7, 6, end, limits::kPathPoints);
    const size_t last = points.size() / 2 - 1;
    for (size_t i = 1; i <= last; ++i) {
      const double t = static_cast<double>(i) / static_cast<double>(last), u = 1 - t;
      EXPECT_NEAR(points.data()[2 * i], u * u * u + 9 * t * u * u - 12 * t * t * u + 6 * t * t * t, 1e-13);
      EXPECT_NEAR(points.data()[2 * i + 1], 2 * u * u * u + 27 * t * u * u + 21 * t * t * u + end * t * t * t, 1e-13);
    }
  }
}

TEST(Bezier, StaysAtOnePointAndStaysFinite) {
  const CoordArray still = Flattened(-123.456, -123.456, -123.456, -123.456);
  for (size_t i = 0; i < still.size(); i += 2) EXPECT_EQ(still.data()[i], -123.456);
  for (const double huge : {1e150, 1.7e308}) {
    const CoordArray points = Flattened(-huge, huge, -huge, huge);
    for (const double value : points.values()) EXPECT_TRUE(std::isfinite(value)) << huge;
  }
}

TEST(Bezier, NothingWithoutAStartAndNothingBeyondTheBound) {
  CoordArray empty;
  FlattenCubic(empty, 1, 2, 3, 4, 5, 6, limits::kPathPoints);
  EXPECT_EQ(empty.size(), 0u);
  EXPECT_EQ(Flattened(0, 1, 2, 3, 16).size(), 2 * 16u);
  EXPECT_EQ(Flattened(0, 1, 2, 3, 15).size(), 2 * 2u);  // its end alone
  EXPECT_EQ(Flattened(0, 1, 2, 3, 1).size(), 2 * 1u);   // not even that
}

TEST(CoordArray, SlotsThatWereInUseBeforeAreZeroAgain) {
  CoordArray points;
  points.PushPoint(1, 2).Push(3);
  points.Clear();
  points.At(4) = 5;
  EXPECT_EQ(points.data()[0], 0.0);
  EXPECT_EQ(points.size(), 5u);
}

}  // namespace
}  // namespace kapdf
