// Typed reads and writes of the settings: the registry's current-user hive on Windows, an INI file elsewhere.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace kapdf::platform {

// The path that stands in when a host gives none.
inline constexpr std::u16string_view kDefaultSettingsPath = u"Software\\Tessmark GmbH\\ZVIOFilter";

// One key of the settings, named by two parts that are joined. Each read opens the key, reads one value and closes;
// a failure of any kind gives the default. Floating-point values are stored as text with a decimal point.
class Settings {
 public:
  // `base`: the path a host gave; empty stands for kDefaultSettingsPath. `suffix`: for instance u"\\Filter\\PDF".
  Settings(std::u16string_view base, std::u16string_view suffix);

  int32_t ReadInteger(std::u16string_view name, int32_t fallback) const;
  double ReadReal(std::u16string_view name, double fallback) const;
  std::u16string ReadString(std::u16string_view name, std::u16string_view fallback) const;

  // Writes create the key when it is missing. False when the value could not be stored.
  bool WriteInteger(std::u16string_view name, int32_t value) const;
  bool WriteReal(std::u16string_view name, double value) const;
  bool WriteString(std::u16string_view name, std::u16string_view value) const;

  // Makes sure that the key exists (on Linux: does nothing, since reading never creates the file).
  void CreateKey() const;
  // Removes the key with all below it. True when it is gone afterwards.
  bool RemoveKey() const;

 private:
  std::u16string path_;
};

}  // namespace kapdf::platform
