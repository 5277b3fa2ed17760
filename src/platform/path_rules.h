// What differs between the systems in the form of a path.
#pragma once

#include <string_view>

namespace kapdf::platform {

extern const char16_t kPathSeparator;
extern const std::u16string_view kDiagnosticFolder;

}  // namespace kapdf::platform
