// Reading a page of many paths, from the file to the last record, against a peer that interprets the same page and
// draws nothing. Both are processor seconds: ours inside this process, the peer's as a process.
#include <benchmark/benchmark.h>

#include "support.h"

namespace kapdf::bench {
namespace {

constexpr int kPaths = 300'000;

enum class Mix { kLines, kCurves, kCad };

// Points of one drawing element: the first anywhere on the sheet, the others near it.
class Points {
 public:
  explicit Points(std::mt19937 &random) : random_(random), x_(Tenths(1'000, 19'000)), y_(Tenths(1'000, 19'000)) {}
  std::string Next() {
    char text[32];
    std::snprintf(text, sizeof text, "%.1f %.1f ", (x_ + Tenths(-200, 200)) / 10.0, (y_ + Tenths(-200, 200)) / 10.0);
    return text;
  }

 private:
  int Tenths(int from, int to) { return std::uniform_int_distribution<int>(from, to)(random_); }
  std::mt19937 &random_;
  int x_, y_;
};

// Lines; polylines of curves; or, as CAD drivers write, every object between q and Q with its own colour and width.
std::string Content(Mix mix) {
  std::mt19937 random(7);
  std::string text;
  for (int i = 0; i < kPaths; ++i) {
    if (mix == Mix::kCad) text += "q\n0." + std::to_string(random() % 10) + " 0 0.5 RG\n0.25 w\n";
    Points points(random);
    text += points.Next() + "m\n";
    for (unsigned n = 1 + random() % 4; n > 0; --n) {
      if (mix == Mix::kCurves)
        text += points.Next() + points.Next() + points.Next() + "c\n";
      else
        text += points.Next() + "l\n";
    }
    text += mix == Mix::kCad ? "S\nQ\n" : "S\n";
  }
  return text;
}

std::string MakeFile(Mix mix) {
  Document document;
  document.Add("<</Type/Catalog/Pages 2 0 R>>");
  document.Add("<</Type/Pages/Count 1/Kids[3 0 R]>>");
  document.Add("<</Type/Page/Parent 2 0 R/MediaBox[0 0 2000 2000]/Resources<<>>/Contents 4 0 R>>");
  document.AddStream(Content(mix));
  const std::string path = TemporaryPath("content" + std::to_string(static_cast<int>(mix)) + ".pdf");
  WriteFile(path, document.Finish());
  return path;
}

const std::string &File(Mix mix) {
  static const std::string files[] = {MakeFile(Mix::kLines), MakeFile(Mix::kCurves), MakeFile(Mix::kCad)};
  return files[static_cast<int>(mix)];
}

int64_t ReadPage(const std::string &path) {
  Reader reader;
  FileInfo info{};
  if (reader->OpenRead(Wide(path).c_str(), &info, nullptr, nullptr, nullptr, nullptr) != FilterOk) return -1;
  ElementRecord record{};
  int64_t records = 0;
  while (record.kind = ElemNone, reader->ReadElement(&record) == FilterOk) ++records;
  return records;
}

void ImportPage(benchmark::State &state) {
  const std::string &path = File(static_cast<Mix>(state.range(0)));
  int64_t records = 0;
  for (auto _ : state) records = ReadPage(path);
  if (records < kPaths) state.SkipWithError("the page was not read to its end");
  state.counters["records"] = static_cast<double>(records);
}

void PeerMutoolBbox(benchmark::State &state) {
  const std::string &path = File(static_cast<Mix>(state.range(0)));
  for (auto _ : state) {
    const double seconds = RunPeer("mutool draw -F bbox -o /dev/null " + path);
    if (seconds < 0) state.SkipWithError("mutool is not here");
    state.SetIterationTime(seconds > 0 ? seconds : 0);
  }
}

void PeerInflateOnly(benchmark::State &state) {
  const std::string plain = Content(static_cast<Mix>(state.range(0)));
  std::string packed(compressBound(plain.size()), '\0');
  uLongf size = packed.size();
  compress(reinterpret_cast<Bytef *>(packed.data()), &size, reinterpret_cast<const Bytef *>(plain.data()),
           plain.size());
  std::string out(plain.size(), '\0');
  for (auto _ : state) {
    uLongf length = out.size();
    uncompress(reinterpret_cast<Bytef *>(out.data()), &length, reinterpret_cast<const Bytef *>(packed.data()), size);
    benchmark::DoNotOptimize(out.data());
  }
}

BENCHMARK(ImportPage)->ArgName("mix")->DenseRange(0, 2)->Unit(benchmark::kMillisecond);
BENCHMARK(PeerMutoolBbox)->ArgName("mix")->DenseRange(0, 2)->Unit(benchmark::kMillisecond)->UseManualTime();
BENCHMARK(PeerInflateOnly)->ArgName("mix")->DenseRange(0, 2)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace kapdf::bench
