// Names in the one spelling that documents made in memory and lexed content share, so that they can be compared.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace kapdf {

// `name`: without its slash and with every #xx resolved. Regular characters stand as they are, any other one as # and
// two hexadecimal digits (ISO 32000-1, 7.3.5). A name that gets longer than readers take is cut, and told apart from
// others by a hash of all of it (FNV-1a).
inline std::string SpellName(std::string_view name) {
  constexpr size_t kLongest = 100, kKept = 60;
  static constexpr char kDigits[] = "0123456789ABCDEF";
  std::string text;
  for (const char c : name) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte > ' ' && byte < 127 && std::string_view("#()<>[]{}/%").find(c) == std::string_view::npos) {
      text += c;
    } else {
      text += '#';
      text += kDigits[byte >> 4];
      text += kDigits[byte & 15];
    }
  }
  if (text.size() <= kLongest) return text;
  uint64_t hash = 0xCBF29CE484222325;
  for (const char c : name) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3;
  text.resize(kKept);
  for (int shift = 60; shift >= 0; shift -= 4) text += kDigits[hash >> shift & 15];
  return text;
}

}  // namespace kapdf
