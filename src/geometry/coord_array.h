// A growing array of coordinates, x and y in turn.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

namespace kapdf {

// Moves, and does not copy.
class CoordArray {
 public:
  static constexpr size_t kHeadBytes = 68;

  // `growBy`: values by which the storage grows at least; it grows by half of itself where that is more, so that a long
  // path costs no more per point than a short one.
  explicit CoordArray(size_t growBy = 32) : growBy_(growBy) {}

  // Values in use, twice the points.
  size_t size() const { return size_; }
  bool empty() const { return size_ == 0; }
  size_t capacity() const { return capacity_; }
  double *data() { return values_; }
  const double *data() const { return values_; }
  std::span<const double> values() const { return {values_, size_}; }
  // The place of a structure that heads the values in one block: `kHeadBytes` before the first value. Only when there
  // are values.
  uint8_t *head() { return reinterpret_cast<uint8_t *>(values_) - kHeadBytes; }

  // The slot, made together with every one before it when it is not there yet; new slots are zero.
  double &At(size_t index) {
    if (index >= size_) {
      const size_t old = size_;
      Extend(index + 1 - old);
      std::fill(values_ + old, values_ + size_, 0.0);
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
    return values_ + size_ - count;
  }
  // Keeps that many values of those in use.
  void Truncate(size_t size) { size_ = size; }
  // Forgets the values; storage beyond a megabyte is given back.
  void Clear() {
    size_ = 0;
    if (capacity_ <= kKeptValues) return;
    storage_.reset();
    values_ = nullptr;
    capacity_ = 0;
  }

 private:
  void Reserve(size_t wanted) {
    if (wanted <= capacity_) return;
    const size_t step = (wanted + growBy_ - 1) / growBy_ * growBy_;
    const size_t grown = std::max(step, capacity_ + std::max(capacity_ / 2, growBy_));
    std::unique_ptr<double[]> storage(new double[kHeadValues + grown]);
    std::copy_n(values_, size_, storage.get() + kHeadValues);
    storage_ = std::move(storage);
    values_ = storage_.get() + kHeadValues;
    capacity_ = grown;
  }

  static constexpr size_t kKeptValues = size_t{1} << 17;
  static constexpr size_t kHeadValues = (kHeadBytes + sizeof(double) - 1) / sizeof(double);
  std::unique_ptr<double[]> storage_;
  double *values_ = nullptr;  // in the storage, behind the head
  size_t size_ = 0;
  size_t capacity_ = 0;
  size_t growBy_;
};

}  // namespace kapdf
