#include "geometry/matrix.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace kapdf {
namespace {

Matrix Filled(int32_t rows, int32_t cols, const std::vector<double> &values) {
  Matrix m(rows, cols);
  m.SetVector(values);
  return m;
}

void ExpectNear(const Matrix &m, const Matrix &wanted, double tolerance) {
  ASSERT_EQ(std::pair(m.rows(), m.cols()), std::pair(wanted.rows(), wanted.cols()));
  for (int32_t i = 0; i < m.rows() * m.cols(); ++i) {
    EXPECT_NEAR(m(i / m.cols(), i % m.cols()), wanted(i / m.cols(), i % m.cols()), tolerance) << i;
  }
}

TEST(Matrix, RowsAndArithmetic) {
  Matrix m(2, 4, 7.0);
  m.SetRow(0, 1, 2, 3, 4);
  m.SetRow(1, 1, 2, 3);  // the fourth keeps what it was filled with
  ExpectNear(m, Filled(2, 4, {1, 2, 3, 4, 1, 2, 3, 7}), 0);
  EXPECT_EQ(Matrix(-1, 3).cols(), 0);
  const Matrix a = Filled(2, 3, {1, 2, 3, 4, 5, 6}), b = Filled(3, 2, {7, 8, 9, 10, 11, 12});
  ExpectNear(Multiply(a, b), Filled(2, 2, {58, 64, 139, 154}), 0);
  ExpectNear(Subtract(Scale(a, -0.5), Transpose(b)), Filled(2, 3, {-7.5, -10, -12.5, -10, -12.5, -15}), 0);
  EXPECT_EQ(Multiply(a, a).rows(), 0);
}

TEST(Matrix, InverseAndSolveUndoProducts) {
  std::mt19937 random(7);
  std::uniform_real_distribution<double> value(-10, 10);
  for (int32_t size = 1; size <= 8; ++size) {
    Matrix a(size, size), x(size, 1), found;
    for (int32_t row = 0; row < size; ++row) {
      for (double &element : a.Row(row)) element = value(random);
      x(row, 0) = value(random);
    }
    ExpectNear(Multiply(Inverse(a), Multiply(a, x)), x, 1e-9);
    ASSERT_EQ(Solve(found, a, Multiply(a, x)), 0);
    ExpectNear(found, x, 1e-9);
  }
}

TEST(Matrix, PivotsOverTheWholeBlock) {
  const Matrix a = Filled(3, 3, {1e-20, 0, 2, 0, 0, 5, 1, 4, 0});
  Matrix x;
  ASSERT_EQ(Solve(x, Filled(3, 3, {0, 0, 2, 3, 0, 5, 1, 4, 0}), Filled(3, 1, {6, 18, 9})), 0);
  ExpectNear(x, Filled(3, 1, {1, 2, 3}), 1e-15);
  ExpectNear(Inverse(Filled(2, 2, {0, 2, 4, 0})), Filled(2, 2, {0, 0.25, 0.5, 0}), 0);
  EXPECT_EQ(Solve(x, a, Filled(3, 1, {6, 15, 9})), -1);
}

TEST(Matrix, SingularOnesAreToldApart) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  Matrix x = Filled(1, 1, {42});
  const std::vector<double> singular[] = {
      {1, 2, 2, 4}, {1e-16, 0, 0, 1}, {nan, 1, 1, 1}, {1, 1, nan, 1}, {1e308, 0, 0, 1e-300}};
  for (const auto &values : singular) {
    const Matrix a = Filled(2, 2, values);
    EXPECT_EQ(Solve(x, a, Filled(2, 1, {1e300, 1e300})), -1) << values[0];
    EXPECT_EQ(x(0, 0), 42);
  }
  EXPECT_FALSE(Inverse(Filled(2, 2, {1, 2, 2, 4})).IsFinite());
  EXPECT_FALSE(Inverse(Filled(2, 2, {nan, 1, 1, 1})).IsFinite());
}

}  // namespace
}  // namespace kapdf
