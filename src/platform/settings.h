// Typed reads and writes of the settings: the registry's current-user hive on Windows, an INI file elsewhere.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "base/settings_table.h"

namespace kapdf::platform {

// The path that stands in when a host gives none.
inline constexpr std::u16string_view kDefaultSettingsPath = u"Software\\Tessmark GmbH\\ZVIOFilter";

// One key of the settings, named by two parts that are joined. Each read opens the key, reads one value and closes;
// a failure of any kind gives the default. Floating-point values are stored as text with a decimal point.
class Settings {
 public:
  // `base`: the path a host gave; empty stands for kDefaultSettingsPath. `suffix`: for instance u"\\Filter\\PDF".
  Settings(std::u16string_view base, std::u16string_view suffix);
  Settings(std::u16string_view base, SettingKey key);

  int32_t ReadInteger(std::u16string_view name, int32_t fallback) const;
  double ReadReal(std::u16string_view name, double fallback) const;
  std::u16string ReadString(std::u16string_view name, std::u16string_view fallback) const;
  // By a row of the table, with its default. Of its bounds nothing is asked.
  int32_t ReadInteger(const Setting &row) const;
  double ReadReal(const Setting &row) const;
  std::u16string ReadString(const Setting &row) const;

  // Writes create the key when it is missing. False when the value could not be stored.
  bool WriteInteger(std::u16string_view name, int32_t value) const;
  bool WriteReal(std::u16string_view name, double value) const;
  bool WriteString(std::u16string_view name, std::u16string_view value) const;
  bool WriteInteger(const Setting &row, int32_t value) const;
  bool WriteReal(const Setting &row, double value) const;
  bool WriteString(const Setting &row, std::u16string_view value) const;

  // Makes sure that the key exists (on Linux: does nothing, since reading never creates the file).
  void CreateKey() const;
  // Removes the key with all below it. True when it is gone afterwards.
  bool RemoveKey() const;

 private:
  std::u16string path_;
};

// One key, whose settings are asked for by name: Integer("Quality"). The compiler looks names up.
template <SettingKey kKey>
class SettingsAt : public Settings {
 public:
  explicit SettingsAt(std::u16string_view base) : Settings(base, kKey) {}

  int32_t Integer(SettingName<kKey, SettingType::kInteger> name) const { return ReadInteger(name.row); }
  bool Switch(SettingName<kKey, SettingType::kInteger> name) const { return ReadInteger(name.row) != 0; }
  double Real(SettingName<kKey, SettingType::kReal> name) const { return ReadReal(name.row); }
  std::u16string Text(SettingName<kKey, SettingType::kText> name) const { return ReadString(name.row); }
};

}  // namespace kapdf::platform
