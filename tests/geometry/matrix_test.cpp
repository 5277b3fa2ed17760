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
  ASSERT_EQ(m.rows(), wanted.rows());
  ASSERT_EQ(m.cols(), wanted.cols());
  for (int32_t row = 0; row < m.rows(); ++row) {
    for (int32_t col = 0; col < m.cols(); ++col)
      EXPECT_NEAR(m(row, col), wanted(row, col), tolerance) << row << ' ' << col;
  }
}

Matrix Random(int32_t rows, int32_t cols, std::mt19937 &random) {
  Matrix m(rows, cols);
  std::uniform_real_distribution<double> value(-10, 10);
  for (int32_t row = 0; row < rows; ++row) {
    for (double &element : m.Row(row)) element = value(random);
  }
  return m;
}

Matrix Unit(int32_t size) {
  Matrix m(size, size);
  for (int32_t i = 0; i < size; ++i) m(i, i) = 1;
  return m;
}

TEST(Matrix, HoldsRowsAndCopiesThem) {
  Matrix m(2, 4, 7.0);
  m.SetRow(1, 1, 2, 3);  // the fourth keeps what it was filled with
  double row[3];
  m.GetRow(1, row);
  EXPECT_EQ(row[2], 3);
  EXPECT_EQ(m(1, 3), 7);
  m.SetRow(0, 1, 2, 3, 4);
  EXPECT_EQ(m(0, 3), 4);
  Matrix copy = m;
  copy(0, 0) = 9;
  EXPECT_EQ(m(0, 0), 1);
  for (const Matrix &empty : {Matrix(0, 5), Matrix(5, 0), Matrix(-1, 3)}) {
    EXPECT_EQ(empty.rows(), 0);
    EXPECT_EQ(empty.cols(), 0);
  }
}

TEST(Matrix, Arithmetic) {
  const Matrix a = Filled(2, 3, {1, 2, 3, 4, 5, 6}), b = Filled(3, 2, {7, 8, 9, 10, 11, 12});
  ExpectNear(Multiply(a, b), Filled(2, 2, {58, 64, 139, 154}), 0);
  ExpectNear(Subtract(a, Transpose(b)), Filled(2, 3, {-6, -7, -8, -4, -5, -6}), 0);
  ExpectNear(Scale(a, -0.5), Filled(2, 3, {-0.5, -1, -1.5, -2, -2.5, -3}), 0);
  ExpectNear(Transpose(a), Filled(3, 2, {1, 4, 2, 5, 3, 6}), 0);
  EXPECT_EQ(Multiply(a, a).rows(), 0);
}

TEST(Matrix, InverseAndSolveUndoProducts) {
  std::mt19937 random(7);
  for (int32_t size = 1; size <= 8; ++size) {
    const Matrix a = Random(size, size, random), x = Random(size, 1, random);
    ExpectNear(Multiply(a, Inverse(a)), Unit(size), 1e-9);
    Matrix found;
    ASSERT_EQ(Solve(found, a, Multiply(a, x)), 0);
    ExpectNear(found, x, 1e-9);
  }
}

// Zeros on the diagonal and a tiny corner need both kinds of exchange.
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
  const std::vector<double> singular[] = {{0, 0, 0, 0},   {1, 2, 2, 4},   {1e-16, 0, 0, 1},
                                          {nan, 1, 1, 1}, {1, 1, nan, 1}, {1e308, 0, 0, 1e-300}};
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
