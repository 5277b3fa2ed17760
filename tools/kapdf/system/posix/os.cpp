#include "system/os.h"

#include <dlfcn.h>
#include <signal.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>

#include "system/utf.h"

namespace kapdf::tool {

Library Library::Open(const std::string &path, std::string &reason) {
  Library library;
  library.handle_ = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (library.handle_ == nullptr) {
    const char *words = dlerror();
    reason = words != nullptr ? words : "unknown";
    if (reason.starts_with(path + ": ")) reason.erase(0, path.size() + 2);
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

// Under nohup the run goes on when the terminal closes.
std::vector<int> StopSignals() {
  std::vector<int> signals{SIGINT, SIGTERM};
  struct sigaction hangUp = {};
  if (sigaction(SIGHUP, nullptr, &hangUp) == 0 && hangUp.sa_handler != SIG_IGN) signals.push_back(SIGHUP);
  return signals;
}

bool ErrorStreamIsTerminal() { return isatty(STDERR_FILENO) != 0; }

std::string Environment(const char *name) {
  const char *value = std::getenv(name);
  return value != nullptr ? value : "";
}

}  // namespace kapdf::tool
