// Pieces of fixed templates, as the C library's scanning takes them; for zero-terminated text.
#pragma once

#include <cstdint>

#include "base/scan.h"

namespace kapdf {

inline bool Take(const char *&at, char wanted) {
  if (*at != wanted) return false;
  ++at;
  return true;
}

// "%x" with a greatest number of characters: white space ahead does not count, a sign and 0x do.
inline bool ScanHex(const char *&at, int width, uint32_t &value) {
  SkipSpaces(at);
  const char *p = at;
  const bool negative = *p == '-';
  if (negative || *p == '+') ++p, --width;
  if (width > 1 && p[0] == '0' && (p[1] | 0x20) == 'x') p += 2, width -= 2;
  uint32_t scanned = 0;
  bool any = false;
  for (int digit; width > 0 && (digit = HexValue(static_cast<unsigned char>(*p))) >= 0; ++p, --width, any = true)
    scanned = scanned << 4 | static_cast<uint32_t>(digit);
  if (!any) return false;
  value = negative ? 0 - scanned : scanned;
  at = p;
  return true;
}

}  // namespace kapdf
