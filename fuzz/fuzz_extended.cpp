// The input is a whole file, in extended reading.
#include "support/host.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  kapdf::fuzz::ImportBytes({reinterpret_cast<const char *>(data), size}, u"/ext 1");
  return 0;
}
