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

double LargestEigenvalue(const Matrix<3, 3> &p) {
  const double trace = p(0, 0) + p(1, 1) + p(2, 2);
  const double minor0 = p(1, 1) * p(2, 2) - p(1, 2) * p(2, 1);
  const double minor1 = p(0, 0) * p(2, 2) - p(0, 2) * p(2, 0);
  const double minor2 = p(0, 0) * p(1, 1) - p(0, 1) * p(1, 0);
  const double determinant = p(0, 0) * minor0 - p(0, 1) * (p(1, 0) * p(2, 2) - p(1, 2) * p(2, 0)) +
                             p(0, 2) * (p(1, 0) * p(2, 1) - p(1, 1) * p(2, 0));
  const double characteristic[] = {determinant, -(minor0 + minor1 + minor2), trace, -1};
  return LargestRoot(characteristic, kNoEigenvalue);
}

}  // namespace

Matrix<3, 1> ConstrainedEigenvector(const Matrix<3, 3> &m, bool assumeZero) {
  // The inverse of the constraint's matrix, times m.
  Matrix<3, 3> p{{{{0.5 * m(2, 0), 0.5 * m(2, 1), 0.5 * m(2, 2)},
                   {-m(1, 0), -m(1, 1), -m(1, 2)},
                   {0.5 * m(0, 0), 0.5 * m(0, 1), 0.5 * m(0, 2)}}}};
  double lambda = assumeZero ? 0.0 : LargestEigenvalue(p);
  if (lambda < kLeastEigenvalue) return {};
  lambda = std::max(lambda, 0.0);
  for (size_t i = 0; i < 3; ++i) p(i, i) -= lambda;
  const Matrix<3, 1> vector = NullVector(p);
  const double condition = 4 * vector(0, 0) * vector(2, 0) - vector(1, 0) * vector(1, 0);
  if (!(condition >= kLeastCondition)) return {};
  return Scale(vector, 1 / std::sqrt(condition));
}

Matrix<3, 1> NullVector(Matrix<3, 3> m) {
  for (size_t k = 0; k < 2; ++k) {
    for (size_t row = k + 1; row < 3; ++row) {
      const double factor = m(row, k) / m(k, k);
      for (size_t col = k; col < 3; ++col) m(row, col) -= factor * m(k, col);
    }
  }
  const double left = std::fabs(m(2, 2));
  if (!(left < kZeroDiagonal) && !(left < kZeroOfFirst * std::fabs(m(0, 0)))) return {};
  const double second = -m(1, 2) / m(1, 1), first = (-m(0, 1) * second - m(0, 2)) / m(0, 0);
  const Matrix<3, 1> vector{{{{first}, {second}, {1}}}};
  return vector.IsFinite() ? vector : Matrix<3, 1>();
}

}  // namespace kapdf
