#include "../settings_probe.h"

#include <windows.h>

namespace fake {
namespace {

constexpr const wchar_t *kUser = L"Software\\Tessmark GmbH\\ZVIOFilter";

std::wstring Wide(const std::string &text) { return {text.begin(), text.end()}; }

}  // namespace

std::string ReadSetting(const std::u16string &key, const std::string &name) {
  const std::wstring path(key.begin(), key.end());
  DWORD type = 0, number = 0, bytes = sizeof number;
  if (RegGetValueW(HKEY_CURRENT_USER, path.c_str(), Wide(name).c_str(), RRF_RT_REG_DWORD, &type, &number, &bytes) ==
      ERROR_SUCCESS) {
    return std::to_string(static_cast<int>(number));
  }
  wchar_t text[256];
  bytes = sizeof text;
  if (RegGetValueW(HKEY_CURRENT_USER, path.c_str(), Wide(name).c_str(), RRF_RT_REG_SZ, &type, text, &bytes) !=
      ERROR_SUCCESS) {
    return "none";
  }
  const std::wstring value(text);
  return {value.begin(), value.end()};
}

void WriteUserSetting(const std::string &suffix, const std::string &name, int value) {
  const std::wstring path = kUser + Wide(suffix);
  RegSetKeyValueW(HKEY_CURRENT_USER, path.c_str(), Wide(name).c_str(), REG_DWORD, &value, sizeof value);
}

void RemoveUserSettings() { RegDeleteTreeW(HKEY_CURRENT_USER, kUser); }

}  // namespace fake
