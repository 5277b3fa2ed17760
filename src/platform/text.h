// Conversion between UTF-16 and the code pages of 8-bit text.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace kapdf::platform {

// Code page numbers are Windows' own; 0 is the system's (Windows-1252 where there is none).
inline constexpr uint32_t kSystemCodePage = 0;

// What a code page cannot express becomes "?"; an unknown code page acts as the system's.
std::string ToNarrow(std::u16string_view text, uint32_t codePage);
// Bytes that the code page does not define become U+FFFD or what the system's converter makes of them.
std::u16string ToWide(std::string_view text, uint32_t codePage);

// UTF-8 with U+FFFD for broken input, both ways.
std::string ToUtf8(std::u16string_view text);
std::u16string FromUtf8(std::string_view text);

}  // namespace kapdf::platform
