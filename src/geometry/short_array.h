// An array of few elements.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <vector>

namespace kapdf {

// Up to `kNear` elements stand in the object itself; only longer arrays allocate. The length is set once.
template <class T, size_t kNear = 16>
class ShortArray {
 public:
  ShortArray() : size_(0) {}
  explicit ShortArray(size_t size, T fill = {}) : size_(size) {
    if (size > kNear)
      far_.assign(size, fill);
    else
      std::fill_n(near_.begin(), size, fill);
  }

  size_t size() const { return size_; }
  T *begin() { return size_ <= kNear ? near_.data() : far_.data(); }
  const T *begin() const { return size_ <= kNear ? near_.data() : far_.data(); }
  T *end() { return begin() + size_; }
  const T *end() const { return begin() + size_; }
  T &operator[](size_t index) { return begin()[index]; }
  const T &operator[](size_t index) const { return begin()[index]; }

 private:
  std::array<T, kNear> near_;  // set as far as the array goes
  std::vector<T> far_;
  size_t size_;
};

}  // namespace kapdf
