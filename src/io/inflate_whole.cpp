#include "io/inflate_whole.h"

#include <libdeflate.h>

#include <algorithm>
#include <memory>

#include "platform/memory.h"

namespace kapdf {
namespace {

// How many times its size a stream may grow. What does not fit the first room, which is enough for text, starts anew.
constexpr size_t kRooms[] = {5, 20};

struct Free {
  void operator()(libdeflate_decompressor *decompressor) const { libdeflate_free_decompressor(decompressor); }
};

}  // namespace

bool InflateWhole(std::span<const uint8_t> coded, size_t most, ByteBuffer &plain) {
  const std::unique_ptr<libdeflate_decompressor, Free> decompressor(libdeflate_alloc_decompressor());
  if (!decompressor) return false;
  for (const size_t room : kRooms) {
    plain.Clear();
    plain.Resize(coded.size() > most / room ? most : coded.size() * room);
    platform::PreferLargePages(plain.data(), plain.size());
    size_t taken, made;
    const libdeflate_result result = libdeflate_zlib_decompress_ex(decompressor.get(), coded.data(), coded.size(),
                                                                   plain.data(), plain.size(), &taken, &made);
    if (result == LIBDEFLATE_SUCCESS) plain.Resize(made);
    if (result != LIBDEFLATE_INSUFFICIENT_SPACE || plain.size() == most) return result == LIBDEFLATE_SUCCESS;
  }
  return false;
}

}  // namespace kapdf
