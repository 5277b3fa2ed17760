#include "../settings_probe.h"

#include <cstdlib>
#include <fstream>

namespace fake {

std::string ReadSetting(const std::u16string &key, const std::string &name) {
  const char *file = std::getenv("KAPDF_SETTINGS");
  std::ifstream in(file != nullptr ? file : "");
  const std::string section = "[" + std::string(key.begin(), key.end()) + "]";
  bool inside = false;
  for (std::string line; std::getline(in, line);) {
    if (line.starts_with("[")) inside = line == section;
    if (inside && line.starts_with(name + "=")) return line.substr(name.size() + 1);
  }
  return "none";
}

void WriteUserSetting(const std::string &suffix, const std::string &name, int value) {
  std::ofstream("user.ini") << "[Software\\Tessmark GmbH\\ZVIOFilter" << suffix << "]\n"
                            << name << "=" << value << "\n";
  setenv("KAPDF_SETTINGS", "user.ini", 1);
}

void RemoveUserSettings() { unsetenv("KAPDF_SETTINGS"); }

}  // namespace fake
