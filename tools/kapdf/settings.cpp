#include "settings.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace kapdf::tool {
namespace {

enum Keys : unsigned { kFilterKey = 1, kPdf = 2, kFilterPdf = 4 };

struct SettingRow {
  std::string_view name;
  SettingType type;
  unsigned keys;
};

constexpr SettingType kInteger = SettingType::kInteger;
constexpr SettingType kReal = SettingType::kReal;
constexpr SettingType kText = SettingType::kText;

constexpr SettingRow kSettings[] = {
    {"ColorCompression", kInteger, kFilterPdf | kPdf},
    {"BWCompression", kInteger, kFilterPdf | kPdf},
    {"Quality", kInteger, kFilterPdf | kPdf},
    {"PDFA", kInteger, kFilterPdf | kPdf},
    {"AtOrigin", kInteger, kFilterPdf | kPdf},
    {"PaperFrame", kReal, kFilterPdf | kPdf},
    {"DPI", kInteger, kFilterPdf},
    {"ColorDepth", kInteger, kFilterPdf},
    {"ColorMode", kInteger, kFilterPdf},
    {"Dither", kInteger, kFilterPdf},
    {"ExtractText", kInteger, kFilterPdf},
    {"AsImage", kInteger, kFilterPdf},
    {"ConvertPoly", kInteger, kFilterPdf},
    {"FitTolerance", kReal, kFilterPdf},
    {"Log", kInteger, kFilterPdf},
    {"WriteRetries", kInteger, kFilterPdf},
    {"DefaultResolution", kInteger, kFilterKey},
    {"CodePage", kInteger, kPdf},
    {"GeoTiff", kInteger, kPdf},
    {"EmbedFonts", kInteger, kPdf},
    {"JoinStyle", kInteger, kPdf},
    {"Miter", kReal, kPdf},
    {"LineCap", kInteger, kPdf},
    {"Subject", kText, kPdf},
    {"Keywords", kText, kPdf},
    {"Author", kText, kPdf},
    {"Copyright", kText, kPdf},
    {"ImageFrame", kInteger, kPdf},
    {"UseEmbeddedFonts", kInteger, kPdf},
    {"UseUnicodeMap", kInteger, kPdf},
    {"Clipping", kInteger, kPdf},
    {"CombineStripes", kInteger, kPdf},
    {"WriteToTxt", kInteger, kPdf},
    {"JSupport", kInteger, kPdf},
    {"EPSGCode", kInteger, kPdf},
    {"DefaultTextW2H", kText, kPdf},
};

char Lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

template <class Number>
bool WholeText(std::string_view text, Number &number) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc() && end == text.data() + text.size();
}

bool TakesValue(const SettingRow &row, SettingValue &value) {
  switch (row.type) {
    case kInteger:
      return WholeText(value.text, value.integer);
    case kReal: {
      double real = 0;
      return WholeText(value.text, real) && std::isfinite(real);
    }
    case kText:
      break;
  }
  // A line of a settings file cannot hold these.
  return value.text.find_first_of(std::string_view("\r\n\0", 3)) == std::string::npos;
}

std::string_view Wants(SettingType type) {
  return type == kInteger ? "an integer" : type == kReal ? "a number" : "a text of one line";
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
  const auto *row = std::find_if(std::begin(kSettings), std::end(kSettings),
                                 [&](const SettingRow &r) { return EqualsIgnoringCase(r.name, name); });
  if (row == std::end(kSettings)) {
    return FailUsage("there is no setting \"" + std::string(name) + "\"; kapdf --help-settings lists them");
  }
  SettingValue value;
  value.name = row->name;
  value.type = row->type;
  value.text = assignment.substr(equals + 1);
  if (!TakesValue(*row, value)) {
    return FailUsage("the setting " + value.name + " takes " + std::string(Wants(row->type)) + ", not \"" + value.text +
                     "\"");
  }
  constexpr std::pair<Keys, std::string_view> kSuffixes[] = {
      {kFilterKey, "\\Filter"}, {kPdf, "\\PDF"}, {kFilterPdf, "\\Filter\\PDF"}};
  for (const auto &entry : kSuffixes) {
    if ((row->keys & entry.first) == 0) continue;
    value.suffix = entry.second;
    std::erase_if(values, [&](const SettingValue &v) { return v.suffix == value.suffix && v.name == value.name; });
    values.push_back(value);
  }
  return {};
}

std::string SettingsHelp() {
  std::string out = "Settings for --set NAME=VALUE:\n";
  for (const SettingRow &row : kSettings) {
    out += "  " + std::string(row.name);
    out.append(22 - row.name.size(), ' ');
    out += row.type == kInteger ? "integer\n" : row.type == kReal ? "number\n" : "text\n";
  }
  return out;
}

}  // namespace kapdf::tool
