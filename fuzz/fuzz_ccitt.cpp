// The input is coded facsimile rows; its first bytes choose the codec and the width. The same bytes are then coded as
// packed rows and must come back.
#include <algorithm>
#include <memory>
#include <vector>

#include "io/codec_ccitt.h"
#include "io/memory_file.h"
#include "support/host.h"
#include "support/input.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  using namespace kapdf;
  fuzz::Input input({data, size});
  const uint32_t choice = input.Below(23);
  const uint32_t columns = 1 + (choice < 4 ? input.Take<uint32_t>() % 1'000'000 : input.Take<uint16_t>() % 3000u);
  const std::span<const uint8_t> bytes(data, size);
  MemorySource source(bytes);
  std::unique_ptr<CZVCCITT> codec;
  if (choice % 4 == 0) codec = std::make_unique<CZVCCITT4>(source, 0);
  if (choice % 4 == 1) codec = std::make_unique<CZVCCITT3Fax>(source, 0);
  if (!codec) codec = std::make_unique<CZVCCITT3>(source, static_cast<uint32_t>(size));
  codec->SetOptions(choice % 4 == 3 ? CZVCCITT::kRowsStartAtBytes : 0);
  codec->SetColumns(columns);
  codec->SetBitlineOutput(choice % 8 < 4);
  std::vector<uint8_t> row(4 * columns + 12);
  size_t rows = 0;
  while (codec->Read(row.data(), columns) > 0 && (choice % 8 < 4 || rows < 1000)) ++rows;
  fuzz::Require(choice % 8 >= 4 || rows <= 8 * size, "each row takes a bit");

  CZVMemoryFileFlat coded;
  CZVCCITT4 writer(coded, 0), reader(coded, 0);
  writer.SetColumns((columns + 7) / 8 * 8);
  reader.SetColumns((columns + 7) / 8 * 8);
  fuzz::Require(writer.Write(data, size) == size && writer.flush() && coded.Seek(0, SeekOrigin::kStart), "coding");
  std::vector<uint8_t> back(size);
  fuzz::Require(reader.Read(back.data(), size) == size && std::ranges::equal(back, bytes), "rows come back");
  return 0;
}
