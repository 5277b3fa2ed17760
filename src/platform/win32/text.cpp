#include "platform/text.h"

#include <windows.h>

#include <climits>

#include "platform/win32/wide.h"

namespace kapdf::platform {
namespace {

// A page that this system does not know gives way to its own.
UINT KnownPage(uint32_t codePage) { return codePage == 0 || !IsValidCodePage(codePage) ? CP_ACP : codePage; }

// The converters count in int.
template <class Text>
int Length(Text text) {
  return text.size() > INT_MAX / 8 ? INT_MAX / 8 : static_cast<int>(text.size());
}

}  // namespace

std::string ToNarrow(std::u16string_view text, uint32_t codePage) {
  if (text.empty()) return {};
  if (codePage == CP_UTF8) return ToUtf8(text);
  const UINT page = KnownPage(codePage);
  const auto *from = reinterpret_cast<const wchar_t *>(text.data());
  const int count = Length(text);
  // Similar letters do not stand in for others ("?" does); some pages take no flags at all.
  DWORD flags = WC_NO_BEST_FIT_CHARS;
  int size = WideCharToMultiByte(page, flags, from, count, nullptr, 0, nullptr, nullptr);
  if (size == 0) {
    flags = 0;
    size = WideCharToMultiByte(page, flags, from, count, nullptr, 0, nullptr, nullptr);
  }
  std::string out(static_cast<size_t>(size), '\0');
  WideCharToMultiByte(page, flags, from, count, out.data(), size, nullptr, nullptr);
  return out;
}

std::u16string ToWide(std::string_view text, uint32_t codePage) {
  if (text.empty()) return {};
  if (codePage == CP_UTF8) return FromUtf8(text);
  const UINT page = KnownPage(codePage);
  const int count = Length(text);
  const int size = MultiByteToWideChar(page, 0, text.data(), count, nullptr, 0);
  std::u16string out(static_cast<size_t>(size > 0 ? size : 0), u'\0');
  MultiByteToWideChar(page, 0, text.data(), count, reinterpret_cast<wchar_t *>(out.data()), size);
  return out;
}

}  // namespace kapdf::platform
