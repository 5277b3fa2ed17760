#include "module/bitmap.h"

#include <cstdint>
#include <cstdlib>

#include "base/bytes.h"

namespace kapdf::tool {
namespace {

constexpr uint32_t kFileHeader = 14, kShortDescription = 40, kLongestDescription = 124;
constexpr uint32_t kPlain = 0, kWithMasks = 3;
constexpr int64_t kMaxSide = 1'000'000, kMaxBytes = int64_t{1} << 30;

struct Layout {
  int64_t front = 0;   // bytes ahead of the pixels
  int64_t pixels = 0;  // bytes of the pixels
};

Layout LayoutOf(const uint8_t *block) {
  const auto description = LoadAs<uint32_t>(block), compression = LoadAs<uint32_t>(block + 16);
  if (description < kShortDescription || description > kLongestDescription) return {};
  const int64_t width = LoadAs<int32_t>(block + 4), height = std::abs(int64_t{LoadAs<int32_t>(block + 8)});
  const auto bits = LoadAs<uint16_t>(block + 14);
  const auto used = LoadAs<uint32_t>(block + 32);
  if (width < 1 || width > kMaxSide || height < 1 || height > kMaxSide || bits > 32 || used > 256) return {};
  const uint32_t colors = used == 0 && bits <= 8 ? 1u << bits : used;
  const int64_t masks = compression == kWithMasks && description == kShortDescription ? 12 : 0;
  const bool rows = compression == kPlain || compression == kWithMasks;
  return {description + masks + 4 * int64_t{colors},
          rows ? (width * bits + 31) / 32 * 4 * height : int64_t{LoadAs<uint32_t>(block + 20)}};
}

}  // namespace

std::string BitmapFile(const void *block) {
  const auto *bytes = static_cast<const uint8_t *>(block);
  const Layout layout = LayoutOf(bytes);
  if (layout.pixels < 1 || layout.pixels > kMaxBytes) return {};
  const auto size = static_cast<size_t>(layout.front + layout.pixels);
  std::string file(kFileHeader + size, '\0');
  file.replace(0, 2, "BM");
  StoreAs(file.data() + 2, static_cast<uint32_t>(file.size()));
  StoreAs(file.data() + 10, static_cast<uint32_t>(kFileHeader + layout.front));
  std::memcpy(file.data() + kFileHeader, bytes, size);
  return file;
}

}  // namespace kapdf::tool
