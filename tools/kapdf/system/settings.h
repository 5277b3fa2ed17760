// The settings that a run may replace, and the keys below the settings path that read them.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "base/settings_table.h"
#include "system/outcome.h"

namespace kapdf::tool {

// The path that holds the user's own settings.
inline constexpr std::string_view kUserSettingsPath = "Software\\Tessmark GmbH\\ZVIOFilter";

// One value for one key. Integers are stored as numbers, everything else as text.
struct SettingValue {
  std::string suffix;  // one of kSettingSuffixes
  std::string name;
  SettingType type = SettingType::kText;
  int integer = 0;
  std::string text;
};

// Checks "NAME=VALUE" against the table of settings, with its bounds, and appends one value for each key of the
// setting. Names are taken without regard to case.
Outcome ParseSetting(std::string_view assignment, std::vector<SettingValue> &values);

// ASCII letters only, as names of settings are.
bool EqualsIgnoringCase(std::string_view a, std::string_view b);

// All names with what they take and do, for the help.
std::string SettingsHelp();

}  // namespace kapdf::tool
