// Hints about memory to the operating system.
#pragma once

#include <cstddef>

namespace kapdf::platform {

// A large block is about to be filled from its start: the system may provide its memory in larger pages, which spares
// most page faults. Nothing else changes, and nothing has to be undone.
void PreferLargePages(void *block, size_t bytes);

}  // namespace kapdf::platform
