// Rasters out: facsimile coding against tiffcp, JPEG against cjpeg, and the memory that large rasters take.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <vector>

#include "support.h"
#include "writer/write_file.h"

namespace kapdf::bench {
namespace {

constexpr uint32_t kScanWidth = 30'000, kScanHeight = 40'000;

// First and last pixels of what is black in a row: slanted lines, and blocks of strokes as text has them.
std::vector<uint32_t> RunsOf(uint32_t y) {
  std::vector<uint32_t> runs = {0};
  const bool text = y % 400 < 250;
  for (uint32_t x = 100; x + 600 < kScanWidth; x += 500) {
    const uint32_t slanted = x + y / 40 % 100;
    runs.insert(runs.end(), {slanted, slanted + 11});
    if (!text || x / 500 % 4 == 0) continue;
    for (uint32_t stroke = 0; stroke < 6; ++stroke) {
      const uint32_t at = x + 150 + stroke * 50 + (x * 7 + y / 5 + stroke * 13) % 9;
      runs.insert(runs.end(), {at, at + 5 + (x + y / 60) % 15});
    }
  }
  runs[0] = static_cast<uint32_t>(runs.size() / 2);
  return runs;
}

// Rows are given again and again from these, so that making them costs nothing.
const std::vector<std::vector<uint32_t>> &ScanRows() {
  static const auto rows = [] {
    std::vector<std::vector<uint32_t>> made;
    for (uint32_t y = 0; y < 4'000; ++y) made.push_back(RunsOf(y));
    return made;
  }();
  return rows;
}

// A slice of this is a row of an image: colours that change slowly, with a little noise.
const std::vector<uint8_t> &Colors() {
  static const auto samples = [] {
    std::mt19937 random(1);
    std::vector<uint8_t> made(3 * 24'000);
    for (size_t i = 0; i < made.size(); ++i) {
      const double wave = std::sin(static_cast<double>(i / 3) * (0.004 + 0.001 * static_cast<double>(i % 3)));
      made[i] = static_cast<uint8_t>(128 + 100 * wave + static_cast<double>(random() % 16));
    }
    return made;
  }();
  return samples;
}

size_t PeakKilobytes() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<size_t>(usage.ru_maxrss);
}

// Writes a document of one raster; its size in bytes.
template <class GiveRow>
size_t Export(const WriteSettings &settings, uint32_t pixelType, uint32_t width, uint32_t height, GiveRow giveRow) {
  const std::string path = TemporaryPath("raster-out.pdf");
  std::FILE *stream = std::fopen(path.c_str(), "w+b");
  {
    CPDFWriteFile writer(stream, u"Software\\kaPDF benchmark", u"raster.pdf");
    writer.Override(settings);
    FileInfo info{};
    info.xmax = info.ymax = 1000;
    info.pageIndex = -1;
    writer.Start(info);
    writer.EndSection(KAPDF_SECTION_PAGE);
    RasterHeaderPayload header{width, height, 0, 0, 300, 0, pixelType, nullptr};
    ElementRecord record{};
    record.kind = ElemRasterHeader;
    record.payload = &header;
    const Sections drawing(KAPDF_SECTION_DRAWING);
    writer.WriteElement(record, drawing);
    record.kind = ElemRasterRows;
    for (uint32_t y = 0; y < height; ++y) {
      giveRow(record, y);
      if (writer.WriteElement(record, drawing) != FilterOk) std::abort();
    }
    writer.Finish();
  }
  std::fclose(stream);
  return std::filesystem::file_size(path);
}

void GiveScanRow(ElementRecord &record, uint32_t y) {
  const std::vector<uint32_t> &runs = ScanRows()[y % ScanRows().size()];
  record.payload = const_cast<uint32_t *>(runs.data());
  record.payloadBytes = static_cast<uint32_t>(runs.size() * 4);
}

size_t ExportColors(int32_t compression, uint32_t side) {
  WriteSettings settings;
  settings.colorCompression = compression;
  return Export(settings, 4, side, side, [side](ElementRecord &record, uint32_t y) {
    record.payload = const_cast<uint8_t *>(Colors().data() + y % 3'000 * 3);
    record.payloadBytes = side * 3;
  });
}

template <class Write>
void Measure(benchmark::State &state, Write write) {
  size_t bytes = 0;
  for (auto _ : state) bytes = write();
  state.counters["file_kB"] = static_cast<double>(bytes / 1024);
  state.counters["peak_MB"] = static_cast<double>(PeakKilobytes()) / 1024;  // of the process up to now
}

void BM_ExportScan(benchmark::State &state) {
  ScanRows();
  Measure(state, [] { return Export({}, 0, kScanWidth, kScanHeight, GiveScanRow); });
}

// 0 LZW, 1 JPEG, 2 nothing.
void BM_ExportColors(benchmark::State &state) {
  Colors();
  Measure(state,
          [&] { return ExportColors(static_cast<int32_t>(state.range(0)), static_cast<uint32_t>(state.range(1))); });
}

// An uncompressed TIFF of one strip.
std::string WriteTiff() {
  const std::string path = TemporaryPath("scan.tif");
  const uint32_t rowBytes = kScanWidth / 8;
  const uint32_t tags[][4] = {{256, 4, 1, kScanWidth}, {257, 4, 1, kScanHeight}, {258, 3, 1, 1},
                              {259, 3, 1, 1},          {262, 3, 1, 0},           {273, 4, 1, 256},
                              {277, 3, 1, 1},          {278, 4, 1, kScanHeight}, {279, 4, 1, rowBytes * kScanHeight}};
  std::string head("II*\0\x08\0\0\0", 8);
  const auto put = [&](uint32_t value, int count) {
    for (int i = 0; i < count; ++i) head += static_cast<char>(value >> 8 * i);
  };
  put(std::size(tags), 2);
  for (const auto &tag : tags) {
    put(tag[0], 2);
    put(tag[1], 2);
    put(tag[2], 4);
    put(tag[3], 4);
  }
  head.resize(256);
  std::FILE *file = std::fopen(path.c_str(), "wb");
  std::fwrite(head.data(), 1, head.size(), file);
  std::vector<uint8_t> row(rowBytes);
  for (uint32_t y = 0; y < kScanHeight; ++y) {
    const std::vector<uint32_t> &runs = ScanRows()[y % ScanRows().size()];
    std::fill(row.begin(), row.end(), uint8_t{0});
    for (size_t i = 1; i < runs.size(); i += 2) {
      for (uint32_t x = runs[i]; x <= runs[i + 1]; ++x) row[x / 8] = static_cast<uint8_t>(row[x / 8] | 0x80 >> x % 8);
    }
    std::fwrite(row.data(), 1, row.size(), file);
  }
  std::fclose(file);
  return path;
}

std::string WritePpm(uint32_t side) {
  const std::string path = TemporaryPath("colors.ppm");
  std::FILE *file = std::fopen(path.c_str(), "wb");
  std::fprintf(file, "P6\n%u %u\n255\n", side, side);
  for (uint32_t y = 0; y < side; ++y) std::fwrite(Colors().data() + y % 3'000 * 3, 1, size_t{side} * 3, file);
  std::fclose(file);
  return path;
}

void MeasurePeer(benchmark::State &state, const std::string &command, const std::string &output) {
  for (auto _ : state) {
    const double seconds = RunPeer(command);
    if (seconds < 0) return state.SkipWithError("the peer is not there");
    state.SetIterationTime(seconds);
  }
  state.counters["file_kB"] = static_cast<double>(std::filesystem::file_size(output) / 1024);
}

void BM_TiffcpScan(benchmark::State &state) {
  const std::string coded = TemporaryPath("scan-g4.tif");
  MeasurePeer(state, "tiffcp -c g4 -r 1000000 " + WriteTiff() + " " + coded, coded);
}

void BM_CjpegColors(benchmark::State &state) {
  const std::string coded = TemporaryPath("colors.jpg");
  MeasurePeer(state, "cjpeg -quality 75 -outfile " + coded + " " + WritePpm(static_cast<uint32_t>(state.range(0))),
              coded);
}

constexpr int64_t kPeerSide = 8'000, kLargeSide = 20'000;
BENCHMARK(BM_ExportScan)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_TiffcpScan)->Unit(benchmark::kMillisecond)->UseManualTime();
BENCHMARK(BM_ExportColors)->Args({1, kPeerSide})->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CjpegColors)->Arg(kPeerSide)->Unit(benchmark::kMillisecond)->UseManualTime();
BENCHMARK(BM_ExportColors)
    ->Args({1, kLargeSide})
    ->Args({0, kLargeSide})
    ->Args({2, kLargeSide})
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);

}  // namespace
}  // namespace kapdf::bench
