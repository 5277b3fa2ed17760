// Decimal text of numbers, the same bytes whatever the host's locale is.
#pragma once

#include <cstddef>
#include <cstdint>

namespace kapdf {

// Bytes that one number takes at most: the 309 digits of the largest double, sign, point and decimals.
inline constexpr size_t kNumberRoom = 330;

// Each writes at `at` and returns the place behind the last character.
//
// Three decimals, the exact decimal value rounded half to even, as "%.3f" gives it in the C locale; what rounds to zero
// from below is "-0.000". A value that is not finite is "0.000".
char *PutFixed3(char *at, double value);
// The same with six decimals, at its own pace.
char *PutFixed6(char *at, double value);
// A colour component of 0 to 255 as 0.00 to 1.00.
char *PutColorComponent(char *at, uint32_t component);
char *PutInteger(char *at, int64_t value);
// Four hexadecimal digits in lower case.
char *PutHex4(char *at, uint16_t value);

}  // namespace kapdf
