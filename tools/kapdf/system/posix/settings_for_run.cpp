// Settings stand in an INI file: sections are key paths, lines are NAME=VALUE. The run gets a file of its own that
// holds the user's file as it is, followed by a copy of the user's sections below another path.
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <map>

#include "system/os.h"
#include "system/utf.h"

namespace kapdf::tool {
namespace {

constexpr const char *kVariable = "KAPDF_SETTINGS";
constexpr std::string_view kRunPath = "Software\\Tessmark GmbH\\kapdf-run";

// Read by the signal handler, so a plain buffer.
char fileInUse[4096];

// Whoever reads the output may go away, as `head` does; the signal then ends the program as it always does.
void OnBrokenPipe(int signal) {
  SettingsForRun::RemoveInHaste();
  std::signal(signal, SIG_DFL);
  std::raise(signal);
}

// Leaves any other handler where it is, such as the one that ignores the signal.
void ReplacePipeHandler(void (*from)(int), void (*to)(int)) {
  const auto before = std::signal(SIGPIPE, to);
  if (before != from) std::signal(SIGPIPE, before);
}

using Section = std::vector<std::pair<std::string, std::string>>;

std::string UserSettingsFile() {
  if (std::string named = Environment(kVariable); !named.empty()) return named;
  if (const std::string config = Environment("XDG_CONFIG_HOME"); !config.empty()) return config + "/kaPDF/settings.ini";
  return Environment("HOME") + "/.config/kaPDF/settings.ini";
}

std::string_view Trimmed(std::string_view text) {
  const size_t first = text.find_first_not_of(" \t\r");
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

// The user's sections by their suffix below the user's path, and the whole file in `text`.
std::map<std::string, Section> ReadUserSettings(std::string &text) {
  std::map<std::string, Section> sections;
  std::ifstream in(UserSettingsFile(), std::ios::binary);
  Section *section = nullptr;
  for (std::string whole; std::getline(in, whole);) {
    text += whole + "\n";
    const std::string_view line = Trimmed(whole);
    if (line.size() > 1 && line.front() == '[' && line.back() == ']') {
      const std::string_view path = line.substr(1, line.size() - 2);
      section = nullptr;
      for (const std::string_view suffix : kSettingSuffixes) {
        if (EqualsIgnoringCase(path, std::string(kUserSettingsPath) + std::string(suffix))) {
          section = &sections[std::string(suffix)];
        }
      }
    } else if (const size_t equals = line.find('='); section != nullptr && equals != std::string_view::npos) {
      section->emplace_back(Trimmed(line.substr(0, equals)), Trimmed(line.substr(equals + 1)));
    }
  }
  return sections;
}

bool WriteAll(int descriptor, std::string_view text) {
  while (!text.empty()) {
    const ssize_t written = write(descriptor, text.data(), text.size());
    if (written <= 0) return false;
    text.remove_prefix(static_cast<size_t>(written));
  }
  return true;
}

}  // namespace

bool SettingsForRun::Store(const std::vector<SettingValue> &values, std::string &reason) {
  Remove();
  std::string text;
  std::map<std::string, Section> sections = ReadUserSettings(text);
  for (const SettingValue &value : values) {
    Section &section = sections[value.suffix];
    std::erase_if(section, [&](const auto &entry) { return EqualsIgnoringCase(entry.first, value.name); });
    section.emplace_back(value.name, value.text);
  }
  for (const auto &[suffix, section] : sections) {
    text += "[" + std::string(kRunPath) + suffix + "]\n";
    for (const auto &[name, value] : section) text.append(name).append("=").append(value).append("\n");
  }

  std::error_code error;
  std::string name = Utf8Of(std::filesystem::temp_directory_path(error) / "kapdf-settings-XXXXXX");
  const int descriptor = mkstemp(name.data());
  const bool stored = descriptor >= 0 && name.size() < sizeof fileInUse && WriteAll(descriptor, text);
  if (descriptor >= 0) close(descriptor);
  if (!stored) {
    reason = "the settings of this run cannot be written to " + name;
    if (descriptor >= 0) unlink(name.c_str());
    return false;
  }
  file_ = name;
  std::memcpy(fileInUse, name.c_str(), name.size() + 1);
  ReplacePipeHandler(SIG_DFL, OnBrokenPipe);
  previousVariable_ = Environment(kVariable);
  setenv(kVariable, file_.c_str(), 1);
  path_ = ToUtf16(kRunPath);
  return true;
}

void SettingsForRun::Remove() {
  if (file_.empty()) return;
  unlink(file_.c_str());
  ReplacePipeHandler(OnBrokenPipe, SIG_DFL);
  fileInUse[0] = 0;
  if (previousVariable_.empty()) {
    unsetenv(kVariable);
  } else {
    setenv(kVariable, previousVariable_.c_str(), 1);
  }
  file_.clear();
  path_.clear();
}

void SettingsForRun::RemoveInHaste() {
  if (fileInUse[0] != 0) unlink(fileInUse);
}

}  // namespace kapdf::tool
