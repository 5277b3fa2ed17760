#include "platform/message.h"

namespace kapdf::platform {

void *WindowOf(const void *) { return nullptr; }
void ShowWarning(void *, MessageText) {}

}  // namespace kapdf::platform
