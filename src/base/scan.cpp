#include "base/scan.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <string>

namespace kapdf {
namespace {

const char *SkipDigits(const char *at) {
  while (IsDigit(static_cast<unsigned char>(*at))) ++at;
  return at;
}

// Where an unsigned number ends at the latest, so that a run of numbers without white space is not searched for each of
// them.
const char *NumberEnd(const char *at) {
  at = SkipDigits(at);
  if (*at == '.') at = SkipDigits(at + 1);
  if ((*at | 0x20) != 'e') return at;
  return SkipDigits(at[1] == '+' || at[1] == '-' ? at + 2 : at + 1);
}

// For an unsigned number far from 1 whose digits are not all zero: by the place of its first digit and the exponent.
bool IsAboveOne(std::string_view text) {
  const size_t mantissa = std::min(text.find_first_of("eE"), text.size());
  const size_t point = std::min(text.find('.'), mantissa);
  const auto first = static_cast<int64_t>(text.find_first_of("123456789"));
  int32_t exponent = 0;
  const std::string tail(text.substr(std::min(mantissa + 1, text.size())));
  const char *at = tail.c_str();
  ScanInteger(at, exponent);
  return static_cast<int64_t>(point) - first + exponent > 0;
}

}  // namespace

namespace detail {

const double kPowersOfTen[23] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                 1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

bool ScanRealSlowly(const char *&at, double &value) {
  const char *p = at;
  const bool negative = *p == '-';
  if (negative || *p == '+') ++p;
  double magnitude = 0;
  const auto result = std::from_chars(p, NumberEnd(p), magnitude);
  if (result.ec == std::errc::invalid_argument) return false;
  if (result.ec == std::errc::result_out_of_range) {
    // Beyond the largest number the value is refused; below the smallest it is 0.
    if (IsAboveOne({p, static_cast<size_t>(result.ptr - p)})) return false;
    magnitude = 0;
  }
  value = negative ? -magnitude : magnitude;
  at = result.ptr;
  return true;
}

}  // namespace detail

namespace {

bool ScanWithBase(const char *&at, int32_t &value, unsigned base) {
  SkipSpaces(at);
  const char *p = at;
  const bool negative = *p == '-';
  if (negative || *p == '+') ++p;
  if (base == 0) {
    base = 10;
    if (*p == '0') {
      base = 8;
      if ((p[1] | 0x20) == 'x' && HexValue(static_cast<unsigned char>(p[2])) >= 0) {
        base = 16;
        p += 2;
      }
    }
  }
  const char *first = p;
  int64_t sum = 0;
  for (;; ++p) {
    const int digit = HexValue(static_cast<unsigned char>(*p));
    if (digit < 0 || static_cast<unsigned>(digit) >= base) break;
    if (sum <= std::numeric_limits<int32_t>::max()) sum = sum * base + digit;
  }
  if (p == first) return false;
  if (negative) sum = -sum;
  sum = std::min<int64_t>(sum, std::numeric_limits<int32_t>::max());
  value = static_cast<int32_t>(std::max<int64_t>(sum, std::numeric_limits<int32_t>::min()));
  at = p;
  return true;
}

}  // namespace

bool ScanInteger(const char *&at, int32_t &value) { return ScanWithBase(at, value, 10); }

bool ScanAnyInteger(const char *&at, int32_t &value) { return ScanWithBase(at, value, 0); }

double RealFrom(const char *text) {
  double value = 0;
  ScanReal(text, value);
  return value;
}

int32_t IntegerFrom(const char *text) {
  int32_t value = 0;
  ScanInteger(text, value);
  return value;
}

int32_t TruncateToInteger(double value) {
  if (!(value > -2147483648.0)) return value <= -2147483648.0 ? std::numeric_limits<int32_t>::min() : 0;
  return value >= 2147483647.0 ? std::numeric_limits<int32_t>::max() : static_cast<int32_t>(value);
}

}  // namespace kapdf
