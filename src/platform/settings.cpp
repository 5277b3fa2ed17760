#include "platform/settings.h"

namespace kapdf::platform {

Settings::Settings(std::u16string_view base, std::u16string_view suffix)
    : path_(base.empty() ? kDefaultSettingsPath : base) {
  path_ += suffix;
}

}  // namespace kapdf::platform
