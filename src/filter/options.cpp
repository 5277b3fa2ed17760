#include "filter/options.h"

#include <string>

#include "base/scan.h"

namespace kapdf {
namespace {

std::string ToAscii(std::u16string_view text) {
  std::string ascii;
  for (const char16_t unit : text) ascii += unit > 0 && unit < 128 ? static_cast<char>(unit) : '?';
  return ascii;
}

// The text behind the first place of the word, past white space; null when the word is not there.
const char *ValueOf(const std::string &text, std::string_view word) {
  const size_t found = text.find(word);
  if (found == std::string::npos) return nullptr;
  const char *at = text.c_str() + found + word.size();
  SkipSpaces(at);
  return at;
}

void TakeInteger(const std::string &text, std::string_view word, int32_t &value) {
  if (const char *at = ValueOf(text, word)) ScanAnyInteger(at, value);
}

bool TakeColorCompression(const std::string &text, int32_t &value) {
  const char *at = ValueOf(text, "/col ");
  if (!at) return true;
  switch (*at) {
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

bool TakeBilevelCompression(const std::string &text, int32_t &value) {
  const char *at = ValueOf(text, "/bw ");
  if (!at) return true;
  int32_t code = -1;
  ScanAnyInteger(at, code);
  if (code != 0 && code != 4) return false;
  value = code == 0 ? 1 : 0;
  return true;
}

}  // namespace

bool ParseExportOptions(std::u16string_view text, WriteSettings &settings) {
  const std::string ascii = ToAscii(text);
  if (!TakeColorCompression(ascii, settings.colorCompression)) return false;
  if (!TakeBilevelCompression(ascii, settings.bwCompression)) return false;
  TakeInteger(ascii, "/q ", settings.quality);
  TakeInteger(ascii, "/pdfa ", settings.pdfa);
  TakeInteger(ascii, "/origin ", settings.atOrigin);
  if (const char *at = ValueOf(ascii, "/frame ")) ScanReal(at, settings.paperFrame);
  return true;
}

void ParseImportOptions(std::u16string_view text, ImportOptions &options) {
  if (text.empty()) return;
  const std::string ascii = ToAscii(text);
  options = {0, 300, 3, 0};
  TakeInteger(ascii, "/mode ", options.asImage);
  TakeInteger(ascii, "/dpi ", options.dpi);
  TakeInteger(ascii, "/col ", options.colorDepth);
  TakeInteger(ascii, "/text ", options.extractText);
}

}  // namespace kapdf
