// UTF-16 as the system's interfaces take it. wchar_t has 16 bits here.
#pragma once

#include <string>
#include <string_view>

namespace kapdf::platform {

static_assert(sizeof(wchar_t) == sizeof(char16_t));

// A copy that ends with a zero.
inline std::wstring Wide(std::u16string_view text) { return {text.begin(), text.end()}; }
inline std::u16string FromWide(std::wstring_view text) { return {text.begin(), text.end()}; }

}  // namespace kapdf::platform
