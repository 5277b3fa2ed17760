#include "platform/setting_text.h"

#include <charconv>
#include <cmath>

namespace kapdf::platform {
namespace {

constexpr std::string_view kBlanks = " \t\r\n\v\f";

std::string_view SkipBlanks(std::string_view text) {
  const size_t start = text.find_first_not_of(kBlanks);
  return start == std::string_view::npos ? std::string_view() : text.substr(start);
}

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

}  // namespace

std::optional<double> ScanReal(std::string_view text) {
  text = SkipBlanks(text);
  const bool negative = text.starts_with('-');
  if (negative || text.starts_with('+')) text.remove_prefix(1);
  // Keeps out "inf", "nan" and a second sign. "0x10" reads as 0.
  const bool number = !text.empty() && (IsDigit(text[0]) || (text[0] == '.' && text.size() > 1 && IsDigit(text[1])));
  if (!number) return std::nullopt;
  double value = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
  if (result.ec != std::errc() || !std::isfinite(value)) return std::nullopt;
  return negative ? -value : value;
}

std::optional<int32_t> ScanInteger(std::string_view text) {
  text = SkipBlanks(text);
  const bool negative = text.starts_with('-');
  if (negative || text.starts_with('+')) text.remove_prefix(1);
  int base = 10;
  if (text.starts_with("0x") || text.starts_with("0X")) {
    base = 16;
    text.remove_prefix(2);
  }
  uint64_t value = 0;
  const char *end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, value, base);
  if (result.ec != std::errc() || !SkipBlanks({result.ptr, static_cast<size_t>(end - result.ptr)}).empty()) {
    return std::nullopt;
  }
  if (value > (negative ? uint64_t{1} << 31 : UINT32_MAX)) return std::nullopt;
  return static_cast<int32_t>(static_cast<uint32_t>(negative ? 0 - value : value));
}

std::string FormatReal(double value) {
  char text[32];
  const auto result = std::to_chars(text, text + sizeof text, value);
  return std::string(text, result.ptr);
}

}  // namespace kapdf::platform
