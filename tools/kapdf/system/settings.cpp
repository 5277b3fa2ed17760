#include "system/settings.h"

#include <algorithm>
#include <charconv>

#include "system/utf.h"

namespace kapdf::tool {
namespace {

char Lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

template <class Number>
bool NumberWithin(const Setting &row, std::string_view text, Number &number) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc() && end == text.data() + text.size() && number >= row.lowest && number <= row.highest;
}

bool TakesValue(const Setting &row, SettingValue &value) {
  double real = 0;
  if (row.type() == SettingType::kInteger) return NumberWithin(row, value.text, value.integer);
  if (row.type() == SettingType::kReal) return NumberWithin(row, value.text, real);
  // A line of a settings file cannot hold these.
  return value.text.find_first_of(std::string_view("\r\n\0", 3)) == std::string::npos &&
         static_cast<double>(ToUtf16(value.text).size()) <= row.highest;
}

std::string NumberText(double number) {
  char text[32];
  return {text, std::to_chars(text, text + sizeof text, number).ptr};
}

std::string Wants(const Setting &row) {
  if (row.type() == SettingType::kText) return "one line of at most " + NumberText(row.highest) + " characters";
  const bool whole = row.type() == SettingType::kInteger;
  if (whole && row.highest - row.lowest == 1) return NumberText(row.lowest) + " or " + NumberText(row.highest);
  return (whole ? "an integer from " : "a number from ") + NumberText(row.lowest) + " to " + NumberText(row.highest);
}

}  // namespace

bool EqualsIgnoringCase(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) { return Lower(x) == Lower(y); });
}

Outcome ParseSetting(std::string_view assignment, std::vector<SettingValue> &values) {
  const size_t equals = assignment.find('=');
  if (equals == std::string_view::npos) {
    return FailUsage("--set takes NAME=VALUE, not \"" + std::string(assignment) + "\"");
  }
  const std::string_view name = assignment.substr(0, equals);
  const auto *row = std::ranges::find_if(kSettings, [&](const Setting &r) { return EqualsIgnoringCase(r.name, name); });
  if (row == std::end(kSettings)) {
    return FailUsage("there is no setting \"" + std::string(name) + "\"; kapdf --help-settings lists them");
  }
  SettingValue value;
  value.name = row->name;
  value.type = row->type();
  value.text = assignment.substr(equals + 1);
  if (!TakesValue(*row, value)) {
    return FailUsage("the setting " + value.name + " takes " + Wants(*row) + ", not \"" + value.text + "\"");
  }
  for (const std::optional<SettingKey> key : {std::optional(row->place.key), row->place.second}) {
    if (!key) continue;
    value.suffix = SuffixOf(*key);
    std::erase_if(values, [&](const SettingValue &v) { return v.suffix == value.suffix && v.name == value.name; });
    values.push_back(value);
  }
  return {};
}

std::string SettingsHelp() {
  std::string out = "Settings for --set NAME=VALUE:\n";
  for (const Setting &row : kSettings) {
    std::string name(row.name);
    name.resize(20, ' ');
    out += "  " + name + std::string(row.help) + "\n" + std::string(22, ' ') + Wants(row);
    if (row.type() != SettingType::kText) out += "; " + NumberText(row.fallback) + " unless set";
    out += "\n";
  }
  return out;
}

}  // namespace kapdf::tool
