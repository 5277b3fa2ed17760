// Paths as 8-bit text, for libraries that take nothing else.
#pragma once

#include <string>
#include <string_view>

namespace kapdf::platform {

// In the system's code page on Windows, where a character that the page lacks becomes "?"; in UTF-8 elsewhere.
std::string ToNarrowPath(std::u16string_view path);
std::u16string FromNarrowPath(std::string_view path);

// The system's folder for temporary files, with its trailing separator.
std::string TemporaryFolder();

}  // namespace kapdf::platform
