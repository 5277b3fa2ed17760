#include "platform/stock_palette.h"

#include <windows.h>

namespace kapdf::platform {

bool StockPalette(uint32_t (&colors)[kStockColors]) {
  PALETTEENTRY entries[kStockColors];
  const auto palette = static_cast<HPALETTE>(GetStockObject(DEFAULT_PALETTE));
  if (!palette || GetPaletteEntries(palette, 0, kStockColors, entries) != kStockColors) return false;
  for (size_t i = 0; i < kStockColors; ++i) {
    colors[i] = static_cast<uint32_t>(entries[i].peRed) << 16 | static_cast<uint32_t>(entries[i].peGreen) << 8 |
                entries[i].peBlue;
  }
  return true;
}

}  // namespace kapdf::platform
