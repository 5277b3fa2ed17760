#include "geometry/matrix.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>

namespace kapdf {
namespace {

template <size_t Size>
void ExpectUndone(std::mt19937 &random) {
  std::uniform_real_distribution<double> value(-10, 10);
  Matrix<Size, Size> a;
  Matrix<Size, 1> x, found;
  for (size_t row = 0; row < Size; ++row) {
    for (double &element : a.rows[row]) element = value(random);
    x(row, 0) = value(random);
  }
  const Matrix<Size, 1> same = Multiply(Inverse(a), Multiply(a, x));
  ASSERT_EQ(Solve(found, a, Multiply(a, x)), 0);
  for (size_t row = 0; row < Size; ++row) {
    EXPECT_NEAR(same(row, 0), x(row, 0), 1e-9);
    EXPECT_NEAR(found(row, 0), x(row, 0), 1e-9);
  }
}

TEST(Matrix, InverseAndSolveUndoProducts) {
  std::mt19937 random(7);
  ExpectUndone<1>(random);
  ExpectUndone<3>(random);
  ExpectUndone<4>(random);
  ExpectUndone<8>(random);
}

TEST(Matrix, PivotsOverTheWholeBlock) {
  Matrix<3, 1> x;
  ASSERT_EQ(Solve(x, {{{{0, 0, 2}, {3, 0, 5}, {1, 4, 0}}}}, {{{{6}, {18}, {9}}}}), 0);
  for (size_t i = 0; i < 3; ++i) EXPECT_NEAR(x(i, 0), i + 1.0, 1e-15);
  EXPECT_EQ(Inverse(Matrix<2, 2>{{{{0, 2}, {4, 0}}}}).rows, (Matrix<2, 2>{{{{0, 0.25}, {0.5, 0}}}}).rows);
}

TEST(Matrix, SingularOnesAreToldApart) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  Matrix<2, 1> x{{{{42}, {42}}}};
  const Matrix<2, 2> twice{{{{1, 2}, {2, 4}}}}, none{{{{nan, 1}, {1, 1}}}};
  for (const Matrix<2, 2> &a :
       {twice, none, {{{{1e-16, 0}, {0, 1}}}}, {{{{1, 1}, {nan, 1}}}}, {{{{1e308, 0}, {0, 1e-300}}}}}) {
    EXPECT_EQ(Solve(x, a, {{{{1e300}, {1e300}}}}), -1) << a(0, 0);
    EXPECT_EQ(x(0, 0), 42);
  }
  EXPECT_FALSE(Inverse(twice).IsFinite());
  EXPECT_FALSE(Inverse(none).IsFinite());
}

}  // namespace
}  // namespace kapdf
