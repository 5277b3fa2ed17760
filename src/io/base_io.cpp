#include "io/base_io.h"

namespace kapdf {

bool CZVBaseIO::Open(std::u16string_view, const char *) { return false; }

uint8_t CZVBaseIO::Refill() {
  uint8_t byte = 255;
  if (Read(&byte, 1) == 1) return byte;
  atEnd_ = true;
  return 255;
}

}  // namespace kapdf
