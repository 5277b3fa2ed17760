#include "filter/option_form.h"

#include <algorithm>
#include <charconv>
#include <iterator>

#include "filter/options.h"
#include "platform/form_controls.h"
#include "platform/settings.h"

namespace kapdf {
namespace {

using Kind = platform::FormField::Kind;

constexpr const char16_t *kFilterPdf = u"\\Filter\\PDF", *kPdf = u"\\PDF", *kFilter = u"\\Filter";
constexpr double kLargest = INT32_MAX;
constexpr int kNoPlace = -1;

std::string FixedText(double number) {
  char text[400];
  return {text, std::to_chars(text, text + sizeof text, number, std::chars_format::fixed, 6).ptr};
}
std::string ShortText(double number) {
  char text[64];
  return {text, std::to_chars(text, text + sizeof text, number, std::chars_format::general, 6).ptr};
}

}  // namespace

struct OptionForm::Setting {
  uint32_t control;
  Kind kind;
  const char16_t *key;
  const char16_t *name;
  double fallback;  // of a choice, a value as it is stored
  double lowest, highest;
  uint32_t neededControl = 0;
  const char16_t *secondKey = nullptr;
  int otherwise = kNoPlace;  // of a choice: place of what any other number means
};

const OptionForm::Setting OptionForm::kImportSettings[] = {
    {FORM_AS_IMAGE, Kind::kChoice, kFilterPdf, u"AsImage", 0, 0, 1, 0, nullptr, 1},
    {FORM_DPI, Kind::kInteger, kFilterPdf, u"DPI", 200, 1, 9600, FORM_AS_IMAGE},
    {FORM_COLOR_DEPTH, Kind::kChoice, kFilterPdf, u"ColorDepth", 3, 2, 4, FORM_AS_IMAGE},
    {FORM_DITHER, Kind::kInteger, kFilterPdf, u"Dither", 0, 0, 99, FORM_AS_IMAGE},
    {FORM_EXTRACT_TEXT, Kind::kSwitch, kFilterPdf, u"ExtractText", 0, 0, 1, FORM_AS_IMAGE},
    {FORM_CONVERT_POLY, Kind::kSwitch, kFilterPdf, u"ConvertPoly", 1, 0, 1},
    {FORM_FIT_TOLERANCE, Kind::kReal, kFilterPdf, u"FitTolerance", 0.002, 0, 1, FORM_CONVERT_POLY},
    {FORM_CLIPPING, Kind::kSwitch, kPdf, u"Clipping", 1, 0, 1},
    {FORM_EPSG_CODE, Kind::kInteger, kPdf, u"EPSGCode", -2, -kLargest, kLargest},
    {FORM_DEFAULT_RESOLUTION, Kind::kInteger, kFilter, u"DefaultResolution", 300, 1, 9600},
    {FORM_IMAGE_FRAME, Kind::kSwitch, kPdf, u"ImageFrame", 1, 0, 1},
    {FORM_COMBINE_STRIPES, Kind::kSwitch, kPdf, u"CombineStripes", 0, 0, 1},
    {FORM_JBIG2, Kind::kSwitch, kPdf, u"JSupport", 1, 0, 1},
    {FORM_EMBEDDED_FONTS, Kind::kSwitch, kPdf, u"UseEmbeddedFonts", 0, 0, 1},
    {FORM_UNICODE_MAP, Kind::kSwitch, kPdf, u"UseUnicodeMap", 1, 0, 1},
    {FORM_CODE_PAGE, Kind::kInteger, kPdf, u"CodePage", 0, 0, 65535},
    {FORM_TEXT_WIDTH, Kind::kReal, kPdf, u"DefaultTextW2H", 1, 0.001, 1000},
    {FORM_LOG, Kind::kSwitch, kFilterPdf, u"Log", 0, 0, 1},
    {FORM_WRITE_TO_TXT, Kind::kSwitch, kPdf, u"WriteToTxt", 0, 0, 1},
};

const OptionForm::Setting OptionForm::kExportSettings[] = {
    {FORM_COLOR_COMPRESSION, Kind::kChoice, kFilterPdf, u"ColorCompression", 0, 0, 2, 0, kPdf, 0},
    {FORM_BW_COMPRESSION, Kind::kChoice, kFilterPdf, u"BWCompression", 0, 0, 1, 0, kPdf, 0},
    {FORM_QUALITY, Kind::kInteger, kFilterPdf, u"Quality", 75, 1, 100, 0, kPdf},
    {FORM_AT_ORIGIN, Kind::kSwitch, kFilterPdf, u"AtOrigin", 0, 0, 1, 0, kPdf},
    {FORM_PAPER_FRAME, Kind::kReal, kFilterPdf, u"PaperFrame", 2, 0, 10000, 0, kPdf},
    {FORM_PDFA, Kind::kSwitch, kFilterPdf, u"PDFA", 0, 0, 1, 0, kPdf},
    {FORM_GEOTIFF, Kind::kSwitch, kPdf, u"GeoTiff", 0, 0, 1},
    {FORM_JOIN_STYLE, Kind::kChoice, kPdf, u"JoinStyle", 1, 0, 2},
    {FORM_MITER, Kind::kReal, kPdf, u"Miter", 10, 1, 1000},
    {FORM_LINE_CAP, Kind::kChoice, kPdf, u"LineCap", 0, 0, 2},
    {FORM_EMBED_FONTS, Kind::kSwitch, kPdf, u"EmbedFonts", 0, 0, 1},
    {FORM_AUTHOR, Kind::kText, kPdf, u"Author", 0, 0, 255},
    {FORM_SUBJECT, Kind::kText, kPdf, u"Subject", 0, 0, 1023},
    {FORM_KEYWORDS, Kind::kText, kPdf, u"Keywords", 0, 0, 1023},
    {FORM_COPYRIGHT, Kind::kText, kPdf, u"Copyright", 0, 0, 255},
    {FORM_WRITE_RETRIES, Kind::kInteger, kFilterPdf, u"WriteRetries", 10, 1, 1000},
};

OptionForm::OptionForm(Direction direction, std::u16string_view registryPath, std::u16string_view options)
    : direction_(direction), registryPath_(registryPath) {
  const bool imports = direction == Direction::kImport;
  settings_ = imports ? kImportSettings : kExportSettings;
  const size_t count = imports ? std::size(kImportSettings) : std::size(kExportSettings);
  given_.resize(count);
  for (size_t i = 0; i < count; ++i) {
    const Setting &setting = settings_[i];
    const platform::Settings key(registryPath_, setting.key);
    platform::FormField &field = fields_.emplace_back();
    field.control = setting.control;
    field.kind = setting.kind;
    field.lowest = setting.lowest;
    field.highest = setting.highest;
    field.neededControl = setting.neededControl;
    if (setting.kind == Kind::kText)
      field.text = key.ReadString(setting.name, u"");
    else if (setting.kind == Kind::kReal)
      field.number = key.ReadReal(setting.name, setting.fallback);
    else
      field.number = key.ReadInteger(setting.name, static_cast<int32_t>(setting.fallback));
    if (setting.kind == Kind::kSwitch || setting.kind == Kind::kChoice) SetValue(setting.control, field.number);
  }
  if (options.empty()) return;
  if (imports)
    TakeImportOptions(options);
  else
    TakeExportOptions(options);
}

uint32_t OptionForm::dialog() const { return direction_ == Direction::kImport ? FORM_IMPORT : FORM_EXPORT; }

size_t OptionForm::IndexOf(uint32_t control) const {
  return static_cast<size_t>(std::ranges::find(fields_, control, &platform::FormField::control) - fields_.begin());
}

// As it is stored.
double OptionForm::Value(uint32_t control) const {
  const size_t index = IndexOf(control);
  const platform::FormField &field = fields_[index];
  if (field.kind != Kind::kChoice) return field.number;
  return field.number == PlaceOf(index, given_[index]) ? given_[index] : field.number + field.lowest;
}

double OptionForm::PlaceOf(size_t index, double value) const {
  const Setting &setting = settings_[index];
  return value >= setting.lowest && value <= setting.highest ? value - setting.lowest : setting.otherwise;
}

// A choice that is not changed keeps a number that is none of the list.
void OptionForm::SetValue(uint32_t control, double value) {
  const size_t index = IndexOf(control);
  platform::FormField &field = fields_[index];
  if (field.kind == Kind::kSwitch)
    field.number = value != 0 ? 1 : 0;
  else if (field.kind == Kind::kChoice)
    field.number = PlaceOf(index, given_[index] = value);
  else
    field.number = value;
}

void OptionForm::TakeImportOptions(std::u16string_view options) {
  ImportOptions taken;
  ParseImportOptions(options, taken);
  SetValue(FORM_AS_IMAGE, taken.asImage);
  SetValue(FORM_DPI, taken.dpi);
  SetValue(FORM_COLOR_DEPTH, taken.colorDepth);
  SetValue(FORM_EXTRACT_TEXT, taken.extractText);
}

void OptionForm::TakeExportOptions(std::u16string_view options) {
  const auto whole = [this](uint32_t control) { return static_cast<int32_t>(Value(control)); };
  WriteSettings taken{whole(FORM_COLOR_COMPRESSION), whole(FORM_BW_COMPRESSION), whole(FORM_QUALITY), whole(FORM_PDFA),
                      whole(FORM_AT_ORIGIN),         Value(FORM_PAPER_FRAME)};
  if (!ParseExportOptions(options, taken)) return;
  SetValue(FORM_COLOR_COMPRESSION, taken.colorCompression);
  SetValue(FORM_BW_COMPRESSION, taken.bwCompression);
  SetValue(FORM_QUALITY, taken.quality);
  SetValue(FORM_PDFA, taken.pdfa);
  SetValue(FORM_AT_ORIGIN, taken.atOrigin);
  SetValue(FORM_PAPER_FRAME, taken.paperFrame);
}

// A switch that stays on keeps the number that made it so: some settings go on to the host as they are.
int32_t OptionForm::WholeToStore(const platform::Settings &key, const Setting &setting, double value) {
  const auto whole = static_cast<int32_t>(value);
  const int32_t before = setting.kind == Kind::kSwitch && whole != 0 ? key.ReadInteger(setting.name, whole) : whole;
  return before != 0 ? before : whole;
}

void OptionForm::Save() const {
  for (size_t i = 0; i < fields_.size(); ++i) {
    const Setting &setting = settings_[i];
    const platform::FormField &field = fields_[i];
    for (const char16_t *suffix : {setting.key, setting.secondKey}) {
      if (!suffix) continue;
      const platform::Settings key(registryPath_, suffix);
      if (field.kind == Kind::kText)
        key.WriteString(setting.name, field.text);
      else if (field.kind == Kind::kReal)
        key.WriteReal(setting.name, field.number);
      else
        key.WriteInteger(setting.name, WholeToStore(key, setting, Value(field.control)));
    }
  }
}

std::u16string OptionForm::Options() const {
  const auto whole = [this](uint32_t control) { return std::to_string(static_cast<int32_t>(Value(control))); };
  std::string text;
  if (direction_ == Direction::kImport) {
    text = "/mode " + whole(FORM_AS_IMAGE) + " /dpi " + whole(FORM_DPI) + " /col " + whole(FORM_COLOR_DEPTH) +
           " /text " + whole(FORM_EXTRACT_TEXT) + " /Convert " + whole(FORM_CONVERT_POLY) + " /Tolerance " +
           ShortText(Value(FORM_FIT_TOLERANCE));
  } else {
    const double compression = Value(FORM_COLOR_COMPRESSION);
    text = std::string("/col ") +
           (compression == 2   ? 'U'
            : compression == 1 ? 'J'
                               : 'L') +
           " /bw " + (Value(FORM_BW_COMPRESSION) == 1 ? "0" : "4") + " /q " + whole(FORM_QUALITY) + " /pdfa " +
           whole(FORM_PDFA) + " /origin " + whole(FORM_AT_ORIGIN) + " /frame " + FixedText(Value(FORM_PAPER_FRAME));
  }
  return {text.begin(), text.end()};
}

}  // namespace kapdf
