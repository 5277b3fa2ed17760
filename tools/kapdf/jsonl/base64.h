// Bytes as base64 text, for the few records that carry a block of data.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kapdf::tool {

// Bytes that come in pieces, as one text.
class Base64Stream {
 public:
  explicit Base64Stream(std::string &out) : out_(out) {}
  void Put(std::span<const uint8_t> bytes);
  void End();

 private:
  std::string &out_;
  uint8_t held_[3];
  size_t count_ = 0;
};

void AppendBase64(std::string &out, std::span<const uint8_t> bytes);
// Nothing when the text is not base64 with its padding.
std::optional<std::vector<uint8_t>> FromBase64(std::string_view text);

}  // namespace kapdf::tool
