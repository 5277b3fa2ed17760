// A row of an image as text.
#pragma once

#include <cctype>
#include <cstdio>
#include <string>

#include "raster/image_rows.h"

namespace kapdf::test {

// " | 0-3 5-5" for runs; for other kinds " | " and the bytes of all pixels, in hexadecimal unless they are letters or
// digits.
inline std::string RowText(RasterKind kind, uint32_t width, uint8_t *row) {
  std::string text = " |";
  if (kind == RasterKind::kBilevel) {
    for (const Run &run : RunList(row).runs()) text += " " + std::to_string(run.first) + "-" + std::to_string(run.last);
    return text;
  }
  text += " ";
  for (size_t i = 0; i < size_t{width} * RowLayout{.kind = kind}.PixelBytes(); ++i) {
    char byte[4];
    std::snprintf(byte, sizeof byte, std::isalnum(row[i]) ? "%c" : "%02X", row[i]);
    text += byte;
  }
  return text;
}

}  // namespace kapdf::test
