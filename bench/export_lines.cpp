// Export of a drawing against what zlib alone needs to deflate the same content, and the formatting of its numbers.
#include <benchmark/benchmark.h>
#include <zlib.h>

#include <charconv>
#include <cstdio>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "writer/number_text.h"
#include "writer/write_file.h"

namespace kapdf {
namespace {

constexpr size_t kCoordinates = 800'000;
constexpr int32_t kVerticesPerPolyline = 40;

struct Closer {
  void operator()(std::FILE *file) const { std::fclose(file); }
};
using Stream = std::unique_ptr<std::FILE, Closer>;

// A drawing's walk over a sheet of a metre: short steps, as surveyed lines have them.
const std::vector<double> &Coordinates() {
  static const std::vector<double> values = [] {
    std::mt19937_64 random(1);
    std::normal_distribution<double> step(0, 2.5);
    std::vector<double> made(kCoordinates);
    double at[2] = {500, 500};
    for (size_t i = 0; i < made.size(); ++i) {
      double &value = at[i & 1];
      value += step(random);
      if (value < 0 || value > 1000) value = 500;
      made[i] = value;
    }
    return made;
  }();
  return values;
}

const Sections kTables(KAPDF_SECTION_TABLES), kDrawing(KAPDF_SECTION_DRAWING);

void DrawLines(CPDFWriteFile &writer, ElementRecord &record) {
  const std::vector<double> &c = Coordinates();
  for (size_t i = 0; i + 3 < c.size(); i += 4) {
    LinePayload line{0.25, c[i], c[i + 1], c[i + 2], c[i + 3]};
    record.kind = ElemLine;
    record.payload = &line;
    writer.WriteElement(record, kDrawing);
  }
}

void DrawPolylines(CPDFWriteFile &writer, ElementRecord &record) {
  std::vector<double> c = Coordinates();
  for (size_t i = 0; i + 2 * kVerticesPerPolyline <= c.size(); i += 2 * kVerticesPerPolyline) {
    PolylinePayload polyline{};
    polyline.width = 0.25;
    polyline.vertexCount = kVerticesPerPolyline;
    polyline.vertices = c.data() + i;
    record.kind = ElemPolyline;
    record.payload = &polyline;
    writer.WriteElement(record, kDrawing);
  }
}

// Numbers, as surveyed points have them.
void DrawTexts(CPDFWriteFile &writer, ElementRecord &record) {
  const std::vector<double> &c = Coordinates();
  char16_t style[] = u"Heights", face[] = u"DejaVu Sans";
  FontDefPayload font{};
  font.styleName = style;
  font.faceName = face;
  record.kind = ElemFontDef;
  record.payload = &font;
  writer.WriteElement(record, kTables);
  std::copy(std::begin(style), std::end(style), record.styleName);
  record.kind = ElemText;
  for (size_t i = 0; i + 3 < c.size(); i += 4) {
    std::u16string text;
    for (const char digit : std::to_string(c[i + 2])) text += static_cast<char16_t>(digit);
    TextPayload payload{};
    payload.x = c[i];
    payload.y = c[i + 1];
    payload.angle = c[i + 3];
    payload.height = 2.5;
    payload.widthFactor = 1;
    payload.text = text.data();
    record.payload = &payload;
    writer.WriteElement(record, kDrawing);
  }
}

using Drawing = void (*)(CPDFWriteFile &, ElementRecord &);

Stream Export(Drawing draw) {
  Stream stream(std::tmpfile());
  CPDFWriteFile writer(stream.get(), u"Software\\kaPDF benchmark", u"drawing.pdf");
  FileInfo info{};
  info.xmax = info.ymax = 1000;
  info.pageIndex = -1;
  writer.Start(info);
  writer.EndSection(2);
  char16_t name[] = u"Walls";
  LayerDefPayload layer{};
  layer.name = name;
  layer.width = -1;
  ElementRecord record{};
  record.kind = ElemLayerDef;
  record.payload = &layer;
  record.color = 256;
  std::copy(std::begin(name), std::end(name), record.layerName);
  writer.WriteElement(record, kTables);
  draw(writer, record);
  writer.Finish();
  return stream;
}

// The content that the drawing's export deflates.
std::string ContentOf(Drawing draw) {
  const Stream stream = Export(draw);
  std::string file(static_cast<size_t>(std::ftell(stream.get())), '\0');
  std::rewind(stream.get());
  file.resize(std::fread(file.data(), 1, file.size(), stream.get()));
  const size_t start = file.find("stream\r\n") + 8;
  std::string content(kCoordinates * 64, '\0');
  uLongf size = content.size();
  uncompress(reinterpret_cast<Bytef *>(content.data()), &size, reinterpret_cast<const Bytef *>(file.data() + start),
             file.size() - start);
  content.resize(size);
  return content;
}

void BM_Export(benchmark::State &state, Drawing draw) {
  for (auto _ : state) Export(draw);
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(ContentOf(draw).size()));
}

void BM_DeflateAlone(benchmark::State &state, Drawing draw) {
  const std::string content = ContentOf(draw);
  std::vector<Bytef> coded(compressBound(content.size()));
  for (auto _ : state) {
    uLongf size = coded.size();
    compress(coded.data(), &size, reinterpret_cast<const Bytef *>(content.data()), content.size());
    benchmark::DoNotOptimize(size);
  }
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(content.size()));
}

template <class Format>
void FormatAll(benchmark::State &state, Format format) {
  char text[kNumberRoom];
  for (auto _ : state) {
    for (double value : Coordinates()) {
      format(text, value);
      benchmark::DoNotOptimize(text);
    }
  }
  state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(kCoordinates));
}

void BM_FormatOwn(benchmark::State &state) {
  FormatAll(state, [](char *text, double value) { PutFixed3(text, value); });
}
void BM_FormatToChars(benchmark::State &state) {
  FormatAll(state, [](char *text, double value) {
    std::to_chars(text, text + kNumberRoom, value, std::chars_format::fixed, 3);
  });
}
void BM_FormatSnprintf(benchmark::State &state) {
  FormatAll(state, [](char *text, double value) { std::snprintf(text, kNumberRoom, "%.3f", value); });
}

BENCHMARK_CAPTURE(BM_Export, lines, DrawLines)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_DeflateAlone, lines, DrawLines)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Export, polylines, DrawPolylines)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_DeflateAlone, polylines, DrawPolylines)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Export, texts, DrawTexts)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_DeflateAlone, texts, DrawTexts)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_FormatOwn)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_FormatToChars)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_FormatSnprintf)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace kapdf
