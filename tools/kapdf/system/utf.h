// UTF-8 (the program's own text) and UTF-16 (the contract's), and paths of the command line.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace kapdf::tool {

// Broken input becomes U+FFFD, one for each byte or unit that cannot be used.
std::u16string ToUtf16(std::string_view text);
std::string ToUtf8(std::u16string_view text);
// False when the text holds an unpaired surrogate, which UTF-8 cannot express.
bool IsWellFormed(std::u16string_view text);

std::filesystem::path PathOf(std::string_view utf8);
std::string Utf8Of(const std::filesystem::path &path);
// Loading the module changes the current directory, so every path is made absolute ahead of that.
std::string AbsolutePath(std::string_view utf8);

}  // namespace kapdf::tool
