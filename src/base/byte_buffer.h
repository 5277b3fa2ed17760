// A block of bytes that grows without clearing what is about to be overwritten.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <new>
#if __cplusplus >= 202002L
#include <span>
#endif

namespace kapdf {

class ByteBuffer {
 public:
  uint8_t *data() { return bytes_.get(); }
  const uint8_t *data() const { return bytes_.get(); }
  size_t size() const { return size_; }
  bool empty() const { return size_ == 0; }
#if __cplusplus >= 202002L  // intake is compiled as C++17
  std::span<const uint8_t> span() const { return {bytes_.get(), size_}; }
#endif

  // Keeps the first bytes; new ones are not initialised. Throws std::bad_alloc, leaving the buffer as it was.
  void Resize(size_t size) {
    if (size > capacity_) {
      void *grown = std::realloc(bytes_.get(), size);
      if (!grown) throw std::bad_alloc();
      static_cast<void>(bytes_.release());
      bytes_.reset(static_cast<uint8_t *>(grown));
      capacity_ = size;
    }
    size_ = size;
  }
  // Gives memory behind the size back.
  void ShrinkToFit() {
    if (capacity_ - size_ < capacity_ / 8 || size_ == 0) return;
    if (void *less = std::realloc(bytes_.get(), size_)) {
      static_cast<void>(bytes_.release());
      bytes_.reset(static_cast<uint8_t *>(less));
      capacity_ = size_;
    }
  }
  void Clear() {
    bytes_.reset();
    size_ = capacity_ = 0;
  }

 private:
  struct Free {
    void operator()(uint8_t *bytes) const { std::free(bytes); }
  };
  std::unique_ptr<uint8_t[], Free> bytes_;
  size_t size_ = 0;
  size_t capacity_ = 0;
};

}  // namespace kapdf
