// The first byte chooses the codec, the second how much is read at a time; the rest is coded data. JBIG2 takes the next
// four bytes as the length of the shared segments, which stand first.
#include <vector>

#include "io/codec_dct.h"
#include "io/codec_jbig2.h"
#include "io/codec_jp2.h"
#include "io/memory_file.h"
#include "support/input.h"

namespace {

constexpr size_t kPixels = 1 << 22;  // what the codecs allow otherwise is sound, but takes seconds

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  using namespace kapdf;
  fuzz::Input input({data, size});
  const uint8_t choice = input.Take<uint8_t>(), piece = input.Take<uint8_t>();
  MemorySource source(std::span(data, size).subspan(size < 6 ? size : 6));
  const auto shared = static_cast<uint32_t>(size) & input.Take<uint32_t>();
  std::vector<uint8_t> part(piece % 2 ? 65536 : 1 + piece);
  const auto drain = [&](CCompressionClass &codec) {
    for (size_t all = 0, got = 1; got > 0 && all < kPixels; all += got) got = codec.Read(part.data(), part.size());
  };
  CZVDCT dct(source, 0);
  CZVJBig2 jbig2(source, 0);
  CZVJP2000 jp2(source, 0);
  jbig2.SetAllowance(kPixels);
  jbig2.SetGlobals(0, shared);
  if (shared > 0 && choice % 3 == 1) source.Seek(shared, SeekOrigin::kStart);
  jp2.SetMostSamples(kPixels);
  jp2.SetIndexed(choice & 64);
  jp2.SetColorBands(choice & 32 ? 4 : 0);
  CCompressionClass *const codecs[] = {&dct, &jbig2, &jp2};
  drain(*codecs[choice % 3]);
  return 0;
}
