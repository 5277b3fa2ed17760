// Reading a page of many paths, from the file to the last record, against a peer that interprets the same page and
// draws nothing. Both are processor seconds: ours inside this process, the peer's as a process.
#include <benchmark/benchmark.h>

#include "support.h"

namespace kapdf::bench {
namespace {

constexpr int kPaths = 300'000;
constexpr int kCircles = 200'000;

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

std::string OnePage(const std::string &content) {
  Document document;
  document.Add("<</Type/Catalog/Pages 2 0 R>>");
  document.Add("<</Type/Pages/Count 1/Kids[3 0 R]>>");
  document.Add("<</Type/Page/Parent 2 0 R/MediaBox[0 0 2000 2000]/Resources<<>>/Contents 4 0 R>>");
  document.AddStream(content);
  return document.Finish();
}

std::string MakeFile(Mix mix) {
  const std::string path = TemporaryPath("content" + std::to_string(static_cast<int>(mix)) + ".pdf");
  WriteFile(path, OnePage(Content(mix)));
  return path;
}

const std::string &File(Mix mix) {
  static const std::string files[] = {MakeFile(Mix::kLines), MakeFile(Mix::kCurves), MakeFile(Mix::kCad)};
  return files[static_cast<int>(mix)];
}

// Records of one kind, or of all.
int64_t ReadPage(const std::string &path, uint32_t kind = ElemNone) {
  Reader reader;
  FileInfo info{};
  if (reader->OpenRead(Wide(path).c_str(), &info, nullptr, nullptr, nullptr, nullptr) != FilterOk) return -1;
  ElementRecord record{};
  int64_t records = 0;
  while (record.kind = ElemNone, reader->ReadElement(&record) == FilterOk) records += !kind || record.kind == kind;
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

// A page of circles of four curves each, as drawing programs make them, some 70 points when flattened.
std::string Circles() {
  std::mt19937 random(7);
  const auto tenths = [&](int from, int to) { return std::uniform_int_distribution<int>(from, to)(random) / 10.0; };
  std::string text;
  for (int i = 0; i < kCircles; ++i) {
    const double x = tenths(1'000, 19'000), y = tenths(1'000, 19'000), r = tenths(40, 80), k = 0.5523 * r;
    char circle[400];
    std::snprintf(circle, sizeof circle,
                  "%.3f %.3f m\n%.3f %.3f %.3f %.3f %.3f %.3f c\n%.3f %.3f %.3f %.3f %.3f %.3f c\n"
                  "%.3f %.3f %.3f %.3f %.3f %.3f c\n%.3f %.3f %.3f %.3f %.3f %.3f c\nS\n",
                  x + r, y, x + r, y + k, x + k, y + r, x, y + r, x - k, y + r, x - r, y + k, x - r, y, x - r, y - k,
                  x - k, y - r, x, y - r, x + k, y - r, x + r, y - k, x + r, y);
    text += circle;
  }
  return text;
}

void ImportCircles(benchmark::State &state) {
  const std::string path = TemporaryPath("circles.pdf"), settings = TemporaryPath("circles.ini");
  WriteFile(path, OnePage(Circles()));
  const std::string recognise = std::to_string(state.range(0));
  WriteFile(settings, "[Software\\Tessmark GmbH\\ZVIOFilter\\Filter\\PDF]\nConvertPoly=" + recognise + "\n");
  setenv("KAPDF_SETTINGS", settings.c_str(), 1);
  int64_t circles = 0;
  for (auto _ : state) circles = ReadPage(path, ElemCircle);
  unsetenv("KAPDF_SETTINGS");
  if (circles != (state.range(0) ? kCircles : 0)) state.SkipWithError("not every circle was told");
}

BENCHMARK(ImportPage)->ArgName("mix")->DenseRange(0, 2)->Unit(benchmark::kMillisecond);
BENCHMARK(ImportCircles)->ArgName("recognised")->DenseRange(0, 1)->Unit(benchmark::kMillisecond);
BENCHMARK(PeerMutoolBbox)->ArgName("mix")->DenseRange(0, 2)->Unit(benchmark::kMillisecond)->UseManualTime();
BENCHMARK(PeerInflateOnly)->ArgName("mix")->DenseRange(0, 2)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace kapdf::bench
