#include "io/codec.h"

#include <algorithm>

namespace kapdf {

uint8_t CCompressionClass::getByte() {
  uint8_t byte = 255;
  if (Read(&byte, 1) == 0 && state_ == kCodecOk) state_ = kCodecFinished;
  return byte;
}

void CCompressionClass::GetInfo(char *buffer, size_t size) const {
  if (size == 0) return;
  const std::string_view text = name().substr(0, size - 1);
  std::copy(text.begin(), text.end(), buffer);
  buffer[text.size()] = 0;
}

size_t CZVUncompressed::compress(const uint8_t *buffer, size_t count) { return io_.Write(buffer, count); }

size_t CZVUncompressed::decompress(uint8_t *buffer, size_t count) {
  if (length_ != 0) count = std::min(count, length_ - read_);
  const size_t got = io_.Read(buffer, count);
  read_ += got;
  return got;
}

void CZVUncompressed::reset() {
  CCompressionClass::reset();
  read_ = 0;
}

}  // namespace kapdf
