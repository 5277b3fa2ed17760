// Values taken from the bytes of an input, front to back; zeros once they are used up.
#pragma once

#include <cstdint>
#include <cstring>
#include <span>
#include <string>

namespace kapdf::fuzz {

class Input {
 public:
  explicit Input(std::span<const uint8_t> bytes) : bytes_(bytes) {}

  bool empty() const { return bytes_.empty(); }
  template <class T>
  T Take() {
    T value{};
    const size_t count = sizeof value < bytes_.size() ? sizeof value : bytes_.size();
    if (count > 0) std::memcpy(&value, bytes_.data(), count);
    bytes_ = bytes_.subspan(count);
    return value;
  }
  // 0 to `most`.
  uint32_t Below(uint32_t most) { return Take<uint8_t>() % (most + 1); }
  // Mostly lengths as drawings have them, sometimes any pattern of bits.
  double Real() {
    const uint32_t choice = Below(15);
    if (choice == 0) return Take<double>();
    const int32_t value = Take<int16_t>();
    return choice == 1 ? value * 1e30 : value / 64.0;
  }
  std::u16string Text() {
    std::u16string text;
    for (uint32_t left = Below(12); left > 0; --left) text += Take<char16_t>();
    return text;
  }
  std::string Ascii() {
    std::string text;
    for (uint32_t left = Below(60); left > 0; --left) text += static_cast<char>(32 + Below(94));
    return text;
  }

 private:
  std::span<const uint8_t> bytes_;
};

}  // namespace kapdf::fuzz
