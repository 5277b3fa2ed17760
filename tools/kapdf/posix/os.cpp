#include "../os.h"

#include <dlfcn.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>

#include "../utf.h"

namespace kapdf::tool {

Library Library::Open(const std::string &path, std::string &reason) {
  Library library;
  library.handle_ = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (library.handle_ == nullptr) {
    const char *words = dlerror();
    reason = words != nullptr ? words : "unknown";
  }
  return library;
}

Library::~Library() {
  if (handle_ != nullptr) dlclose(handle_);
}

void *Library::Find(const char *name) const { return dlsym(handle_, name); }

std::string ProgramFolder() {
  std::error_code error;
  const std::filesystem::path self = std::filesystem::read_symlink("/proc/self/exe", error);
  return Utf8Of(self.parent_path());
}

std::string ModuleFileName() { return "kaPDF.so"; }

bool ErrorStreamIsTerminal() { return isatty(STDERR_FILENO) != 0; }

std::string Environment(const char *name) {
  const char *value = std::getenv(name);
  return value != nullptr ? value : "";
}

}  // namespace kapdf::tool
