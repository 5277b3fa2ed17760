// A growing array of coordinates, x and y in turn.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace kapdf {

class CoordArray {
 public:
  // `growBy`: values by which the storage grows at least; it grows by half of itself where that is more, so that a long path
  // costs no more per point than a short one.
  explicit CoordArray(size_t growBy = 32) : growBy_(growBy) {}

  // Values in use, twice the points.
  size_t size() const { return values_.size(); }
  bool empty() const { return values_.empty(); }
  double *data() { return values_.data(); }
  const double *data() const { return values_.data(); }
  std::span<const double> values() const { return values_; }

  // The slot, made together with every one before it when it is not there yet; new slots are zero.
  double &At(size_t index) {
    if (index >= values_.size()) {
      Reserve(index + 1);
      values_.resize(index + 1);
    }
    return values_[index];
  }
  CoordArray &Push(double value) {
    if (values_.size() == values_.capacity()) Reserve(values_.size() + 1);
    values_.push_back(value);
    return *this;
  }
  CoordArray &PushPoint(double x, double y) { return Push(x).Push(y); }
  // Makes room for that many values behind the last one and gives their place; they count as in use and are zero.
  double *Extend(size_t count) {
    const size_t size = values_.size();
    Reserve(size + count);
    values_.resize(size + count);
    return values_.data() + size;
  }
  // Forgets the values and keeps the storage.
  void Clear() { values_.clear(); }

 private:
  void Reserve(size_t wanted) {
    const size_t capacity = values_.capacity();
    if (wanted <= capacity) return;
    const size_t step = (wanted + growBy_ - 1) / growBy_ * growBy_;
    const size_t next = capacity + (capacity / 2 > growBy_ ? capacity / 2 : growBy_);
    values_.reserve(step > next ? step : next);
  }

  std::vector<double> values_;
  size_t growBy_;
};

}  // namespace kapdf
