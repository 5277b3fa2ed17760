#include "geometry/matrix.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <utility>

namespace kapdf {
namespace {

constexpr double kSmallestDiagonal = 1e-15;

bool SameSize(const Matrix &a, const Matrix &b) { return a.rows() == b.rows() && a.cols() == b.cols(); }

void SwapRows(Matrix &m, int32_t i, int32_t k) {
  if (i != k) std::swap_ranges(m.Row(i).begin(), m.Row(i).end(), m.Row(k).begin());
}

void SwapColumns(Matrix &m, int32_t i, int32_t k) {
  for (int32_t row = 0; i != k && row < m.rows(); ++row) std::swap(m(row, i), m(row, k));
}

// Adds a multiple of one row to another, from a column on.
void AddRow(Matrix &m, int32_t to, int32_t from, double factor, int32_t firstColumn) {
  double *target = m.Row(to).data();
  const double *source = m.Row(from).data();
  for (int32_t col = firstColumn; col < m.cols(); ++col) target[col] += factor * source[col];
}

// Place of the largest absolute value in the block from (first, first) on; the block's corner when nothing is larger.
std::pair<int32_t, int32_t> FindPivot(const Matrix &m, int32_t first) {
  std::pair<int32_t, int32_t> place(first, first);
  double largest = std::fabs(m(first, first));
  if (std::isnan(largest)) largest = 0;
  for (int32_t row = first; row < m.rows(); ++row) {
    for (int32_t col = first; col < m.cols(); ++col) {
      const double size = std::fabs(m(row, col));
      if (!(size > largest)) continue;
      largest = size;
      place = {row, col};
    }
  }
  return place;
}

}  // namespace

Matrix::Matrix(int32_t rows, int32_t cols, double fill)
    : rows_(rows > 0 && cols > 0 ? rows : 0),
      cols_(rows_ > 0 ? cols : 0),
      data_(static_cast<size_t>(rows_) * static_cast<size_t>(cols_), fill) {}

void Matrix::SetVector(std::span<const double> values) {
  std::copy_n(values.begin(), std::min(values.size(), data_.size()), data_.begin());
}

void Matrix::SetRow(int32_t row, double a, double b, double c) {
  const double values[] = {a, b, c};
  std::copy_n(values, std::min<size_t>(3, static_cast<size_t>(cols_)), Row(row).begin());
}

void Matrix::SetRow(int32_t row, double a, double b, double c, double d) {
  const double values[] = {a, b, c, d};
  std::copy_n(values, std::min<size_t>(4, static_cast<size_t>(cols_)), Row(row).begin());
}

void Matrix::GetRow(int32_t row, std::span<double> values) const {
  const std::span<const double> source = Row(row);
  std::copy_n(source.begin(), std::min(source.size(), values.size()), values.begin());
}

bool Matrix::IsFinite() const {
  return std::all_of(data_.begin(), data_.end(), [](double value) { return std::isfinite(value); });
}

// The sums run over the rows of `b`, so that memory is read in order; each element adds up from the first product on.
Matrix Multiply(const Matrix &a, const Matrix &b) {
  if (a.cols() != b.rows()) return {};
  Matrix product(a.rows(), b.cols());
  for (int32_t row = 0; row < product.rows(); ++row) {
    double *out = product.Row(row).data();
    for (int32_t k = 0; k < a.cols(); ++k) {
      const double factor = a(row, k);
      const double *in = b.Row(k).data();
      for (int32_t col = 0; col < b.cols(); ++col) out[col] += factor * in[col];
    }
  }
  return product;
}

Matrix Subtract(const Matrix &a, const Matrix &b) {
  if (!SameSize(a, b)) return {};
  Matrix difference(a);
  for (int32_t row = 0; row < a.rows(); ++row) {
    for (int32_t col = 0; col < a.cols(); ++col) difference(row, col) -= b(row, col);
  }
  return difference;
}

Matrix Scale(const Matrix &a, double factor) {
  Matrix scaled(a);
  for (int32_t row = 0; row < a.rows(); ++row) {
    for (double &value : scaled.Row(row)) value *= factor;
  }
  return scaled;
}

Matrix Transpose(const Matrix &a) {
  Matrix turned(a.cols(), a.rows());
  for (int32_t row = 0; row < a.rows(); ++row) {
    for (int32_t col = 0; col < a.cols(); ++col) turned(col, row) = a(row, col);
  }
  return turned;
}

// In place: the columns of the unit matrix grow where those of `a` are done with. The exchanges are undone at the end,
// last first, rows for columns.
Matrix Inverse(const Matrix &a) {
  if (a.rows() != a.cols()) return {};
  Matrix m(a);
  ShortArray<std::pair<int32_t, int32_t>> pivots(static_cast<size_t>(m.rows()));
  for (int32_t k = 0; k < m.rows(); ++k) {
    const auto [pivotRow, pivotCol] = FindPivot(m, k);
    pivots[static_cast<size_t>(k)] = {pivotRow, pivotCol};
    SwapRows(m, k, pivotRow);
    SwapColumns(m, k, pivotCol);
    const double scale = 1.0 / m(k, k);
    m(k, k) = 1.0;
    for (double &value : m.Row(k)) value *= scale;
    for (int32_t row = 0; row < m.rows(); ++row) {
      if (row == k) continue;
      const double factor = m(row, k);
      m(row, k) = 0.0;
      AddRow(m, row, k, -factor, 0);
    }
  }
  for (int32_t k = m.rows(); k-- > 0;) {
    const auto [pivotRow, pivotCol] = pivots[static_cast<size_t>(k)];
    SwapRows(m, k, pivotCol);
    SwapColumns(m, k, pivotRow);
  }
  return m;
}

int Solve(Matrix &x, const Matrix &a, const Matrix &b) {
  const int32_t size = a.rows();
  if (a.cols() != size || b.rows() != size || b.cols() != 1) return -1;
  Matrix m(a), right(b), solution(size, 1);
  ShortArray<int32_t> order(static_cast<size_t>(size));  // the unknown that each column stands for
  std::iota(order.begin(), order.end(), 0);
  for (int32_t k = 0; k < size; ++k) {
    const auto [pivotRow, pivotCol] = FindPivot(m, k);
    SwapRows(m, k, pivotRow);
    SwapRows(right, k, pivotRow);
    SwapColumns(m, k, pivotCol);
    std::swap(order[static_cast<size_t>(k)], order[static_cast<size_t>(pivotCol)]);
    if (!(std::fabs(m(k, k)) >= kSmallestDiagonal)) return -1;  // the largest one left: all that follow are no larger
    for (int32_t row = k + 1; row < size; ++row) {
      const double factor = -m(row, k) / m(k, k);
      AddRow(m, row, k, factor, k);
      AddRow(right, row, k, factor, 0);
    }
  }
  for (int32_t k = size; k-- > 0;) {
    double sum = right(k, 0);
    for (int32_t col = k + 1; col < size; ++col) sum -= m(k, col) * solution(order[static_cast<size_t>(col)], 0);
    solution(order[static_cast<size_t>(k)], 0) = sum / m(k, k);
  }
  if (!solution.IsFinite()) return -1;
  x = std::move(solution);
  return 0;
}

}  // namespace kapdf
