// Little- and big-endian access to bytes of any alignment.
#pragma once

#include <cstdint>
#include <cstring>

namespace kapdf {

// Copies a trivially copyable value out of, or into, memory of any alignment.
template <class T>
T LoadAs(const void *at) {
  T value;
  std::memcpy(&value, at, sizeof value);
  return value;
}
template <class T>
void StoreAs(void *at, const T &value) {
  std::memcpy(at, &value, sizeof value);
}

// Unsigned big-endian number of 0 to 8 bytes.
inline uint64_t LoadBigEndian(const uint8_t *at, unsigned width) {
  uint64_t value = 0;
  for (unsigned i = 0; i < width; ++i) value = value << 8 | at[i];
  return value;
}
// The low `width` bytes of the value, most significant first.
inline void StoreBigEndian(uint8_t *at, uint64_t value, unsigned width) {
  for (unsigned i = width; i-- > 0; value >>= 8) at[i] = static_cast<uint8_t>(value);
}

}  // namespace kapdf
