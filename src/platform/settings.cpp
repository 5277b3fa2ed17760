#include "platform/settings.h"

namespace kapdf::platform {
namespace {

std::u16string Wide(std::string_view ascii) { return {ascii.begin(), ascii.end()}; }

}  // namespace

Settings::Settings(std::u16string_view base, std::u16string_view suffix)
    : path_(base.empty() ? kDefaultSettingsPath : base) {
  path_ += suffix;
}

Settings::Settings(std::u16string_view base, SettingKey key) : Settings(base, Wide(SuffixOf(key))) {}

int32_t Settings::ReadInteger(const Setting &row) const {
  return ReadInteger(Wide(row.name), static_cast<int32_t>(row.fallback));
}

double Settings::ReadReal(const Setting &row) const { return ReadReal(Wide(row.name), row.fallback); }

std::u16string Settings::ReadString(const Setting &row) const { return ReadString(Wide(row.name), u""); }

bool Settings::WriteInteger(const Setting &row, int32_t value) const { return WriteInteger(Wide(row.name), value); }

bool Settings::WriteReal(const Setting &row, double value) const { return WriteReal(Wide(row.name), value); }

bool Settings::WriteString(const Setting &row, std::u16string_view value) const {
  return WriteString(Wide(row.name), value);
}

}  // namespace kapdf::platform
