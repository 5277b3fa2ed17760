// Reading a page of 500,000 characters, beside pdftotext, which puts them into lines.
#include <benchmark/benchmark.h>

#include "support.h"

namespace kapdf::bench {
namespace {

constexpr size_t kCharacters = 500'000;

const std::string &Page() {
  static const std::string path = [] {
    static constexpr const char *kWords[] = {"parcel", "boundary", "stone", "north", "elevation", "1234.56", "survey"};
    std::mt19937 random(1);
    std::string content = "BT /F 8 Tf 9 TL 40 60000 Td\n", widths;
    for (size_t shown = 0; shown < kCharacters;) {
      std::string line;
      while (line.size() < 90) line += kWords[random() % std::size(kWords)] + std::string(" ");
      shown += line.size();
      const std::string kern = std::to_string(random() % 300);
      content += "[(" + line.substr(0, 30) + ") -" + kern + " (" + line.substr(30) + ")] TJ T*\n";
    }
    for (int i = 32; i < 127; ++i) widths += std::to_string(250 + random() % 450) + " ";
    Document document;
    document.Add("<</Type/Catalog/Pages 2 0 R>>");
    document.Add("<</Type/Pages/Kids[3 0 R]/Count 1>>");
    document.Add("<</Type/Page/Parent 2 0 R/MediaBox[0 0 595 60100]/Contents 4 0 R/Resources<</Font<</F 5 0 R>>>>>>");
    document.AddStream(content + "ET\n");
    document.Add("<</Type/Font/Subtype/Type1/BaseFont/Helvetica/FirstChar 32/LastChar 126/Widths[" + widths + "]>>");
    const std::string file = TemporaryPath("text.pdf");
    WriteFile(file, document.Finish());
    return file;
  }();
  return path;
}

void ImportText(benchmark::State &state) {
  const std::string path = Page();
  size_t characters = 0;
  for (auto _ : state) {
    Reader reader;
    FileInfo info{};
    ElementRecord record{};
    if (reader->OpenRead(Wide(path).c_str(), &info, nullptr, nullptr, nullptr, nullptr) != FilterOk) break;
    characters = 0;
    while (record.kind = ElemNone, reader->ReadElement(&record) == FilterOk) {
      for (const ElementRecord *at = &record; at; at = at->next) {
        if (at->kind == ElemText)
          characters += std::char_traits<char16_t>::length(static_cast<const TextPayload *>(at->payload)->text);
      }
    }
  }
  if (characters < kCharacters * 9 / 10) state.SkipWithError("the page was not read to its end");
}

void PeerPdftotext(benchmark::State &state) {
  const std::string path = Page();
  for (auto _ : state) {
    const double seconds = RunPeer("pdftotext " + path + " /dev/null");
    if (seconds < 0) state.SkipWithError("pdftotext is not here");
    state.SetIterationTime(seconds > 0 ? seconds : 0);
  }
}

BENCHMARK(ImportText)->Unit(benchmark::kMillisecond);
BENCHMARK(PeerPdftotext)->Unit(benchmark::kMillisecond)->UseManualTime();

}  // namespace
}  // namespace kapdf::bench
