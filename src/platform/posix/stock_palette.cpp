#include "platform/stock_palette.h"

namespace kapdf::platform {

bool StockPalette(uint32_t (&)[kStockColors]) { return false; }

}  // namespace kapdf::platform
