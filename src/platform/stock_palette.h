// The colours that a system keeps for everybody.
#pragma once

#include <cstddef>
#include <cstdint>

namespace kapdf::platform {

inline constexpr size_t kStockColors = 20;

// Fills the colours, 0xRRGGBB; false where the system has none.
bool StockPalette(uint32_t (&colors)[kStockColors]);

}  // namespace kapdf::platform
