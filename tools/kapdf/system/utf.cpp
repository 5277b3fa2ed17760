#include "system/utf.h"

namespace kapdf::tool {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool IsHigh(char32_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
bool IsLow(char32_t unit) { return unit >= 0xDC00 && unit < 0xE000; }

// Takes one character off the text at `at` and moves `at` behind it.
char32_t NextFromUtf8(std::string_view text, size_t &at) {
  const auto lead = static_cast<unsigned char>(text[at++]);
  if (lead < 0x80) return lead;
  const int more = lead >= 0xF0 && lead < 0xF5   ? 3
                   : lead >= 0xE0 && lead < 0xF0 ? 2
                   : lead >= 0xC2 && lead < 0xE0 ? 1
                                                 : 0;
  if (more == 0) return kReplacement;
  char32_t value = lead & (0x3F >> more);
  size_t behind = at;
  for (int i = 0; i < more; ++i, ++behind) {
    if (behind >= text.size() || (static_cast<unsigned char>(text[behind]) & 0xC0) != 0x80) return kReplacement;
    value = value << 6 | (static_cast<unsigned char>(text[behind]) & 0x3F);
  }
  constexpr char32_t kSmallest[] = {0, 0x80, 0x800, 0x10000};
  if (value < kSmallest[more] || value > 0x10FFFF || IsHigh(value) || IsLow(value)) return kReplacement;
  at = behind;
  return value;
}

void AppendUtf8(std::string &out, char32_t value) {
  if (value < 0x80) {
    out += static_cast<char>(value);
    return;
  }
  const int more = value < 0x800 ? 1 : value < 0x10000 ? 2 : 3;
  constexpr int kLead[] = {0, 0xC0, 0xE0, 0xF0};
  out += static_cast<char>(kLead[more] | value >> (6 * more));
  for (int i = more - 1; i >= 0; --i) out += static_cast<char>(0x80 | (value >> (6 * i) & 0x3F));
}

}  // namespace

std::u16string ToUtf16(std::string_view text) {
  std::u16string out;
  out.reserve(text.size());
  for (size_t at = 0; at < text.size();) {
    const char32_t value = NextFromUtf8(text, at);
    if (value < 0x10000) {
      out += static_cast<char16_t>(value);
    } else {
      out += static_cast<char16_t>(0xD800 + ((value - 0x10000) >> 10));
      out += static_cast<char16_t>(0xDC00 + ((value - 0x10000) & 0x3FF));
    }
  }
  return out;
}

std::string ToUtf8(std::u16string_view text) {
  std::string out;
  out.reserve(text.size());
  for (size_t at = 0; at < text.size(); ++at) {
    const char32_t unit = text[at];
    if (IsHigh(unit) && at + 1 < text.size() && IsLow(text[at + 1])) {
      AppendUtf8(out, 0x10000 + ((unit - 0xD800) << 10) + (text[++at] - 0xDC00u));
    } else {
      AppendUtf8(out, IsHigh(unit) || IsLow(unit) ? kReplacement : unit);
    }
  }
  return out;
}

bool IsWellFormed(std::u16string_view text) {
  for (size_t at = 0; at < text.size(); ++at) {
    if (IsLow(text[at])) return false;
    if (!IsHigh(text[at])) continue;
    if (++at == text.size() || !IsLow(text[at])) return false;
  }
  return true;
}

std::filesystem::path PathOf(std::string_view utf8) {
  return std::filesystem::path(std::u8string(utf8.begin(), utf8.end()));
}

std::string Utf8Of(const std::filesystem::path &path) {
  const std::u8string text = path.u8string();
  return {text.begin(), text.end()};
}

std::string AbsolutePath(std::string_view utf8) {
  std::error_code error;
  const std::filesystem::path full = std::filesystem::absolute(PathOf(utf8), error);
  return error ? std::string(utf8) : Utf8Of(full.lexically_normal());
}

}  // namespace kapdf::tool
