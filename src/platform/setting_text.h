// Numbers of the settings as text, the same in every locale.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kapdf::platform {

// The number that a text starts with, behind blanks: sign, digits, point, exponent. Text behind it does not matter.
// Infinities, not-a-number, hexadecimal digits and what lies outside of the range are refused.
std::optional<double> ScanReal(std::string_view text);
// A decimal or 0x number that fits 32 bits, signed or unsigned; 4294967295 is -1. Blanks around it are allowed.
std::optional<int32_t> ScanInteger(std::string_view text);
// The shortest text that reads back as the same value; not for infinities and not-a-number.
std::string FormatReal(double value);

}  // namespace kapdf::platform
