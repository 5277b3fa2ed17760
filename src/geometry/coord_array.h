// A growing array of coordinates, x and y in turn.
#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <span>
#include <utility>

namespace kapdf {

// Moves, and does not copy.
class CoordArray {
 public:
  // `growBy`: values by which the storage grows at least; it grows by half of itself where that is more, so that a long
  // path costs no more per point than a short one.
  explicit CoordArray(size_t growBy = 32) : growBy_(growBy) {}

  // Values in use, twice the points.
  size_t size() const { return size_; }
  bool empty() const { return size_ == 0; }
  size_t capacity() const { return capacity_; }
  double *data() { return values_.get(); }
  const double *data() const { return values_.get(); }
  std::span<const double> values() const { return {values_.get(), size_}; }

  // The slot, made together with every one before it when it is not there yet; new slots are zero.
  double &At(size_t index) {
    if (index >= size_) {
      const size_t old = size_;
      Extend(index + 1 - old);
      std::fill(values_.get() + old, values_.get() + size_, 0.0);
    }
    return values_[index];
  }
  CoordArray &Push(double value) {
    if (size_ == capacity_) Reserve(size_ + 1);
    values_[size_++] = value;
    return *this;
  }
  CoordArray &PushPoint(double x, double y) { return Push(x).Push(y); }
  // Takes that many slots behind the last one into use, with no value yet, and gives their place.
  double *Extend(size_t count) {
    Reserve(size_ + count);
    size_ += count;
    return values_.get() + size_ - count;
  }
  // Keeps that many values of those in use.
  void Truncate(size_t size) { size_ = size; }
  // Forgets the values; storage beyond a megabyte is given back.
  void Clear() {
    size_ = 0;
    if (capacity_ <= kKeptValues) return;
    values_.reset();
    capacity_ = 0;
  }

 private:
  void Reserve(size_t wanted) {
    if (wanted <= capacity_) return;
    const size_t step = (wanted + growBy_ - 1) / growBy_ * growBy_;
    const size_t grown = std::max(step, capacity_ + std::max(capacity_ / 2, growBy_));
    std::unique_ptr<double[]> values(new double[grown]);
    std::copy_n(values_.get(), size_, values.get());
    values_ = std::move(values);
    capacity_ = grown;
  }

  static constexpr size_t kKeptValues = size_t{1} << 17;
  std::unique_ptr<double[]> values_;
  size_t size_ = 0;
  size_t capacity_ = 0;
  size_t growBy_;
};

}  // namespace kapdf
