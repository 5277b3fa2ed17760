// Numbers from text, without the locale: what the C library's scanning accepts in the C locale, less infinities, NaN
// and hexadecimal floats.
#pragma once

#include <cstdint>
#include <string_view>

#include "base/ascii.h"

namespace kapdf {

// Every scanner takes a cursor into zero-terminated text. It passes over white space, and on success over the number.
// On failure nothing is stored and the cursor stands where no number began.

inline void SkipSpaces(const char *&at) {
  while (IsSpace(static_cast<unsigned char>(*at))) ++at;
}

namespace detail {
// The general case: `at` behind the white space.
bool ScanRealSlowly(const char *&at, double &value);
extern const double kPowersOfTen[23];
}  // namespace detail

// Decimal floating point with an optional exponent. Up to 15 digits are read as an integer over an exact power of ten,
// which gives the correctly rounded value with one division.
inline bool ScanReal(const char *&at, double &value) {
  SkipSpaces(at);
  const char *p = at;
  const bool negative = *p == '-';
  if (negative || *p == '+') ++p;
  const char *first = p;
  uint64_t digits = 0;
  while (IsDigit(static_cast<unsigned char>(*p))) digits = digits * 10 + static_cast<uint64_t>(*p++ - '0');
  auto count = p - first;
  int64_t decimals = 0;
  if (*p == '.') {
    const char *point = ++p;
    while (IsDigit(static_cast<unsigned char>(*p))) digits = digits * 10 + static_cast<uint64_t>(*p++ - '0');
    decimals = p - point;
    count += decimals;
  }
  if (count == 0) return false;
  if (count > 15 || (*p | 0x20) == 'e') return detail::ScanRealSlowly(at, value);
  auto magnitude = static_cast<double>(digits);
  if (decimals > 0) magnitude /= detail::kPowersOfTen[decimals];
  value = negative ? -magnitude : magnitude;
  at = p;
  return true;
}

// Decimal integer; what does not fit 32 bits is limited to them.
bool ScanInteger(const char *&at, int32_t &value);
// The same with a leading 0 for octal and 0x for hexadecimal.
bool ScanAnyInteger(const char *&at, int32_t &value);

// Whole-text conversions: what does not begin with a number is 0.
double RealFrom(const char *text);
int32_t IntegerFrom(const char *text);

// A real that was scanned, as an integer: truncated and limited to 32 bits; 0 for what is not a number.
int32_t TruncateToInteger(double value);

}  // namespace kapdf
