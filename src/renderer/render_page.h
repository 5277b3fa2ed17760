// A page as one picture.
#pragma once

#include <cstdint>
#include <string>

#include "renderer/hidden_text.h"

namespace kapdf {

struct PageToRender {
  std::string path;
  int page = 1;  // from 1
  int32_t dpi = 200;
  int32_t dither = 0;
  bool extractText = false;
};

// True when the renderer can be asked for pages at all.
bool CanRenderPages();

// Writes the page as a TIFF file to the system's folder for temporary files. `tempPath` is the file, also after a
// failure, which may leave a part of it. With `extractText` the text comes in `text` and not in the picture. The
// caller holds a RendererConversion.
bool RenderPage(const PageToRender &page, std::string &tempPath, HiddenText &text);

}  // namespace kapdf
