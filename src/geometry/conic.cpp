#include "geometry/conic.h"

#include <algorithm>
#include <cmath>

#include "geometry/polynomial.h"

namespace kapdf {
namespace {

constexpr double kNoEigenvalue = -1.0;
constexpr double kLeastEigenvalue = -1e-6;
constexpr double kLeastCondition = 1e-6;
constexpr double kZeroDiagonal = 1e-8;
constexpr double kZeroOfFirst = 1e-12;

double LargestEigenvalue(const Matrix &p) {
  const double trace = p(0, 0) + p(1, 1) + p(2, 2);
  const double minor0 = p(1, 1) * p(2, 2) - p(1, 2) * p(2, 1);
  const double minor1 = p(0, 0) * p(2, 2) - p(0, 2) * p(2, 0);
  const double minor2 = p(0, 0) * p(1, 1) - p(0, 1) * p(1, 0);
  const double determinant = p(0, 0) * minor0 - p(0, 1) * (p(1, 0) * p(2, 2) - p(1, 2) * p(2, 0)) +
                             p(0, 2) * (p(1, 0) * p(2, 1) - p(1, 1) * p(2, 0));
  const double characteristic[] = {determinant, -(minor0 + minor1 + minor2), trace, -1};
  double largest = kNoEigenvalue;
  for (const double root : SolvePolynomial(characteristic)) largest = std::max(largest, root);
  return largest;
}

}  // namespace

Matrix ConstrainedEigenvector(const Matrix &m, bool assumeZero) {
  const Matrix none(3, 1);
  Matrix p(3, 3);  // the inverse of the constraint's matrix, times m
  p.SetRow(0, 0.5 * m(2, 0), 0.5 * m(2, 1), 0.5 * m(2, 2));
  p.SetRow(1, -m(1, 0), -m(1, 1), -m(1, 2));
  p.SetRow(2, 0.5 * m(0, 0), 0.5 * m(0, 1), 0.5 * m(0, 2));
  double lambda = assumeZero ? 0.0 : LargestEigenvalue(p);
  if (lambda < kLeastEigenvalue) return none;
  lambda = std::max(lambda, 0.0);
  for (int32_t i = 0; i < 3; ++i) p(i, i) -= lambda;
  const Matrix vector = NullVector(p);
  const double condition = 4 * vector(0, 0) * vector(2, 0) - vector(1, 0) * vector(1, 0);
  if (!(condition >= kLeastCondition)) return none;
  return Scale(vector, 1 / std::sqrt(condition));
}

Matrix NullVector(Matrix m) {
  const int32_t last = m.rows() - 1;
  Matrix vector(m.rows(), 1);
  for (int32_t k = 0; k < last; ++k) {
    for (int32_t row = k + 1; row <= last; ++row) {
      const double factor = m(row, k) / m(k, k);
      for (int32_t col = k; col <= last; ++col) m(row, col) -= factor * m(k, col);
    }
  }
  const double left = std::fabs(m(last, last));
  if (!(left < kZeroDiagonal) && !(left < kZeroOfFirst * std::fabs(m(0, 0)))) return vector;
  vector(last, 0) = 1;
  for (int32_t k = last; k-- > 0;) {
    double sum = 0;
    for (int32_t col = k + 1; col <= last; ++col) sum -= m(k, col) * vector(col, 0);
    vector(k, 0) = sum / m(k, k);
  }
  return vector.IsFinite() ? vector : Matrix(m.rows(), 1);
}

}  // namespace kapdf
