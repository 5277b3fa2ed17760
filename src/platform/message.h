// Messages to the person at the host's window. Only Windows shows them.
#pragma once

#include <cstdint>

namespace kapdf::platform {

// What a host passed as its context, taken as a window: the handle itself, or memory that begins with one. Null when
// neither is a window that exists; whatever the context is, it is safe to ask.
void *WindowOf(const void *context);

// The module's texts, by their numbers in its resources, which hold them in several languages.
enum class MessageText : uint32_t { kAnnotations = 2000 };

// Shows a warning and waits for it to be closed. Nothing happens without a window.
void ShowWarning(void *window, MessageText text);

}  // namespace kapdf::platform
