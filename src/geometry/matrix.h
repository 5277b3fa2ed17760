// A small dense matrix for the fitting of curves.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "geometry/short_array.h"

namespace kapdf {

// Row by row. A size of 0 or below in either direction gives an empty matrix. Copies are deep. Matrices of up to 4 by 4
// do not allocate.
class Matrix {
 public:
  Matrix() = default;
  Matrix(int32_t rows, int32_t cols, double fill = 0.0);

  int32_t rows() const { return rows_; }
  int32_t cols() const { return cols_; }
  double &operator()(int32_t row, int32_t col) { return data_[Index(row, col)]; }
  double operator()(int32_t row, int32_t col) const { return data_[Index(row, col)]; }
  std::span<double> Row(int32_t row) { return {data_.begin() + Index(row, 0), static_cast<size_t>(cols_)}; }
  std::span<const double> Row(int32_t row) const { return {data_.begin() + Index(row, 0), static_cast<size_t>(cols_)}; }

  // Copies the values to the start of a row.
  void SetRow(int32_t row, double a, double b, double c);
  void SetRow(int32_t row, double a, double b, double c, double d);
  // Copies the values over the elements from the first one on, row by row; what does not fit is left out.
  void SetVector(std::span<const double> values);
  // Copies a row out, as far as there is place.
  void GetRow(int32_t row, std::span<double> values) const;

  // No element is infinite or not a number.
  bool IsFinite() const;

 private:
  size_t Index(int32_t row, int32_t col) const {
    return static_cast<size_t>(row) * static_cast<size_t>(cols_) + static_cast<size_t>(col);
  }

  int32_t rows_ = 0;
  int32_t cols_ = 0;
  ShortArray<double> data_;
};

// Sizes have to match; where they do not, the result is empty.
Matrix Multiply(const Matrix &a, const Matrix &b);
Matrix Subtract(const Matrix &a, const Matrix &b);
Matrix Scale(const Matrix &a, double factor);
Matrix Transpose(const Matrix &a);

// Gauss-Jordan with full pivoting. A zero pivot is divided by like any other one, so that a singular matrix gives
// elements that are not finite: IsFinite tells.
Matrix Inverse(const Matrix &a);

// Solves a x = b by elimination with full pivoting, for a square matrix and one column. 0 with `x` set; -1 with `x`
// left alone when the matrix is singular: a diagonal value that remains is below 1e-15 or not a number, or the result
// is not finite.
int Solve(Matrix &x, const Matrix &a, const Matrix &b);

}  // namespace kapdf
