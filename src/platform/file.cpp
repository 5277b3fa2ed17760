#include "platform/file.h"

#include "platform/path_rules.h"
#include "platform/text.h"

namespace kapdf::platform {

std::u16string FileNameOf(std::u16string_view path) {
  return std::u16string(path.substr(path.rfind(kPathSeparator) + 1));  // npos + 1 is 0
}

std::u16string FolderOf(std::u16string_view path) {
  return std::u16string(path.substr(0, path.rfind(kPathSeparator) + 1));
}

std::u16string DiagnosticPath(std::string_view name) { return std::u16string(kDiagnosticFolder) + FromUtf8(name); }

}  // namespace kapdf::platform
