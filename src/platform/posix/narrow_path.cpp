#include "platform/narrow_path.h"

#include <cstdlib>

#include "platform/text.h"

namespace kapdf::platform {

std::string ToNarrowPath(std::u16string_view path) { return ToUtf8(path); }
std::u16string FromNarrowPath(std::string_view path) { return FromUtf8(path); }

std::string TemporaryFolder() {
  const char *named = std::getenv("TMPDIR");
  std::string folder = named && *named ? named : "/tmp";
  if (folder.back() != '/') folder += '/';
  return folder;
}

}  // namespace kapdf::platform
