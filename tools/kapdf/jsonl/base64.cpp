#include "jsonl/base64.h"

namespace kapdf::tool {
namespace {

constexpr std::string_view kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

}  // namespace

void AppendBase64(std::string &out, std::span<const uint8_t> bytes) {
  for (size_t at = 0; at < bytes.size(); at += 3) {
    const size_t count = std::min<size_t>(3, bytes.size() - at);
    uint32_t group = 0;
    for (size_t i = 0; i < 3; ++i) group = group << 8 | (i < count ? bytes[at + i] : 0u);
    for (size_t i = 0; i < 4; ++i) out += i <= count ? kDigits[group >> (18 - 6 * i) & 63] : '=';
  }
}

void Base64Stream::Put(std::span<const uint8_t> bytes) {
  while (count_ > 0 && count_ < 3 && !bytes.empty()) {
    held_[count_++] = bytes[0];
    bytes = bytes.subspan(1);
  }
  if (count_ == 3) End();
  if (count_ > 0) return;
  const size_t whole = bytes.size() / 3 * 3;
  AppendBase64(out_, bytes.first(whole));
  for (const uint8_t byte : bytes.subspan(whole)) held_[count_++] = byte;
}

void Base64Stream::End() {
  AppendBase64(out_, {held_, count_});
  count_ = 0;
}

std::optional<std::vector<uint8_t>> FromBase64(std::string_view text) {
  if (text.size() % 4 != 0) return std::nullopt;
  std::vector<uint8_t> bytes;
  bytes.reserve(text.size() / 4 * 3);
  for (size_t at = 0; at < text.size(); at += 4) {
    std::string_view quad = text.substr(at, 4);
    const bool last = at + 4 == text.size();
    while (last && quad.size() > 2 && quad.back() == '=') quad.remove_suffix(1);
    uint32_t group = 0;
    for (const char digit : quad) {
      const size_t value = kDigits.find(digit);
      if (value == std::string_view::npos) return std::nullopt;
      group = group << 6 | static_cast<uint32_t>(value);
    }
    group <<= 6 * (4 - quad.size());
    for (size_t i = 0; i + 1 < quad.size(); ++i) bytes.push_back(static_cast<uint8_t>(group >> (16 - 8 * i)));
  }
  return bytes;
}

}  // namespace kapdf::tool
