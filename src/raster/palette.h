// Palettes of images.
#pragma once

#include <cstdint>
#include <memory>

namespace kapdf {

// 256 colours in the shape that hosts take over: a version, how many entries count, and four bytes for each.
struct Palette {
  struct Entry {
    uint8_t red = 0, green = 0, blue = 0;
    uint8_t flags = 4;  // kTransparent: the index is not painted
  };
  static constexpr uint8_t kTransparent = 255;

  void Set(size_t index, uint8_t red, uint8_t green, uint8_t blue) {
    entries[index].red = red;
    entries[index].green = green;
    entries[index].blue = blue;
  }

  uint16_t version = 768;
  uint16_t count = 256;
  Entry entries[256];
};
static_assert(sizeof(Palette) == 1028);

using PaletteHandle = std::unique_ptr<Palette>;

// `count` black entries.
PaletteHandle EmptyPalette(uint16_t count);
// Entry i is grey of the level i, or of 255 - i.
PaletteHandle GreyRamp(bool inverted = false);
// The system's 20 stock colours, a cube of 6 by 6 by 6, and 20 greys.
PaletteHandle DefaultPalette();

// Whether the first colour is brighter than the second one.
inline bool FirstIsBrighter(const Palette &palette) {
  const auto brightness = [](const Palette::Entry &e) { return e.red * e.red + e.green * e.green + e.blue * e.blue; };
  return brightness(palette.entries[0]) > brightness(palette.entries[1]);
}

inline PaletteHandle Copy(const PaletteHandle &palette) {
  return palette ? std::make_unique<Palette>(*palette) : nullptr;
}

}  // namespace kapdf
