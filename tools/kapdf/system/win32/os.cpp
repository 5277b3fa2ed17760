#include "system/os.h"

#include <io.h>
#include <windows.h>

#include <csignal>
#include <cstdio>
#include <filesystem>

#include "system/utf.h"

namespace kapdf::tool {

Library Library::Open(const std::string &path, std::string &reason) {
  Library library;
  library.handle_ = LoadLibraryExW(PathOf(path).c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
  if (library.handle_ == nullptr) reason = "Windows error " + std::to_string(GetLastError());
  return library;
}

Library::~Library() {
  if (handle_ != nullptr) FreeLibrary(static_cast<HMODULE>(handle_));
}

void *Library::Find(const char *name) const {
  return reinterpret_cast<void *>(GetProcAddress(static_cast<HMODULE>(handle_), name));
}

std::string ProgramFolder() {
  std::wstring path(32768, L'\0');
  path.resize(GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
  return Utf8Of(std::filesystem::path(path).parent_path());
}

std::string ModuleFileName() { return "kaPDF.dll"; }

std::vector<int> StopSignals() { return {SIGINT, SIGTERM, SIGBREAK}; }

bool ErrorStreamIsTerminal() { return _isatty(_fileno(stderr)) != 0; }

std::string Environment(const char *name) {
  const std::wstring wideName(name, name + std::char_traits<char>::length(name));
  std::wstring value(32768, L'\0');
  value.resize(GetEnvironmentVariableW(wideName.c_str(), value.data(), static_cast<DWORD>(value.size())));
  return ToUtf8(std::u16string(value.begin(), value.end()));
}

}  // namespace kapdf::tool
