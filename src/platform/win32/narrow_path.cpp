#include "platform/narrow_path.h"

#include <windows.h>

#include <array>

#include "platform/text.h"

namespace kapdf::platform {

std::string ToNarrowPath(std::u16string_view path) { return ToNarrow(path, kSystemCodePage); }
std::u16string FromNarrowPath(std::string_view path) { return ToWide(path, kSystemCodePage); }

std::string TemporaryFolder() {
  std::array<char, MAX_PATH + 2> folder{};
  return GetTempPathA(static_cast<DWORD>(folder.size()), folder.data()) > 0 ? folder.data() : "";
}

}  // namespace kapdf::platform
