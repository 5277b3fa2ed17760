#include "writer/number_text.h"

#include <bit>
#include <charconv>
#include <cmath>

namespace kapdf {
namespace {

constexpr int kMantissaBits = 52;
constexpr uint64_t kMantissaMask = (uint64_t{1} << kMantissaBits) - 1;
constexpr int kExponentMask = 0x7FF;
constexpr int kExponentOfUnit = 1075;  // biased exponent at which the mantissa is the value itself

// mantissa * 2^-shift * 1000, rounded half to even. The product is below 2^63, so every step is exact.
uint64_t Thousandths(uint64_t mantissa, int shift) {
  const uint64_t scaled = mantissa * 1000;
  if (shift == 0) return scaled;
  if (shift > 63) return 0;  // less than half a thousandth
  const uint64_t half = uint64_t{1} << (shift - 1);
  const uint64_t rest = scaled & ((half << 1) - 1);
  const uint64_t whole = scaled >> shift;
  return whole + (rest > half || (rest == half && (whole & 1)) ? 1 : 0);
}

}  // namespace

char *PutFixed3(char *at, double value) {
  const auto bits = std::bit_cast<uint64_t>(value);
  int exponent = static_cast<int>(bits >> kMantissaBits) & kExponentMask;
  uint64_t mantissa = bits & kMantissaMask;
  if (exponent == kExponentMask) {
    exponent = 0;
    mantissa = 0;
  } else if (bits >> 63) {
    *at++ = '-';
  }
  if (exponent != 0)
    mantissa |= kMantissaMask + 1;
  else
    exponent = 1;
  if (exponent > kExponentOfUnit)
    return std::to_chars(at, at + kNumberRoom - 1, std::fabs(value), std::chars_format::fixed, 3).ptr;

  const uint64_t thousandths = Thousandths(mantissa, kExponentOfUnit - exponent);
  const uint64_t whole = thousandths / 1000;
  const auto decimals = static_cast<uint32_t>(thousandths - whole * 1000);
  at = whole >> 32 ? std::to_chars(at, at + 20, whole).ptr
                   : std::to_chars(at, at + 10, static_cast<uint32_t>(whole)).ptr;
  *at++ = '.';
  *at++ = static_cast<char>('0' + decimals / 100);
  *at++ = static_cast<char>('0' + decimals / 10 % 10);
  *at++ = static_cast<char>('0' + decimals % 10);
  return at;
}

char *PutFixed6(char *at, double value) {
  return std::to_chars(at, at + kNumberRoom, std::isfinite(value) ? value : 0.0, std::chars_format::fixed, 6).ptr;
}

char *PutColorComponent(char *at, uint32_t component) {
  const uint32_t hundredths = (component * 200 + 255) / 510;  // no 8-bit value lies half way between two hundredths
  *at++ = static_cast<char>('0' + hundredths / 100);
  *at++ = '.';
  *at++ = static_cast<char>('0' + hundredths / 10 % 10);
  *at++ = static_cast<char>('0' + hundredths % 10);
  return at;
}

char *PutInteger(char *at, int64_t value) { return std::to_chars(at, at + 20, value).ptr; }

char *PutHex4(char *at, uint16_t value) {
  for (int shift = 12; shift >= 0; shift -= 4) *at++ = "0123456789abcdef"[value >> shift & 15];
  return at;
}

}  // namespace kapdf
