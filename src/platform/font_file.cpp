#include "platform/font_file.h"

#include <cstring>

#include "base/bytes.h"

namespace kapdf::platform {

ByteBuffer MakeFontFile(const std::vector<FontTableData> &tables) {
  constexpr size_t kHeader = 12, kEntry = 16;
  ByteBuffer file;
  const size_t count = tables.size();
  if (count == 0) return file;
  file.Resize(kHeader + kEntry * count);
  uint32_t power = 0;
  while (size_t{2} << power <= count) ++power;
  StoreBigEndian(file.data(), 0x00010000, 4);
  StoreBigEndian(file.data() + 4, count, 2);
  StoreBigEndian(file.data() + 6, 16 << power, 2);
  StoreBigEndian(file.data() + 8, power, 2);
  StoreBigEndian(file.data() + 10, 16 * count - (size_t{16} << power), 2);
  for (size_t i = 0; i < count; ++i) {
    const ByteBuffer &table = tables[i].bytes;
    const size_t at = file.size();
    file.Resize(at + (table.size() + 3) / 4 * 4);
    std::memset(file.data() + at, 0, file.size() - at);
    if (!table.empty()) std::memcpy(file.data() + at, table.data(), table.size());
    uint32_t sum = 0;
    for (size_t word = at; word < file.size(); word += 4)
      sum += static_cast<uint32_t>(LoadBigEndian(file.data() + word, 4));
    uint8_t *entry = file.data() + kHeader + kEntry * i;
    StoreBigEndian(entry, tables[i].tag, 4);
    StoreBigEndian(entry + 4, sum, 4);
    StoreBigEndian(entry + 8, at, 4);
    StoreBigEndian(entry + 12, table.size(), 4);
  }
  return file;
}

}  // namespace kapdf::platform
