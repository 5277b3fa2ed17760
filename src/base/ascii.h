// Character classes of the C locale, whatever the host's locale is.
#pragma once

#include <cstdint>

namespace kapdf {

// Blank, TAB, LF, VT, FF, CR.
constexpr bool IsSpace(unsigned c) { return c == ' ' || (c >= 9 && c <= 13); }
constexpr bool IsDigit(unsigned c) { return c - '0' < 10u; }
constexpr bool IsLetter(unsigned c) { return (c | 0x20u) - 'a' < 26u; }

// Value of a hexadecimal digit, -1 for any other character.
constexpr int HexValue(unsigned c) {
  if (IsDigit(c)) return static_cast<int>(c - '0');
  const unsigned lower = c | 0x20u;
  return lower - 'a' < 6u ? static_cast<int>(lower - 'a' + 10) : -1;
}

}  // namespace kapdf
