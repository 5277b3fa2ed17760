// The input is a sequence of objects, read one after the other by the parser alone.
#include <memory>

#include "io/memory_file.h"
#include "pdfmodel/objects.h"
#include "support/host.h"

namespace kapdf {
namespace {

// As many as a small document has; each one may have the whole rest of the input to itself.
constexpr int kObjectsPerInput = 1000;

void ParseSequence(std::span<const uint8_t> bytes) {
  MemorySource source(bytes);
  uint8_t byte = 255;
  for (int i = 0; i < kObjectsPerInput; ++i) {
    const auto object = ParseAny(source, byte, 0);
    if (!object && source.AtEnd()) break;
    if (!object) byte = 255;
  }
}

// As the reader takes what stands at a position that somebody gave.
void ParseIntroduced(std::span<const uint8_t> bytes) {
  MemorySource source(bytes);
  CPDFObjectIntro intro(source);
  if (!intro.Parse(255)) return;
  CPDFDictionary dictionary(source);
  if (!dictionary.Parse(intro.lastChar)) return;
  fuzz::Require(dictionary.Sorted().size() == dictionary.Count(), "count of entries");
  for (const CPDFDictionary::Entry *entry : dictionary.Sorted()) {
    fuzz::Require(dictionary.Get(entry->name) == entry->value.get(), "an entry is found by its name");
  }
  dictionary.SkipRest();
}

}  // namespace
}  // namespace kapdf

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  using namespace kapdf;
  const std::span<const uint8_t> bytes(data, size);
  ParseSequence(bytes);
  ParseIntroduced(bytes);
  MemorySource source(bytes);
  CPDFArray(source).Parse(255);
  return 0;
}
