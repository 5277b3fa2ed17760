#include "platform/path_rules.h"

namespace kapdf::platform {

const char16_t kPathSeparator = u'/';
const std::u16string_view kDiagnosticFolder = u"/tmp/";

}  // namespace kapdf::platform
