// The first byte chooses the codec, the next four predictor and shape of the rows; the rest are coded data.
#include <memory>
#include <vector>

#include "io/codec_ascii.h"
#include "io/codec_flate.h"
#include "io/codec_lzw.h"
#include "io/codec_packbits.h"
#include "io/memory_file.h"
#include "support/input.h"

namespace kapdf {
namespace {

template <class Codec>
std::unique_ptr<CCompressionClass> Make(CZVBaseIO &io, size_t length) {
  return std::make_unique<Codec>(io, static_cast<uint32_t>(length));
}

constexpr std::unique_ptr<CCompressionClass> (*kCodecs[])(CZVBaseIO &, size_t) = {
    Make<CZVUncompressed>, Make<CZVASCII85>, Make<CZVASCIIHex>, Make<CZVPackBits>, Make<CZVLzw>, Make<CZVFlate>};

}  // namespace
}  // namespace kapdf

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  using namespace kapdf;
  fuzz::Input input({data, size});
  const auto make = kCodecs[input.Take<uint8_t>() % std::size(kCodecs)];
  const uint8_t predictor = input.Take<uint8_t>();
  MemorySource source(std::span(data, size).subspan(size < 5 ? size : 5));
  const auto codec = make(source, size);
  codec->UsePredictor(predictor);
  codec->SetSampleShape({input.Take<uint8_t>() + 1u, input.Below(31) + 1, 1u << input.Below(4)});
  std::vector<uint8_t> part(predictor % 2 ? 65536 : 1 + predictor);
  for (int reads = 0; reads < 5000 && codec->Read(part.data(), part.size()) > 0;) ++reads;
  return 0;
}
