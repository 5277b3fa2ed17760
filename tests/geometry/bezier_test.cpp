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
  } cases[] = {
      {0, 0, 0, 11},
      {0, 0, 2, 11},
      {0, 0, 2.2001, 12},
      {1.5, 0, 1.5, 23},  // there and back and there again
      {600, 1300, 2000, 10'001},
      {1e7, 2e7, 3e7, 2},        // beyond the bound: the end alone
      {1e200, -1e200, 0.1, 11},  // a length that cannot be summed
  };
  for (const auto &c : cases) {
    const CoordArray points = Flattened(0, c.x1, c.x2, c.x3);
    ASSERT_EQ(points.size(), c.points * 2) << c.x3;
    EXPECT_EQ(points.data()[points.size() - 2], c.x3);
    EXPECT_EQ(points.data()[points.size() - 1], 1.0);
  }
}

TEST(Bezier, PointsLieOnTheCurve) {
  CoordArray points;
  points.PushPoint(1, 2);
  FlattenCubic(points, 3, 9, -4, 7, 6, -5, limits::kPathPoints);
  const auto count = static_cast<int>(points.size() / 2) - 1;
  ASSERT_GT(count, 10);
  for (int i = 1; i <= count; ++i) {
    const double t = static_cast<double>(i) / count, u = 1 - t;
    const double x = u * u * u * 1 + 3 * t * u * u * 3 + 3 * t * t * u * -4 + t * t * t * 6;
    const double y = u * u * u * 2 + 3 * t * u * u * 9 + 3 * t * t * u * 7 + t * t * t * -5;
    EXPECT_NEAR(points.data()[2 * i], x, 1e-13);
    EXPECT_NEAR(points.data()[2 * i + 1], y, 1e-13);
  }
}

TEST(Bezier, ACurveOfOnePointRepeatsItsStart) {
  for (const double place : {0.0, 0.1, -123.456}) {
    const CoordArray points = Flattened(place, place, place, place + 1e-9);
    for (size_t i = 0; i + 2 < points.size(); i += 2) EXPECT_NEAR(points.data()[i], place, 1e-9);
    const CoordArray still = Flattened(place, place, place, place);
    for (size_t i = 0; i < still.size(); i += 2) EXPECT_EQ(still.data()[i], place);
  }
}

TEST(Bezier, HugeCoordinatesStayFinite) {
  for (const double huge : {1e150, 1e300, 1.7e308}) {
    const CoordArray points = Flattened(-huge, huge, -huge, huge);
    for (const double value : points.values()) EXPECT_TRUE(std::isfinite(value)) << huge;
  }
}

TEST(Bezier, NothingWithoutAStartAndNothingBeyondTheBound) {
  CoordArray empty;
  FlattenCubic(empty, 1, 2, 3, 4, 5, 6, limits::kPathPoints);
  EXPECT_EQ(empty.size(), 0u);
  EXPECT_EQ(Flattened(0, 1, 2, 3, 100).size(), 2 * 16u);
  EXPECT_EQ(Flattened(0, 1, 2, 3, 16).size(), 2 * 16u);
  EXPECT_EQ(Flattened(0, 1, 2, 3, 15).size(), 2 * 2u);  // its end alone
  EXPECT_EQ(Flattened(0, 1, 2, 3, 1).size(), 2 * 1u);   // not even that
}

TEST(CoordArray, GrowsInStepsAndFillsWithZeros) {
  CoordArray points;
  points.PushPoint(1, 2).Push(3);
  EXPECT_EQ(points.At(70), 0.0);
  EXPECT_EQ(points.size(), 71u);
  for (size_t i = 3; i < 71; ++i) ASSERT_EQ(points.data()[i], 0.0);
  EXPECT_EQ(points.capacity() % 32, 0u);
  EXPECT_EQ(points.At(1), 2.0);
  points.Clear();
  points.At(4) = 5;  // slots that were in use before are zero again
  EXPECT_EQ(points.data()[0], 0.0);
  EXPECT_EQ(points.size(), 5u);
}

}  // namespace
}  // namespace kapdf
