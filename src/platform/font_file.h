// A font file of one font, made of the tables of a font in a collection.
#pragma once

#include <cstdint>
#include <vector>

#include "base/byte_buffer.h"

namespace kapdf::platform {

inline constexpr size_t kMostFontTables = 255;

struct FontTableData {
  uint32_t tag;  // its four characters, the first one in the highest byte
  ByteBuffer bytes;
};

// Directory and tables, in the order given; empty without tables.
ByteBuffer MakeFontFile(const std::vector<FontTableData> &tables);

}  // namespace kapdf::platform
