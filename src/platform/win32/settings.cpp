#include "platform/settings.h"

#include <windows.h>

#include <cmath>
#include <vector>

#include "platform/setting_text.h"
#include "platform/text.h"
#include "platform/win32/wide.h"

namespace kapdf::platform {
namespace {

// An open key of the current user's hive; closes itself.
class Key {
 public:
  static Key Open(const std::u16string &path, REGSAM rights) {
    Key key;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, Wide(path).c_str(), 0, rights, &key.handle_) != ERROR_SUCCESS) {
      key.handle_ = nullptr;
    }
    return key;
  }
  static Key Create(const std::u16string &path) {
    Key key;
    if (RegCreateKeyExW(HKEY_CURRENT_USER, Wide(path).c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_SET_VALUE,
                        nullptr, &key.handle_, nullptr) != ERROR_SUCCESS) {
      key.handle_ = nullptr;
    }
    return key;
  }
  Key(Key &&other) noexcept : handle_(other.handle_) { other.handle_ = nullptr; }
  Key(const Key &) = delete;
  Key &operator=(const Key &) = delete;
  Key &operator=(Key &&) = delete;
  ~Key() {
    if (handle_) RegCloseKey(handle_);
  }

  // False when there is no such value of this type.
  bool Query(std::u16string_view name, DWORD type, std::vector<uint8_t> &out) const {
    const std::wstring wideName = Wide(name);
    DWORD size = 256;
    LSTATUS status = ERROR_MORE_DATA;
    DWORD found = REG_NONE;
    // The value may grow between two calls.
    for (int tries = 0; handle_ && status == ERROR_MORE_DATA && tries < 4; ++tries) {
      out.resize(size);
      status = RegQueryValueExW(handle_, wideName.c_str(), nullptr, &found, out.data(), &size);
    }
    if (status != ERROR_SUCCESS || found != type) return false;
    out.resize(size);
    return true;
  }

  bool Store(std::u16string_view name, DWORD type, const void *data, size_t size) const {
    return handle_ && size < UINT32_MAX &&
           RegSetValueExW(handle_, Wide(name).c_str(), 0, type, static_cast<const BYTE *>(data),
                          static_cast<DWORD>(size)) == ERROR_SUCCESS;
  }

 private:
  Key() = default;

  HKEY handle_ = nullptr;
};

bool QueryText(const std::u16string &path, std::u16string_view name, std::u16string &out) {
  std::vector<uint8_t> bytes;
  if (!Key::Open(path, KEY_QUERY_VALUE).Query(name, REG_SZ, bytes)) return false;
  out.resize(bytes.size() / 2);
  for (size_t i = 0; i < out.size(); ++i) out[i] = static_cast<char16_t>(bytes[2 * i] | bytes[2 * i + 1] << 8);
  out.resize(out.find(u'\0') == std::u16string::npos ? out.size() : out.find(u'\0'));  // stored with its zero, or not
  return true;
}

}  // namespace

int32_t Settings::ReadInteger(std::u16string_view name, int32_t fallback) const {
  std::vector<uint8_t> bytes;
  if (!Key::Open(path_, KEY_QUERY_VALUE).Query(name, REG_DWORD, bytes) || bytes.size() != 4) return fallback;
  return static_cast<int32_t>(bytes[0] | bytes[1] << 8 | bytes[2] << 16 | static_cast<uint32_t>(bytes[3]) << 24);
}

double Settings::ReadReal(std::u16string_view name, double fallback) const {
  std::u16string text;
  if (!QueryText(path_, name, text)) return fallback;
  return ScanReal(ToUtf8(text)).value_or(fallback);
}

std::u16string Settings::ReadString(std::u16string_view name, std::u16string_view fallback) const {
  std::u16string text;
  return QueryText(path_, name, text) ? text : std::u16string(fallback);
}

bool Settings::WriteInteger(std::u16string_view name, int32_t value) const {
  return Key::Create(path_).Store(name, REG_DWORD, &value, sizeof value);
}

bool Settings::WriteReal(std::u16string_view name, double value) const {
  return std::isfinite(value) && WriteString(name, FromUtf8(FormatReal(value)));
}

bool Settings::WriteString(std::u16string_view name, std::u16string_view value) const {
  const std::wstring text = Wide(value);
  return Key::Create(path_).Store(name, REG_SZ, text.c_str(), (text.size() + 1) * sizeof(wchar_t));
}

void Settings::CreateKey() const { Key::Create(path_); }

bool Settings::RemoveKey() const {
  const LSTATUS status = RegDeleteTreeW(HKEY_CURRENT_USER, Wide(path_).c_str());
  return status == ERROR_SUCCESS || status == ERROR_FILE_NOT_FOUND;
}

}  // namespace kapdf::platform
