#include "platform/memory.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>

namespace kapdf::platform {

void PreferLargePages(void *block, size_t bytes) {
  static const auto page = static_cast<uintptr_t>(sysconf(_SC_PAGESIZE));
  const auto start = reinterpret_cast<uintptr_t>(block), first = (start + page - 1) & ~(page - 1);
  if (start + bytes <= first) return;
  madvise(reinterpret_cast<void *>(first), (start + bytes - first) & ~(page - 1), MADV_HUGEPAGE);
}

}  // namespace kapdf::platform
