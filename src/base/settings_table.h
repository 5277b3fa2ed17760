// Every setting there is, one row each. The module reads its settings by these rows, the dialogs and the option strings
// are made of them, and the host program checks `--set` by them. A new setting is a row here and the line that reads
// it.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "base/form_controls.h"

namespace kapdf {

// Keys below the path that a host gives, and what each adds to it.
enum class SettingKey : uint8_t { kRoot, kFilter, kPdf, kFilterPdf };
inline constexpr std::string_view kSettingSuffixes[] = {"", "\\Filter", "\\PDF", "\\Filter\\PDF"};
constexpr std::string_view SuffixOf(SettingKey key) { return kSettingSuffixes[static_cast<size_t>(key)]; }

// How a value is stored: integers as numbers, the others as text.
enum class SettingType : uint8_t { kInteger, kReal, kText };
// How a dialog shows it.
enum class SettingKind : uint8_t { kSwitch, kChoice, kInteger, kReal, kText };
enum class SettingUse : uint8_t { kImport = 1, kExport = 2, kBoth = 3 };

// Where a value is kept. One with two keys is read at either, depending on who asks; whoever stores it stores both.
struct SettingPlace {
  SettingKey key;
  std::optional<SettingKey> second = {};

  constexpr bool Has(SettingKey wanted) const { return key == wanted || second == wanted; }
};

// A word of an option string, and how the value behind it is spelled.
struct OptionWord {
  enum class Spelling : uint8_t {
    kNumber,       // of a fraction six digits at most
    kSixDecimals,  // of a fraction
    kColorLetter,  // L, J and U for 0, 1 and 2
    kFaxGroup,     // 4 and 0 for 0 and 1
    kWhenOn,       // kNumber; a string that is made here has no word for 0
    kWriteOnly,    // kNumber, from the dialogs; no open operation reads it
  };

  std::string_view text = {};  // empty for none
  Spelling spelling = Spelling::kNumber;
  std::optional<double> absent = {};  // the value in a string that is not empty and lacks the word; none: unchanged
};

struct Setting {
  std::string_view name;
  SettingKind kind;
  SettingPlace place;
  double fallback;         // where nothing is stored; of a text, nothing
  double lowest, highest;  // of a number; of a text, the most units. The module takes what is stored beyond them
  SettingUse use;
  uint32_t control;        // of its dialog; 0 for none
  uint32_t neededControl;  // the switch or choice that must not be 0 for the setting to matter; 0 for none
  OptionWord option;
  std::string_view help;
  int otherwise = -1;  // of a choice: the place in its list that any other number means; -1 for none

  constexpr SettingType type() const {
    if (kind == SettingKind::kReal) return SettingType::kReal;
    return kind == SettingKind::kText ? SettingType::kText : SettingType::kInteger;
  }
  constexpr bool IsFor(SettingUse wanted) const {
    return (static_cast<unsigned>(use) & static_cast<unsigned>(wanted)) != 0;
  }
};

namespace settings_table {

using enum SettingKind;
using Spelling = OptionWord::Spelling;

inline constexpr SettingPlace kRoot{SettingKey::kRoot}, kFilter{SettingKey::kFilter}, kPdf{SettingKey::kPdf},
    kFilterPdf{SettingKey::kFilterPdf}, kBothKeys{SettingKey::kFilterPdf, SettingKey::kPdf};
inline constexpr SettingUse kImport = SettingUse::kImport, kExport = SettingUse::kExport, kBoth = SettingUse::kBoth;
inline constexpr double kMost = INT32_MAX;
inline constexpr OptionWord kNoWord;

// The words of an option string go out in this order.
// clang-format off
inline constexpr Setting kRows[] = {
    {"AsImage", kChoice, kFilterPdf, 0, 0, 1, kImport, FORM_AS_IMAGE, 0, {"/mode", Spelling::kNumber, 0},
     "1: a page comes as one raster image", 1},
    {"DPI", kInteger, kFilterPdf, 200, 1, 9600, kImport, FORM_DPI, FORM_AS_IMAGE, {"/dpi", Spelling::kNumber, 300},
     "resolution of such a page"},
    {"ColorDepth", kChoice, kFilterPdf, 3, 2, 4, kImport, FORM_COLOR_DEPTH, FORM_AS_IMAGE, {"/col", Spelling::kNumber, 3},
     "of such a page: 2 black and white, 3 256 colours, 4 true colour"},
    {"ColorMode", kInteger, kFilterPdf, 1, 0, 99, kImport, 0, 0, kNoWord,
     "stored by hosts, without effect"},
    {"Dither", kInteger, kFilterPdf, 0, 0, 99, kImport, FORM_DITHER, FORM_AS_IMAGE, kNoWord,
     "dithering method of such a page"},
    {"ExtractText", kSwitch, kFilterPdf, 0, 0, 1, kImport, FORM_EXTRACT_TEXT, FORM_AS_IMAGE,
     {"/text", Spelling::kNumber, 0}, "1: such a page brings its text along"},
    {"ConvertPoly", kSwitch, kFilterPdf, 1, 0, 1, kImport, FORM_CONVERT_POLY, 0, {"/Convert", Spelling::kWriteOnly},
     "1: circles, arcs and ellipses are recognised"},
    {"FitTolerance", kReal, kFilterPdf, 0.002, 0, 1, kImport, FORM_FIT_TOLERANCE, FORM_CONVERT_POLY,
     {"/Tolerance", Spelling::kWriteOnly}, "of that recognition"},
    {"Clipping", kSwitch, kPdf, 1, 0, 1, kImport, FORM_CLIPPING, 0, kNoWord, "1: points off the page are dropped"},
    {"EPSGCode", kInteger, kPdf, -2, -kMost, kMost, kImport, FORM_EPSG_CODE, 0, kNoWord,
     "of the coordinate system of georeferenced pages; -2: none is told"},
    {"DefaultResolution", kInteger, kFilter, 300, 1, 9600, kImport, FORM_DEFAULT_RESOLUTION, 0, kNoWord,
     "dots per inch of images that tell none"},
    // Its number goes on to the host, so that it may be any.
    {"ImageFrame", kSwitch, kPdf, 1, 0, kMost, kImport, FORM_IMAGE_FRAME, 0, kNoWord, "clip mode of placed images"},
    {"CombineStripes", kSwitch, kPdf, 0, 0, 1, kImport, FORM_COMBINE_STRIPES, 0, kNoWord,
     "1: stripes of one image are joined"},
    {"JSupport", kSwitch, kPdf, 1, 0, 1, kImport, FORM_JBIG2, 0, kNoWord, "1: JBIG2 images are read"},
    {"UseEmbeddedFonts", kSwitch, kPdf, 0, 0, 1, kImport, FORM_EMBEDDED_FONTS, 0, kNoWord,
     "1: embedded fonts are kept where the system has the family, too"},
    {"UseUnicodeMap", kSwitch, kPdf, 1, 0, 1, kImport, FORM_UNICODE_MAP, 0, kNoWord,
     "1: of kept fonts the way to Unicode is kept, too"},
    {"DefaultTextW2H", kReal, kPdf, 1, 0.001, 1000, kImport, FORM_TEXT_WIDTH, 0, kNoWord,
     "width of letters where the page tells none"},
    {"CodePage", kInteger, kPdf, 0, 0, 65535, kImport, FORM_CODE_PAGE, 0, kNoWord,
     "of text whose font implies none; 0: the system's"},
    {"ExtendedReading", kSwitch, kPdf, 0, 0, 1, kImport, FORM_EXTENDED, 0, {"/ext", Spelling::kWhenOn},
     "1: files are read as other readers read them, damaged and encrypted ones included"},
    {"ReadAnnotations", kSwitch, kPdf, 1, 0, 1, kImport, 0, 0, kNoWord, "1: extended reading draws annotations"},
    {"Log", kSwitch, kFilterPdf, 0, 0, 1, kImport, FORM_LOG, 0, kNoWord, "1: the outside renderer writes its messages down"},
    {"WriteToTxt", kSwitch, kPdf, 0, 0, 1, kImport, FORM_WRITE_TO_TXT, 0, kNoWord,
     "1: page content is written to text files for diagnosis"},

    {"ColorCompression", kChoice, kBothKeys, 0, 0, 2, kExport, FORM_COLOR_COMPRESSION, 0, {"/col", Spelling::kColorLetter},
     "of colour images: 0 LZW, 1 JPEG, 2 none", 0},
    {"BWCompression", kChoice, kBothKeys, 0, 0, 1, kExport, FORM_BW_COMPRESSION, 0, {"/bw", Spelling::kFaxGroup},
     "of bilevel images: 0 CCITT group 4, 1 none", 0},
    {"Quality", kInteger, kBothKeys, 75, 1, 100, kExport, FORM_QUALITY, 0, {"/q"}, "of JPEG"},
    {"PDFA", kSwitch, kBothKeys, 0, 0, 1, kExport, FORM_PDFA, 0, {"/pdfa"}, "1: PDF/A"},
    {"AtOrigin", kSwitch, kBothKeys, 0, 0, 1, kExport, FORM_AT_ORIGIN, 0, {"/origin"},
     "1: the drawing is moved to the origin"},
    {"PaperFrame", kReal, kBothKeys, 2, 0, 10000, kExport, FORM_PAPER_FRAME, 0, {"/frame", Spelling::kSixDecimals},
     "width of the frame around the drawing, mm"},
    {"GeoTiff", kSwitch, kPdf, 0, 0, 1, kExport, FORM_GEOTIFF, 0, kNoWord, "1: coordinate systems are written"},
    {"JoinStyle", kChoice, kPdf, 1, 0, 2, kExport, FORM_JOIN_STYLE, 0, kNoWord, "of lines: 0 mitre, 1 round, 2 bevel"},
    {"Miter", kReal, kPdf, 10, 1, 1000, kExport, FORM_MITER, 0, kNoWord, "limit of mitred joins"},
    {"LineCap", kChoice, kPdf, 0, 0, 2, kExport, FORM_LINE_CAP, 0, kNoWord, "ends of lines: 0 butt, 1 round, 2 square"},
    {"EmbedFonts", kSwitch, kPdf, 0, 0, 1, kExport, FORM_EMBED_FONTS, 0, kNoWord, "1: fonts are embedded"},
    {"Author", kText, kPdf, 0, 0, 255, kExport, FORM_AUTHOR, 0, kNoWord, "of the document; none: the user"},
    {"Subject", kText, kPdf, 0, 0, 1023, kExport, FORM_SUBJECT, 0, kNoWord, "of the document"},
    {"Keywords", kText, kPdf, 0, 0, 1023, kExport, FORM_KEYWORDS, 0, kNoWord, "of the document"},
    {"Copyright", kText, kPdf, 0, 0, 255, kExport, FORM_COPYRIGHT, 0, kNoWord, "of the document, in PDF/A"},
    {"WriteRetries", kInteger, kFilterPdf, 10, 1, 1000, kExport, FORM_WRITE_RETRIES, 0, kNoWord,
     "attempts to open a file that another program holds"},

    {"DisableReadBuffer", kSwitch, kRoot, 0, 0, 1, kBoth, 0, 0, kNoWord, "1: files are read without a buffer"},
};
// clang-format on

}  // namespace settings_table

inline constexpr const auto &kSettings = settings_table::kRows;

// The row of a name. One that is not in the table does not compile.
consteval const Setting &SettingNamed(std::string_view name) {
  for (const Setting &row : kSettings)
    if (row.name == name) return row;
  throw "there is no such setting";
}

template <class Number>
consteval Number DefaultOf(std::string_view name) {
  return static_cast<Number>(SettingNamed(name).fallback);
}

// A setting by its name, for those who read at that key a value of that type. Any other does not compile.
template <SettingKey kKey, SettingType kType>
struct SettingName {
  consteval SettingName(const char *name) : row(SettingNamed(name)) {
    if (!row.place.Has(kKey)) throw "the setting is kept at another key";
    if (row.type() != kType) throw "the setting is of another type";
  }

  const Setting &row;
};

}  // namespace kapdf
