// Bitmaps as the module gives them: a file of that kind without its first 14 bytes.
#pragma once

#include <string>

namespace kapdf::tool {

// The bytes of the whole file. How long the block is stands in its description alone; empty when that cannot be right.
std::string BitmapFile(const void *block);

}  // namespace kapdf::tool
