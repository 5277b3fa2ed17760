#include "platform/text.h"

namespace kapdf::platform {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool IsHighSurrogate(char32_t c) { return c >= 0xD800 && c < 0xDC00; }
bool IsLowSurrogate(char32_t c) { return c >= 0xDC00 && c < 0xE000; }

void AppendUtf8(std::string &out, char32_t c) {
  const auto tail = [&](int shift) { out += static_cast<char>(0x80 | ((c >> shift) & 0x3F)); };
  if (c < 0x80) {
    out += static_cast<char>(c);
  } else if (c < 0x800) {
    out += static_cast<char>(0xC0 | c >> 6);
    tail(0);
  } else if (c < 0x10000) {
    out += static_cast<char>(0xE0 | c >> 12);
    tail(6);
    tail(0);
  } else {
    out += static_cast<char>(0xF0 | c >> 18);
    tail(12);
    tail(6);
    tail(0);
  }
}

// Reads the character at `at`, which is below text.size(), and moves behind it. A broken sequence gives one U+FFFD for
// its longest part that could have begun a character.
char32_t NextUtf8(std::string_view text, size_t &at) {
  const auto lead = static_cast<unsigned char>(text[at++]);
  if (lead < 0x80) return lead;
  if (lead < 0xC2 || lead > 0xF4) return kReplacement;
  const int tails = lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : 3;
  // The first tail's range keeps out overlong forms, surrogates and what lies above U+10FFFF.
  unsigned char low = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
  unsigned char high = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
  char32_t c = lead & (0x3F >> tails);
  for (int i = 0; i < tails; ++i) {
    if (at == text.size()) return kReplacement;
    const auto tail = static_cast<unsigned char>(text[at]);
    if (tail < low || tail > high) return kReplacement;
    c = c << 6 | (tail & 0x3F);
    low = 0x80;
    high = 0xBF;
    ++at;
  }
  return c;
}

}  // namespace

std::string ToUtf8(std::u16string_view text) {
  std::string out;
  out.reserve(text.size());
  for (size_t i = 0; i < text.size(); ++i) {
    char32_t c = text[i];
    if (IsHighSurrogate(c) && i + 1 < text.size() && IsLowSurrogate(text[i + 1])) {
      c = 0x10000 + ((c - 0xD800) << 10) + (text[++i] - 0xDC00);
    } else if (IsHighSurrogate(c) || IsLowSurrogate(c)) {
      c = kReplacement;
    }
    AppendUtf8(out, c);
  }
  return out;
}

std::u16string FromUtf8(std::string_view text) {
  std::u16string out;
  out.reserve(text.size());
  for (size_t at = 0; at < text.size();) {
    const char32_t c = NextUtf8(text, at);
    if (c < 0x10000) {
      out += static_cast<char16_t>(c);
    } else {
      out += static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10));
      out += static_cast<char16_t>(0xDC00 + (c & 0x3FF));
    }
  }
  return out;
}

}  // namespace kapdf::platform
