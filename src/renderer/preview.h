// A small picture of a page.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "kapdf/kapdf.h"

namespace kapdf {

// True when the renderer can make one.
bool CanPreview();

// A page stands at the end of the path as a blank and "<page>", which is cut off; the first page without it. The block
// is a bitmap without its file header: 40 bytes or more that describe it, then palette and pixels. Null on failure.
std::unique_ptr<uint8_t[]> MakePreview(std::string path, ProgressObject *progress);

}  // namespace kapdf
