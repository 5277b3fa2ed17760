// Reading the rows of a large scanned sheet, beside pdfimages, which writes them as they are.
#include <benchmark/benchmark.h>

#include <cstring>

#include "io/codec_ccitt.h"
#include "io/memory_file.h"
#include "support.h"

namespace kapdf::bench {
namespace {

constexpr uint32_t kWidth = 30'000, kHeight = 40'000;

// Strokes of some 20 pixels at all angles on a white sheet, coded by group 4.
std::string CodedSheet() {
  CZVMemoryFile sink;
  CZVCCITT4 codec(sink, 0);
  codec.SetColumns(kWidth);
  std::mt19937 random(1);
  struct Stroke {
    double x, slope;
    uint32_t rowsLeft;
  };
  std::vector<Stroke> strokes(60);
  std::vector<uint8_t> row(kWidth / 8);
  for (uint32_t y = 0; y < kHeight; ++y) {
    std::fill(row.begin(), row.end(), uint8_t{0});
    for (Stroke &s : strokes) {
      if (s.rowsLeft == 0) {
        s = {static_cast<double>(random() % kWidth), static_cast<double>(random() % 200) / 100.0 - 1.0,
             static_cast<uint32_t>(random() % 4000)};
      } else {
        --s.rowsLeft;
        s.x += s.slope;
      }
      for (int i = 0; i < 20; ++i) {
        const auto x = static_cast<int64_t>(s.x) + i;
        if (x >= 0 && x < int64_t{kWidth}) row[static_cast<size_t>(x / 8)] |= static_cast<uint8_t>(0x80 >> x % 8);
      }
    }
    codec.Write(row.data(), row.size());
  }
  codec.flush();
  return std::string(sink.bytes().begin(), sink.bytes().end());
}

const std::string &Sheet() {
  static const std::string path = [] {
    Document document;
    document.Add("<</Type/Catalog/Pages 2 0 R>>");
    document.Add("<</Type/Pages/Kids[3 0 R]/Count 1>>");
    document.Add(
        "<</Type/Page/Parent 2 0 R/MediaBox[0 0 7200 9600]/Contents 4 0 R/Resources<</XObject<</S 5 0 R>>>>>>");
    document.AddStream("q 7200 0 0 9600 0 0 cm /S Do Q\n");
    const std::string data = CodedSheet();
    document.Add(
        "<</Type/XObject/Subtype/Image/Width 30000/Height 40000/BitsPerComponent 1/ColorSpace/DeviceGray"
        "/Filter/CCITTFaxDecode/DecodeParms<</K -1/Columns 30000/Rows 40000>>/Length " +
        std::to_string(data.size()) + ">>\nstream\n" + data + "\nendstream");
    const std::string file = TemporaryPath("scan.pdf");
    WriteFile(file, document.Finish());
    return file;
  }();
  return path;
}

void ImportScan(benchmark::State &state) {
  const std::string path = Sheet();
  int64_t rows = 0;
  for (auto _ : state) {
    Reader reader;
    FileInfo info{};
    ElementRecord record{};
    if (reader->OpenRead(Wide(path).c_str(), &info, nullptr, nullptr, nullptr, nullptr) != FilterOk) break;
    while (reader->ReadElement(&record) == FilterOk && record.kind != ElemRasterPlacement) record.kind = ElemNone;
    record.kind = ElemRasterHeader;
    reader->ReadElement(&record);
    record.kind = ElemRasterRows;
    for (rows = 0; reader->ReadElement(&record) == FilterOk;) ++rows;
  }
  if (rows != kHeight) state.SkipWithError("the sheet was not read to its end");
}

void PeerPdfimages(benchmark::State &state) {
  const std::string path = Sheet(), out = TemporaryPath("scan");
  for (auto _ : state) {
    const double seconds = RunPeer("pdfimages " + path + " " + out);
    if (seconds < 0) state.SkipWithError("pdfimages is not here");
    state.SetIterationTime(seconds > 0 ? seconds : 0);
  }
  std::remove((out + "-000.pbm").c_str());
}

BENCHMARK(ImportScan)->Unit(benchmark::kMillisecond);
BENCHMARK(PeerPdfimages)->Unit(benchmark::kMillisecond)->UseManualTime();

}  // namespace
}  // namespace kapdf::bench
