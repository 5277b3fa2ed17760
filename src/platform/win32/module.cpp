#include "platform/module.h"

#include <windows.h>

#include "platform/file.h"
#include "platform/win32/instance.h"
#include "platform/win32/wide.h"

namespace kapdf::platform {
namespace {

HINSTANCE moduleInstance = nullptr;

}  // namespace

void KeepInstance(HINSTANCE instance) { moduleInstance = instance; }
HINSTANCE Instance() { return moduleInstance; }

std::u16string ModuleFolder() {
  std::wstring path(MAX_PATH, L'\0');
  for (;;) {
    // Without a module of its own this code is part of the program.
    const DWORD size = GetModuleFileNameW(moduleInstance, path.data(), static_cast<DWORD>(path.size()));
    if (size == 0 || path.size() > 32768) return {};
    if (size < path.size()) {
      path.resize(size);
      return FolderOf(FromWide(path));
    }
    path.resize(path.size() * 2);
  }
}

bool SetCurrentFolder(const std::u16string &folder) {
  return !folder.empty() && SetCurrentDirectoryW(Wide(folder).c_str()) != 0;
}

void *OpenLibrary(const std::u16string &path) {
  return LoadLibraryExW(Wide(path).c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
}

void *FindSymbol(void *library, const char *name) {
  return reinterpret_cast<void *>(GetProcAddress(static_cast<HMODULE>(library), name));
}

void CloseLibrary(void *library) {
  if (library) FreeLibrary(static_cast<HMODULE>(library));
}

std::u16string LibraryFileName(std::u16string_view name) { return std::u16string(name) + u".dll"; }

}  // namespace kapdf::platform
