#include "platform/message.h"

#include <windows.h>

#include <string>

#include "platform/win32/instance.h"

namespace kapdf::platform {
namespace {

HWND AsWindow(const void *handle) {
  const auto window = static_cast<HWND>(const_cast<void *>(handle));
  return IsWindow(window) ? window : nullptr;
}

}  // namespace

// Read as another process would read it: an address that is none fails instead of ending the host.
void *WindowOf(const void *context) {
  if (!context) return nullptr;
  if (const HWND window = AsWindow(context)) return window;
  const void *first = nullptr;
  SIZE_T read = 0;
  if (!ReadProcessMemory(GetCurrentProcess(), context, &first, sizeof first, &read) || read != sizeof first)
    return nullptr;
  return AsWindow(first);
}

void ShowWarning(void *window, MessageText text) {
  const wchar_t *resource = nullptr;  // with a buffer of no bytes, where it stands in the module
  const int length = LoadStringW(Instance(), static_cast<UINT>(text), reinterpret_cast<wchar_t *>(&resource), 0);
  if (!window || length <= 0) return;
  const std::wstring copy(resource, static_cast<size_t>(length));
  MessageBoxW(static_cast<HWND>(window), copy.c_str(), L"PDF", MB_OK | MB_ICONWARNING);
}

}  // namespace kapdf::platform
