// Opening a file of 10,000 pages and counting them, inside this process, against the processor seconds of a peer that
// does nothing else.

#include <benchmark/benchmark.h>

#include "support.h"

namespace kapdf::bench {
namespace {

constexpr int kPages = 10'000;

// One flat list of pages, or a tree with `fan` kids a node.
std::string MakeFile(int fan) {
  Document document;
  const int first = 4;
  const int groups = fan > 0 ? (kPages + fan - 1) / fan : 0;
  document.Add("<</Type/Catalog/Pages 2 0 R>>");
  std::string kids;
  for (int i = 0; i < (groups > 0 ? groups : kPages); ++i) {
    kids += std::to_string((groups > 0 ? first + kPages : first) + i) + " 0 R ";
  }
  document.Add("<</Type/Pages/Count " + std::to_string(kPages) + "/Kids[" + kids + "]>>");
  document.AddStream("0 0 m 100 100 l S\n");
  for (int i = 0; i < kPages; ++i) {
    const int parent = groups > 0 ? first + kPages + i / fan : 2;
    document.Add("<</Type/Page/Parent " + std::to_string(parent) +
                 " 0 R/MediaBox[0 0 595 842]/Resources<</ProcSet[/PDF/Text]>>/Contents 3 0 R>>");
  }
  for (int g = 0; g < groups; ++g) {
    kids.clear();
    for (int i = g * fan; i < kPages && i < (g + 1) * fan; ++i) kids += std::to_string(first + i) + " 0 R ";
    document.Add("<</Type/Pages/Parent 2 0 R/Count " + std::to_string(fan) + "/Kids[" + kids + "]>>");
  }
  const std::string path = TemporaryPath("pages" + std::to_string(fan) + ".pdf");
  WriteFile(path, document.Finish());
  return path;
}

const std::string &File(int fan) {
  static const std::string flat = MakeFile(0), tree = MakeFile(50);
  return fan == 0 ? flat : tree;
}

void CountPages(benchmark::State &state) {
  const std::u16string path = Wide(File(static_cast<int>(state.range(0))));
  FileInfo info{};
  for (auto _ : state) {
    Reader reader;
    reader->Identify(path.c_str(), &info);
  }
  if (info.pageCount != kPages) state.SkipWithError("pages were lost");
}

void PeerQpdfShowNpages(benchmark::State &state) {
  const std::string &path = File(static_cast<int>(state.range(0)));
  for (auto _ : state) {
    const double seconds = RunPeer("qpdf --show-npages " + path);
    if (seconds < 0) state.SkipWithError("qpdf is not here");
    state.SetIterationTime(seconds > 0 ? seconds : 0);
  }
}

BENCHMARK(CountPages)->ArgName("fan")->Arg(0)->Arg(50)->Unit(benchmark::kMillisecond);
BENCHMARK(PeerQpdfShowNpages)->ArgName("fan")->Arg(0)->Arg(50)->Unit(benchmark::kMillisecond)->UseManualTime();

}  // namespace
}  // namespace kapdf::bench
