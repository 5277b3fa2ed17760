#include "filter/options.h"

#include <charconv>
#include <string>

#include "base/scan.h"

namespace kapdf {
namespace {

using Spelling = OptionWord::Spelling;
constexpr std::u16string_view kPasswordWord = u"/pw ";

std::string ToAscii(std::u16string_view text) {
  std::string ascii;
  for (const char16_t unit : text) ascii += unit > 0 && unit < 128 ? static_cast<char>(unit) : '?';
  return ascii;
}

// The text behind the first place of the word and a blank, past white space; null when the word is not there.
const char *ValueOf(const std::string &text, std::string_view word) {
  const size_t found = text.find(std::string(word) + ' ');
  if (found == std::string::npos) return nullptr;
  const char *at = text.c_str() + found + word.size() + 1;
  SkipSpaces(at);
  return at;
}

// Letters, and the numbers that stood for them at first.
bool TakeColorCompression(char letter, double &value) {
  switch (letter) {
    case '0':
    case 'U':
      value = 2;
      return true;
    case '1':
    case 'D':
    case 'J':
      value = 1;
      return true;
    case '2':
    case 'L':
      value = 0;
      return true;
    default:
      return false;
  }
}

bool TakeFaxGroup(const char *at, double &value) {
  int32_t group = -1;
  ScanAnyInteger(at, group);
  if (group != 0 && group != 4) return false;
  value = group == 0 ? 1 : 0;
  return true;
}

std::string RealText(double number, std::chars_format format) {
  char text[400];
  return {text, std::to_chars(text, text + sizeof text, number, format, 6).ptr};
}

std::string Spelled(const Setting &row, double value) {
  const auto whole = static_cast<int32_t>(value);
  switch (row.option.spelling) {
    case Spelling::kColorLetter:
      return whole == 2 ? "U" : whole == 1 ? "J" : "L";
    case Spelling::kFaxGroup:
      return whole == 1 ? "0" : "4";
    case Spelling::kSixDecimals:
      return RealText(value, std::chars_format::fixed);
    default:
      return row.type() == SettingType::kReal ? RealText(value, std::chars_format::general) : std::to_string(whole);
  }
}

}  // namespace

OptionString::OptionString(std::u16string_view text) : text_(ToAscii(text)) {}

bool OptionString::Take(const Setting &row, double &value) const {
  value = text_.empty() ? value : row.option.absent.value_or(value);
  const char *at = ValueOf(text_, row.option.text);
  if (!at || row.option.spelling == Spelling::kWriteOnly) return true;
  if (row.option.spelling == Spelling::kColorLetter) return TakeColorCompression(*at, value);
  if (row.option.spelling == Spelling::kFaxGroup) return TakeFaxGroup(at, value);
  if (row.type() == SettingType::kReal) {
    ScanReal(at, value);
  } else if (int32_t whole = 0; ScanAnyInteger(at, whole)) {
    value = whole;
  }
  return true;
}

bool OptionString::Take(const Setting &row, int32_t &value) const {
  double number = value;
  const bool taken = Take(row, number);
  value = static_cast<int32_t>(number);
  return taken;
}

std::string OptionString::Composed(const Setting &row, double value) {
  return std::string(row.option.text) + ' ' + Spelled(row, value);
}

bool ParseExportOptions(std::u16string_view text, WriteSettings &settings) {
  const OptionString options(text);
  return options.Take(SettingNamed("ColorCompression"), settings.colorCompression) &&
         options.Take(SettingNamed("BWCompression"), settings.bwCompression) &&
         options.Take(SettingNamed("Quality"), settings.quality) && options.Take(SettingNamed("PDFA"), settings.pdfa) &&
         options.Take(SettingNamed("AtOrigin"), settings.atOrigin) &&
         options.Take(SettingNamed("PaperFrame"), settings.paperFrame);
}

void ParseImportOptions(std::u16string_view text, ImportOptions &options) {
  std::u16string_view before = text, behind;
  if (const size_t word = text.find(kPasswordWord); word != text.npos) {
    const std::u16string_view password = text.substr(word + kPasswordWord.size());
    options.password = password.substr(0, password.find(u' '));
    before = text.substr(0, word);
    behind = password.substr(options.password.size());
  }
  const OptionString given(std::u16string(before).append(behind));
  given.Take(SettingNamed("AsImage"), options.asImage);
  given.Take(SettingNamed("DPI"), options.dpi);
  given.Take(SettingNamed("ColorDepth"), options.colorDepth);
  given.Take(SettingNamed("ExtractText"), options.extractText);
  constexpr int32_t kUntold = -1;
  int32_t extended = kUntold;
  given.Take(SettingNamed("ExtendedReading"), extended);
  if (extended != kUntold) options.extended = extended;
}

}  // namespace kapdf
