// Settings stand in the registry below the current user. The run gets a key of its own with the user's values copied
// into it, named after the process so that two runs do not meet.
#include <windows.h>

#include "system/os.h"
#include "system/utf.h"

namespace kapdf::tool {
namespace {

wchar_t keyInUse[256];

std::wstring Wide(std::string_view text) {
  const std::u16string units = ToUtf16(text);
  return {units.begin(), units.end()};
}

class Key {
 public:
  static Key Open(const std::wstring &path) {
    Key key;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, path.c_str(), 0, KEY_READ, &key.handle_) != ERROR_SUCCESS)
      key.handle_ = nullptr;
    return key;
  }
  static Key Create(const std::wstring &path) {
    Key key;
    if (RegCreateKeyExW(HKEY_CURRENT_USER, path.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_WRITE, nullptr,
                        &key.handle_, nullptr) != ERROR_SUCCESS) {
      key.handle_ = nullptr;
    }
    return key;
  }
  Key(Key &&other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
  ~Key() {
    if (handle_ != nullptr) RegCloseKey(handle_);
  }
  explicit operator bool() const { return handle_ != nullptr; }

  bool Set(const std::wstring &name, DWORD type, const void *data, size_t bytes) const {
    return RegSetValueExW(handle_, name.c_str(), 0, type, static_cast<const BYTE *>(data), static_cast<DWORD>(bytes)) ==
           ERROR_SUCCESS;
  }
  void CopyValuesTo(const Key &target) const {
    std::wstring name(16384, L'\0');
    std::vector<BYTE> data(65536);
    for (DWORD index = 0;; ++index) {
      auto nameLength = static_cast<DWORD>(name.size());
      auto dataLength = static_cast<DWORD>(data.size());
      DWORD type = 0;
      const LSTATUS status =
          RegEnumValueW(handle_, index, name.data(), &nameLength, nullptr, &type, data.data(), &dataLength);
      if (status == ERROR_MORE_DATA) continue;
      if (status != ERROR_SUCCESS) return;
      target.Set(std::wstring(name, 0, nameLength), type, data.data(), dataLength);
    }
  }

 private:
  Key() = default;
  HKEY handle_ = nullptr;
};

bool StoreValue(const Key &key, const SettingValue &value) {
  if (value.type == SettingType::kInteger) {
    return key.Set(Wide(value.name), REG_DWORD, &value.integer, sizeof value.integer);
  }
  const std::wstring text = Wide(value.text);
  return key.Set(Wide(value.name), REG_SZ, text.c_str(), (text.size() + 1) * sizeof(wchar_t));
}

}  // namespace

bool SettingsForRun::Store(const std::vector<SettingValue> &values, std::string &reason) {
  Remove();
  const std::string run = "Software\\kapdf-run-" + std::to_string(GetCurrentProcessId());
  path_ = ToUtf16(run);
  Wide(run).copy(keyInUse, std::size(keyInUse) - 1);
  bool stored = true;
  for (const std::string_view suffix : kSettingSuffixes) {
    const Key target = Key::Create(Wide(run + std::string(suffix)));
    stored = stored && target;
    if (!stored) break;
    if (const Key user = Key::Open(Wide(std::string(kUserSettingsPath) + std::string(suffix)))) {
      user.CopyValuesTo(target);
    }
    for (const SettingValue &value : values) {
      if (value.suffix == suffix) stored = stored && StoreValue(target, value);
    }
  }
  if (!stored) {
    reason = "the settings of this run cannot be written to the registry";
    Remove();
  }
  return stored;
}

void SettingsForRun::Remove() {
  if (path_.empty()) return;
  RemoveInHaste();
  keyInUse[0] = 0;
  path_.clear();
}

// Signals of the console come on a thread of their own, so that the registry may be used.
void SettingsForRun::RemoveInHaste() {
  if (keyInUse[0] == 0) return;
  RegDeleteTreeW(HKEY_CURRENT_USER, keyInUse);
  RegDeleteKeyW(HKEY_CURRENT_USER, keyInUse);
}

}  // namespace kapdf::tool
