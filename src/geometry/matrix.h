// A small dense matrix for the fitting of curves.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <numeric>
#include <utility>

namespace kapdf {

template <size_t Rows, size_t Cols>
struct Matrix {
  std::array<std::array<double, Cols>, Rows> rows{};

  double &operator()(size_t row, size_t col) { return rows[row][col]; }
  double operator()(size_t row, size_t col) const { return rows[row][col]; }

  // No element is infinite or not a number.
  bool IsFinite() const {
    double none = 0;  // what is not finite stays so in a product
    for (const auto &row : rows) {
      for (const double value : row) none += value * 0.0;
    }
    return none == 0;
  }
};

template <size_t Rows, size_t Inner, size_t Cols>
Matrix<Rows, Cols> Multiply(const Matrix<Rows, Inner> &a, const Matrix<Inner, Cols> &b) {
  Matrix<Rows, Cols> product;
  for (size_t row = 0; row < Rows; ++row) {
    for (size_t k = 0; k < Inner; ++k) {
      for (size_t col = 0; col < Cols; ++col) product(row, col) += a(row, k) * b(k, col);
    }
  }
  return product;
}

template <size_t Rows, size_t Cols>
Matrix<Rows, Cols> Subtract(Matrix<Rows, Cols> a, const Matrix<Rows, Cols> &b) {
  for (size_t row = 0; row < Rows; ++row) {
    for (size_t col = 0; col < Cols; ++col) a(row, col) -= b(row, col);
  }
  return a;
}

template <size_t Rows, size_t Cols>
Matrix<Rows, Cols> Scale(Matrix<Rows, Cols> a, double factor) {
  for (auto &row : a.rows) {
    for (double &value : row) value *= factor;
  }
  return a;
}

template <size_t Rows, size_t Cols>
Matrix<Cols, Rows> Transpose(const Matrix<Rows, Cols> &a) {
  Matrix<Cols, Rows> turned;
  for (size_t row = 0; row < Rows; ++row) {
    for (size_t col = 0; col < Cols; ++col) turned(col, row) = a(row, col);
  }
  return turned;
}

namespace detail {

// Place of the largest absolute value in the block from (first, first) on; the block's corner when nothing is larger.
template <size_t Size>
std::pair<size_t, size_t> FindPivot(const Matrix<Size, Size> &m, size_t first) {
  std::pair<size_t, size_t> place(first, first);
  double largest = std::fabs(m(first, first));
  if (std::isnan(largest)) largest = 0;
  for (size_t row = first; row < Size; ++row) {
    for (size_t col = first; col < Size; ++col) {
      const double size = std::fabs(m(row, col));
      if (!(size > largest)) continue;
      largest = size;
      place = {row, col};
    }
  }
  return place;
}

template <size_t Rows, size_t Cols>
void SwapColumns(Matrix<Rows, Cols> &m, size_t i, size_t k) {
  for (auto &row : m.rows) std::swap(row[i], row[k]);
}

}  // namespace detail

// Gauss-Jordan with full pivoting, in place: the columns of the unit matrix grow where those of `m` are done with, and
// the exchanges are undone at the end, last first, rows for columns. A zero pivot is divided by like any other one, so
// that a singular matrix gives elements that are not finite: IsFinite tells.
template <size_t Size>
Matrix<Size, Size> Inverse(Matrix<Size, Size> m) {
  std::array<std::pair<size_t, size_t>, Size> pivots;
  for (size_t k = 0; k < Size; ++k) {
    const auto [pivotRow, pivotCol] = pivots[k] = detail::FindPivot(m, k);
    std::swap(m.rows[k], m.rows[pivotRow]);
    detail::SwapColumns(m, k, pivotCol);
    const double scale = 1.0 / m(k, k);
    m(k, k) = 1.0;
    for (double &value : m.rows[k]) value *= scale;
    for (size_t row = 0; row < Size; ++row) {
      if (row == k) continue;
      const double factor = m(row, k);
      m(row, k) = 0.0;
      for (size_t col = 0; col < Size; ++col) m(row, col) -= factor * m(k, col);
    }
  }
  for (size_t k = Size; k-- > 0;) {
    std::swap(m.rows[k], m.rows[pivots[k].second]);
    detail::SwapColumns(m, k, pivots[k].first);
  }
  return m;
}

// Solves m x = right by elimination with full pivoting. 0 with `x` set; -1 with `x` left alone when the matrix is
// singular: a diagonal value that remains is below 1e-15 or not a number, or the result is not finite.
template <size_t Size>
int Solve(Matrix<Size, 1> &x, Matrix<Size, Size> m, Matrix<Size, 1> right) {
  constexpr double kSmallestDiagonal = 1e-15;
  Matrix<Size, 1> solution;
  std::array<size_t, Size> order;  // the unknown that each column stands for
  std::iota(order.begin(), order.end(), size_t{0});
  for (size_t k = 0; k < Size; ++k) {
    const auto [pivotRow, pivotCol] = detail::FindPivot(m, k);
    std::swap(m.rows[k], m.rows[pivotRow]);
    std::swap(right.rows[k], right.rows[pivotRow]);
    detail::SwapColumns(m, k, pivotCol);
    std::swap(order[k], order[pivotCol]);
    if (!(std::fabs(m(k, k)) >= kSmallestDiagonal)) return -1;  // the largest one left: all that follow are no larger
    for (size_t row = k + 1; row < Size; ++row) {
      const double factor = m(row, k) / m(k, k);
      for (size_t col = k; col < Size; ++col) m(row, col) -= factor * m(k, col);
      right(row, 0) -= factor * right(k, 0);
    }
  }
  for (size_t k = Size; k-- > 0;) {
    double sum = right(k, 0);
    for (size_t col = k + 1; col < Size; ++col) sum -= m(k, col) * solution(order[col], 0);
    solution(order[k], 0) = sum / m(k, k);
  }
  if (!solution.IsFinite()) return -1;
  x = solution;
  return 0;
}

}  // namespace kapdf
