// What the program asks of the operating system; posix/ and win32/ each have one.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "system/settings.h"

namespace kapdf::tool {

// A loaded library, unloaded at the end of its life. Paths are absolute UTF-8.
class Library {
 public:
  // Empty on failure; `reason` then holds the system's words.
  static Library Open(const std::string &path, std::string &reason);
  Library() = default;
  Library(Library &&other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
  Library &operator=(Library &&other) noexcept {
    std::swap(handle_, other.handle_);
    return *this;
  }
  ~Library();
  explicit operator bool() const { return handle_ != nullptr; }
  // Null when the name is not exported.
  void *Find(const char *name) const;

 private:
  void *handle_ = nullptr;
};

// Folder of the running program, and the file name that the module has on this system.
std::string ProgramFolder();
std::string ModuleFileName();

// The signals that ask a run to stop: Ctrl-C, and what tells that the terminal is gone.
std::vector<int> StopSignals();
bool ErrorStreamIsTerminal();
std::string Environment(const char *name);

// Settings of one run: a copy of the user's settings with some values replaced, under a path of its own, gone again
// when the object goes. Make it ahead of the module, which may read settings while it loads.
class SettingsForRun {
 public:
  SettingsForRun() = default;
  SettingsForRun(const SettingsForRun &) = delete;
  SettingsForRun &operator=(const SettingsForRun &) = delete;
  ~SettingsForRun() { Remove(); }

  // False with a sentence in `reason` when they cannot be stored.
  bool Store(const std::vector<SettingValue> &values, std::string &reason);
  // The registry path for the row's `create`; null when nothing was stored.
  const char16_t *RegistryPath() const { return path_.empty() ? nullptr : path_.c_str(); }
  void Remove();

  // For a signal that ends the program at once: removes what the living object stored, calling nothing that a
  // signal handler must not call.
  static void RemoveInHaste();

 private:
  std::u16string path_;
  std::string file_;              // posix: the temporary file
  std::string previousVariable_;  // posix: what the environment variable said before
};

}  // namespace kapdf::tool
