#include "writer/to_unicode.h"

#include <algorithm>
#include <string_view>

#include "writer/number_text.h"

namespace kapdf {
namespace {

constexpr size_t kBlockEntries = 100;

struct Run {
  uint32_t length, firstGlyph, firstCode;
};

std::vector<Run> RunsOf(const FontOut &font) {
  std::vector<Run> runs;
  for (uint32_t code = font.firstChar(); code < 65535; ++code) {
    if (!font.glyphUse()[code]) continue;
    const uint32_t glyph = font.GlyphOf(static_cast<char16_t>(code));
    const Run *last = runs.empty() ? nullptr : &runs.back();
    if (last && code == last->firstCode + last->length && glyph == last->firstGlyph + last->length)
      ++runs.back().length;
    else
      runs.push_back({1, glyph, code});
  }
  std::ranges::stable_sort(runs, {}, &Run::firstGlyph);
  return runs;
}

void PutCode(std::string &text, uint32_t code) {
  text += '<';
  if (code > 0xFFFF) text += '1';  // one above the last glyph there is
  char digits[4];
  text.append(digits, PutHex4(digits, static_cast<uint16_t>(code)));
  text += '>';
}

template <class PutEntry>
void PutBlocks(std::string &text, const std::vector<Run> &runs, std::string_view kind, PutEntry putEntry) {
  for (size_t first = 0; first < runs.size(); first += kBlockEntries) {
    const size_t end = std::min(first + kBlockEntries, runs.size());
    text.append(std::to_string(end - first)).append(" begin").append(kind).append("\n");
    for (size_t i = first; i < end; ++i) {
      PutCode(text, runs[i].firstGlyph);
      text += ' ';
      putEntry(runs[i]);
      text += '\n';
    }
    text.append("end").append(kind).append("\n");
  }
}

}  // namespace

std::string ToUnicodeMap(const FontOut &font) {
  const std::vector<Run> runs = RunsOf(font);
  std::string text = "/CIDInit /ProcSet findresource begin 12 dict begin begincmap\n";
  text += "/CIDSystemInfo <</Registry (" + font.name() + "+0) /Ordering (T42UV) /Supplement 0 >> def\n";
  text += "/CMapName " + font.name() + "+0 def def\n/CMapType 2 def\n1 begincodespacerange ";
  PutCode(text, runs.empty() ? 0 : runs.front().firstGlyph);
  text += ' ';
  PutCode(text, runs.empty() ? 0 : runs.back().firstGlyph + runs.back().length);  // one above the last
  text += " endcodespacerange\n";

  std::vector<Run> singles, ranges;
  for (const Run &run : runs) (run.length == 1 ? singles : ranges).push_back(run);
  PutBlocks(text, singles, "bfchar", [&](const Run &run) { PutCode(text, run.firstCode); });
  PutBlocks(text, ranges, "bfrange", [&](const Run &run) {
    PutCode(text, run.firstGlyph + run.length - 1);
    text += ' ';
    PutCode(text, run.firstCode);
  });
  return text += "endcmap CMapName currentdict /CMap defineresource pop end end";
}

}  // namespace kapdf
