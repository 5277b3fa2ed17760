// The input is the text of a CMap, and the bytes of a string that it takes apart.
#include <algorithm>

#include "base/limits.h"
#include "fonts/cmap.h"
#include "fonts/glyph_names.h"
#include "support/host.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  using namespace kapdf;
  const std::string text(reinterpret_cast<const char *>(data), size);
  CMap cmap;
  cmap.Parse(text.substr(0, size / 2), false);
  cmap.Parse(text, true);
  fuzz::Require(cmap.codeSpaces().list().size() <= limits::kCodeSpaces, "code spaces are bounded");
  fuzz::Require(std::ranges::is_sorted(cmap.ranges(), {}, &CodeRange::target), "ranges are sorted");
  for (size_t at = 0; at < std::min<size_t>(size, 1000); ++at) {
    const int length = CodeLength(cmap.codeSpaces().list(), data[at], [&] { return at + 1 < size ? data[at + 1] : 0; });
    fuzz::Require(length >= 0 && length <= 2, "codes have one or two bytes");
  }
  CodeOfGlyphName(text);

  const auto table = MakeCodeTable(cmap.ranges());
  size_t codes = 0;
  for (const CodeRange &range : cmap.ranges()) codes += range.count;
  if (codes > 200'000) return 0;
  CodeTable slowly;
  slowly.fill(kNoTarget);
  for (const CodeRange &range : cmap.ranges())
    for (uint32_t i = 0; i < range.count && range.first + i < slowly.size(); ++i)
      slowly[range.first + i] = static_cast<uint16_t>(range.target + i);
  fuzz::Require(*table == slowly, "the last range wins");
  return 0;
}
