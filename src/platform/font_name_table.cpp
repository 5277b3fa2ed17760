#include "platform/font_name_table.h"

namespace kapdf::platform {
namespace {

constexpr size_t kHeaderBytes = 6;
constexpr size_t kRecordBytes = 12;
constexpr uint16_t kPostScriptName = 6;

uint16_t Big16(std::span<const uint8_t> bytes, size_t at) {
  return static_cast<uint16_t>(bytes[at] << 8 | bytes[at + 1]);
}

}  // namespace

std::vector<std::u16string> PostScriptNames(std::span<const uint8_t> table) {
  std::vector<std::u16string> names;
  if (table.size() < kHeaderBytes) return names;
  const size_t count = Big16(table, 2);
  const size_t strings = Big16(table, 4);
  for (size_t i = 0; i < count; ++i) {
    const size_t at = kHeaderBytes + i * kRecordBytes;
    if (at + kRecordBytes > table.size()) break;
    const uint16_t platformId = Big16(table, at);
    const size_t length = Big16(table, at + 8);
    const size_t start = strings + Big16(table, at + 10);
    if (Big16(table, at + 6) != kPostScriptName || start > table.size() || length > table.size() - start) continue;
    const auto text = table.subspan(start, length);
    std::u16string name;
    if (platformId == 0 || platformId == 3) {  // UTF-16; the others have one byte a character
      for (size_t k = 0; k + 1 < text.size(); k += 2) name += static_cast<char16_t>(Big16(text, k));
    } else {
      name.assign(text.begin(), text.end());
    }
    names.push_back(std::move(name));
  }
  return names;
}

}  // namespace kapdf::platform
