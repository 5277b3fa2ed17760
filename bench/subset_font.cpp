// Subsets of a system font against the time of reading its file twice. KAPDF_BENCH_FONT names the family.
#include <benchmark/benchmark.h>

#include <cstdlib>

#include "fonts/font_sfnt.h"
#include "platform/system_fonts.h"
#include "platform/text.h"
#include "writer/truetype_subset.h"

namespace kapdf {
namespace {

constexpr size_t kCharacters = 500;

std::unique_ptr<platform::SystemFont> OpenFont() {
  const char *family = std::getenv("KAPDF_BENCH_FONT");
  return platform::SystemFont::Open({platform::FromUtf8(family ? family : "HanaMinA")});
}

void BM_ReadTwice(benchmark::State &state) {
  const auto font = OpenFont();
  size_t bytes = 0;
  for (auto _ : state) {
    for (int time = 0; time < 2; ++time) bytes = font->Table("").size();
  }
  state.counters["bytes"] = static_cast<double>(bytes);
}

void BM_Subset(benchmark::State &state) {
  const auto font = OpenFont();
  const ByteBuffer file = font->Table("");
  const auto glyphs = GlyphsOfCmap(SfntTable(file.span(), "cmap"));
  CodeSet used;
  for (size_t code = 32, left = kCharacters; left > 0 && code < 65535; code += 13) {
    if ((*glyphs)[code] == 0) continue;
    used.set(code);
    --left;
  }
  size_t bytes = 0;
  for (auto _ : state) bytes = MakeTrueTypeSubset(file.span(), *glyphs, used, "ZVNEWA+").bytes.size();
  state.counters["glyphs"] = static_cast<double>(used.count());
  state.counters["bytes"] = static_cast<double>(bytes);
}

BENCHMARK(BM_ReadTwice)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Subset)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace kapdf
