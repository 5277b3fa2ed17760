#include "writer/cff_program.h"

#include <optional>

#include "base/bytes.h"
#include "fonts/font_sfnt.h"

namespace kapdf {
namespace {

using Bytes = std::span<const uint8_t>;

constexpr uint32_t kOpenTypeVersion = 0x4F54544F;  // "OTTO"

// The first item of an index, and what stands behind the index. Adobe Technical Note 5176, chapter 5.
struct Index {
  size_t count;
  Bytes first;
  Bytes behind;
};

std::optional<Index> ReadIndex(Bytes bytes) {
  if (bytes.size() < 2) return std::nullopt;
  const auto count = static_cast<size_t>(LoadBigEndian(bytes.data(), 2));
  if (count == 0) return Index{0, {}, bytes.subspan(2)};
  if (bytes.size() < 3 || bytes[2] < 1 || bytes[2] > 4) return std::nullopt;
  const size_t width = bytes[2], data = 3 + (count + 1) * width - 1;  // offsets count from 1
  if (data + 1 > bytes.size()) return std::nullopt;
  const auto offset = [&](size_t i) { return static_cast<size_t>(LoadBigEndian(&bytes[3 + i * width], width)); };
  const size_t first = offset(0), second = offset(1), end = offset(count);
  if (first != 1 || second < first || end < second || end > bytes.size() - data) return std::nullopt;
  return Index{count, bytes.subspan(data + first, second - first), bytes.subspan(data + end)};
}

// Chapter 4. The first operator of a font with a character collection is ROS.
bool BeginsWithCollection(Bytes dictionary) {
  constexpr uint8_t kEscape = 12, kCollection = 30, kFirstOperand = 28;
  size_t at = 0;
  while (at < dictionary.size()) {
    const uint8_t byte = dictionary[at];
    if (byte < kFirstOperand) return byte == kEscape && at + 1 < dictionary.size() && dictionary[at + 1] == kCollection;
    if (byte == 28) {
      at += 3;
    } else if (byte == 29) {
      at += 5;
    } else if (byte == 30) {  // a decimal number, four bits a digit, up to one of ones
      do ++at;
      while (at < dictionary.size() && (dictionary[at] & 15) != 15 && dictionary[at] >> 4 != 15);
      ++at;
    } else {
      at += byte >= 247 ? 2 : 1;
    }
  }
  return true;  // none that could be told
}

}  // namespace

std::span<const uint8_t> CffProgram(std::span<const uint8_t> font) {
  if (font.size() < 4 || LoadBigEndian(font.data(), 4) != kOpenTypeVersion) return {};
  const Bytes table = SfntTable(font, "CFF ");
  if (table.size() < 4 || table[0] != 1 || table[2] > table.size()) return {};
  const auto names = ReadIndex(table.subspan(table[2]));
  if (!names || names->count != 1) return {};
  const auto dictionaries = ReadIndex(names->behind);
  if (!dictionaries || dictionaries->count != 1 || BeginsWithCollection(dictionaries->first)) return {};
  return table;
}

}  // namespace kapdf
