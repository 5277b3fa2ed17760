#include "raster/palette.h"

#include "platform/stock_palette.h"

namespace kapdf {
namespace {

constexpr size_t kCubeStart = platform::kStockColors;
constexpr size_t kGreyStart = kCubeStart + 6 * 6 * 6;

// Stands in where the system has no stock palette. 0xRRGGBB.
constexpr uint32_t kStock[platform::kStockColors] = {
    0x000000, 0x800000, 0x008000, 0x808000, 0x000080, 0x800080, 0x008080, 0xC0C0C0, 0xC0DCC0, 0xA6CAF0,
    0xFFFBF0, 0xA0A0A4, 0x808080, 0xFF0000, 0x00FF00, 0xFFFF00, 0x0000FF, 0xFF00FF, 0x00FFFF, 0xFFFFFF};

}  // namespace

PaletteHandle EmptyPalette(uint16_t count) {
  auto palette = std::make_unique<Palette>();
  palette->count = count;
  return palette;
}

PaletteHandle GreyRamp(bool inverted) {
  auto palette = std::make_unique<Palette>();
  for (size_t i = 0; i < 256; ++i) {
    const auto level = static_cast<uint8_t>(inverted ? 255 - i : i);
    palette->Set(i, level, level, level);
  }
  return palette;
}

PaletteHandle DefaultPalette() {
  auto palette = std::make_unique<Palette>();
  uint32_t stock[platform::kStockColors];
  const uint32_t *colors = platform::StockPalette(stock) ? stock : kStock;
  for (size_t i = 0; i < platform::kStockColors; ++i) {
    palette->Set(i, static_cast<uint8_t>(colors[i] >> 16), static_cast<uint8_t>(colors[i] >> 8),
                 static_cast<uint8_t>(colors[i]));
  }
  for (size_t i = 0; i < 6 * 6 * 6; ++i) {
    palette->Set(kCubeStart + i, static_cast<uint8_t>(i / 36 * 51), static_cast<uint8_t>(i / 6 % 6 * 51),
                 static_cast<uint8_t>(i % 6 * 51));
  }
  for (size_t i = kGreyStart; i < 256; ++i) {
    const auto level = static_cast<uint8_t>((i - kGreyStart) * 12);
    palette->Set(i, level, level, level);
  }
  return palette;
}

}  // namespace kapdf
