#include "platform/module.h"

#include <dlfcn.h>
#include <unistd.h>

#include <array>
#include <climits>
#include <cstdlib>

#include "platform/file.h"
#include "platform/text.h"

namespace kapdf::platform {

std::u16string ModuleFolder() {
  // Any address of this code tells the file it was loaded from.
  Dl_info info = {};
  if (dladdr(reinterpret_cast<const void *>(&ModuleFolder), &info) == 0 || !info.dli_fname) return {};
  std::array<char, PATH_MAX> real;
  if (!realpath(info.dli_fname, real.data())) return {};
  return FolderOf(FromUtf8(real.data()));
}

bool SetCurrentFolder(const std::u16string &folder) { return !folder.empty() && chdir(ToUtf8(folder).c_str()) == 0; }

void *OpenLibrary(const std::u16string &path) { return dlopen(ToUtf8(path).c_str(), RTLD_NOW | RTLD_LOCAL); }
void *FindSymbol(void *library, const char *name) { return dlsym(library, name); }

void CloseLibrary(void *library) {
  if (library) dlclose(library);
}

std::u16string LibraryFileName(std::u16string_view name) { return std::u16string(name) + u".so"; }

}  // namespace kapdf::platform
