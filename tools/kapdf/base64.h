// Bytes as base64 text, for the few records that carry a block of data.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kapdf::tool {

void AppendBase64(std::string &out, std::span<const uint8_t> bytes);
// Nothing when the text is not base64 with its padding.
std::optional<std::vector<uint8_t>> FromBase64(std::string_view text);

}  // namespace kapdf::tool
