#include "platform/memory.h"

namespace kapdf::platform {

void PreferLargePages(void *, size_t) {}  // they would take a privilege that hosts do not have

}  // namespace kapdf::platform
