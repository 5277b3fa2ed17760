#include "fonts/font_sfnt.h"

#include <algorithm>

#include "base/bytes.h"

namespace kapdf {
namespace {

using Bytes = std::span<const uint8_t>;

constexpr size_t kDirectoryHeader = 12;
constexpr size_t kDirectoryEntry = 16;

// 0 past the end.
uint32_t Big16(Bytes bytes, size_t at) {
  return at + 2 <= bytes.size() ? static_cast<uint32_t>(bytes[at]) << 8 | bytes[at + 1] : 0;
}
uint32_t Big32(Bytes bytes, size_t at) { return Big16(bytes, at) << 16 | Big16(bytes, at + 2); }

Bytes From(Bytes bytes, size_t at) { return bytes.subspan(std::min(at, bytes.size())); }

void FillFromBytes(Bytes subtable, CodeTable &glyphs) {
  constexpr size_t kHeader = 6;
  for (size_t code = 0; code < 256 && kHeader + code < subtable.size(); ++code) glyphs[code] = subtable[kHeader + code];
}

// A code belongs to the first segment that does not end before it.
void FillFromSegments(Bytes subtable, CodeTable &glyphs) {
  const size_t count = Big16(subtable, 6) / 2;
  const size_t ends = 14;
  const size_t starts = ends + 2 * count + 2;
  const size_t deltas = starts + 2 * count;
  const size_t offsets = deltas + 2 * count;
  uint32_t next = 0;  // codes below it have had their segment
  for (size_t i = 0; i < count && offsets + 2 * i + 2 <= subtable.size(); ++i) {
    const uint32_t start = Big16(subtable, starts + 2 * i);
    const uint32_t end = Big16(subtable, ends + 2 * i);
    const uint32_t delta = Big16(subtable, deltas + 2 * i);
    const uint32_t offset = Big16(subtable, offsets + 2 * i);
    for (uint32_t code = std::max(start, next); code <= end; ++code) {
      uint32_t glyph = code;
      if (offset != 0) {
        glyph = Big16(subtable, offsets + 2 * i + offset + size_t{2} * (code - start));
        if (glyph == 0) continue;
      }
      glyphs[code] = static_cast<uint16_t>(glyph + delta);
    }
    next = std::max(next, end + 1);
  }
}

}  // namespace

Bytes SfntTable(Bytes file, std::string_view tag) {
  const size_t count = Big16(file, 4);
  for (size_t i = 0; i < count; ++i) {
    const size_t at = kDirectoryHeader + i * kDirectoryEntry;
    if (at + kDirectoryEntry > file.size()) break;
    if (!std::equal(tag.begin(), tag.end(), file.begin() + static_cast<std::ptrdiff_t>(at))) continue;
    const Bytes rest = From(file, Big32(file, at + 8));
    return rest.first(std::min<size_t>(Big32(file, at + 12), rest.size()));
  }
  return {};
}

std::unique_ptr<CodeTable> GlyphsByUnicode(Bytes cmap) {
  const size_t count = Big16(cmap, 2);
  for (size_t i = 0; i < count; ++i) {
    const size_t at = 4 + 8 * i;
    if (at + 8 > cmap.size()) break;
    if (Big16(cmap, at) != 3 || Big16(cmap, at + 2) != 1) continue;
    const Bytes subtable = From(cmap, Big32(cmap, at + 4));
    const uint32_t format = Big16(subtable, 0);
    if (subtable.size() < 6 || (format != 0 && format != 4)) continue;
    auto glyphs = std::make_unique<CodeTable>();
    if (format == 0)
      FillFromBytes(subtable, *glyphs);
    else
      FillFromSegments(subtable, *glyphs);
    return glyphs;
  }
  return nullptr;
}

}  // namespace kapdf
