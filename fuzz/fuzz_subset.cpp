// A font program is cut down to some of its characters. What comes out is a font of which the same can be said.
#include "fonts/font_sfnt.h"
#include "support/host.h"
#include "writer/truetype_subset.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  using namespace kapdf;
  using Kind = FontSubset::Kind;
  const std::span<const uint8_t> font(data, size);
  const auto glyphs = GlyphsOfCmap(SfntTable(font, "cmap"));
  if (!glyphs) return 0;
  CodeSet used;
  for (size_t code = size % 2; code < used.size(); code += size % 64 + 1) used.set(code);
  const FontSubset made = MakeTrueTypeSubset(font, *glyphs, used, "ZVNEWA+");
  fuzz::Require((made.kind == Kind::kNotEmbeddable) == made.bytes.empty(), "bytes when it may be embedded");
  if (made.kind == Kind::kWhole) fuzz::Require(made.bytes.size() == size, "whole is whole");
  if (made.kind != Kind::kSubset) return 0;
  const FontSubset again = MakeTrueTypeSubset(made.bytes.span(), *glyphs, used, "ZVNEWB+");
  fuzz::Require(again.kind == Kind::kSubset, "a subset is a font");
  for (const char *table : {"glyf", "loca", "hmtx"}) {
    const auto first = SfntTable(made.bytes.span(), table), second = SfntTable(again.bytes.span(), table);
    fuzz::Require(std::ranges::equal(first, second), "nothing is lost the second time");
  }
  return 0;
}
