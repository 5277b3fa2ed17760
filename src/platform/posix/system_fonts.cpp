#include "platform/system_fonts.h"

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_ADVANCES_H
#include FT_OUTLINE_H
#include FT_TRUETYPE_TABLES_H

#include <algorithm>
#include <cstring>
#include <functional>
#include <map>
#include <mutex>

#include "base/bytes.h"
#include "base/limits.h"
#include "platform/font_file.h"
#include "platform/posix/font_list.h"
#include "platform/text.h"

namespace kapdf::platform {
namespace {

// Numbers of Windows' TEXTMETRIC.
constexpr uint8_t kVariablePitch = 1, kVector = 2, kTrueType = 4;
constexpr uint8_t kRoman = 0x10, kSwiss = 0x20, kModern = 0x30, kScript = 0x40, kDecorative = 0x50;
constexpr uint8_t kSymbolCharSet = 2;
constexpr FT_ULong kPrivateUse = 0xF000;  // where fonts of symbols have their 8-bit codes

class FreeTypeFont final : public SystemFont {
 public:
  ~FreeTypeFont() override {
    if (face_) FT_Done_Face(face_);
    if (library_) FT_Done_FreeType(library_);
  }

  bool OpenFile(const FontFace &face, int emPixels) {
    if (FT_Init_FreeType(&library_) != 0 || FT_New_Face(library_, face.file.c_str(), face.index, &face_) != 0)
      return false;
    if (!FT_IS_SCALABLE(face_) || face_->units_per_EM == 0) return false;
    emPixels_ = emPixels;
    faceName_ = face.family;
    instance_ = face.index >> 16 != 0;
    symbols_ = FT_Select_Charmap(face_, FT_ENCODING_MS_SYMBOL) == 0;
    // Text is written by the first two of these tables, so it is measured by them.
    if (!SelectTable(3, 1) && !SelectTable(1, 0) && !symbols_) FT_Select_Charmap(face_, FT_ENCODING_UNICODE);
    return true;
  }

  std::u16string FaceName() override { return faceName_; }
  FontMetrics Metrics() override;
  bool Box(char16_t character, GlyphBox &box) override;
  std::vector<int32_t> Advances(char16_t first, char16_t last) override;
  ByteBuffer Table(std::string_view tag) override;

 private:
  static int32_t Down(int64_t value, int64_t by) { return static_cast<int32_t>(value / by - (value % by < 0 ? 1 : 0)); }
  static int32_t Rounded(int64_t value, int64_t by) { return Down(2 * value + by, 2 * by); }
  // Font units to whole pixels: rounded, to the left, to the right.
  int32_t Scaled(int64_t units) const { return Rounded(units * emPixels_, unitsPerEm()); }
  int32_t Left(int64_t units) const { return Down(units * emPixels_, unitsPerEm()); }
  int32_t Right(int64_t units) const { return -Left(-units); }
  int64_t unitsPerEm() const { return face_->units_per_EM; }

  bool SelectTable(FT_UShort platform, FT_UShort encoding) {
    for (FT_Int i = 0; i < face_->num_charmaps; ++i) {
      FT_CharMap map = face_->charmaps[i];
      if (map->platform_id == platform && map->encoding_id == encoding && FT_Set_Charmap(face_, map) == 0) return true;
    }
    return false;
  }
  FT_UInt GlyphOf(char16_t character) const {
    const FT_UInt glyph = FT_Get_Char_Index(face_, character);
    const bool bySymbols = face_->charmap && face_->charmap->encoding == FT_ENCODING_MS_SYMBOL;
    return glyph == 0 && bySymbols && character < 256 ? FT_Get_Char_Index(face_, kPrivateUse + character) : glyph;
  }
  uint8_t PitchAndFamily(const TT_OS2 *os2) const;
  ByteBuffer LoadTable(FT_ULong tag) const;
  ByteBuffer SingleFontFile() const;

  FT_Library library_ = nullptr;
  FT_Face face_ = nullptr;
  std::u16string faceName_;
  int64_t emPixels_ = 0;
  bool symbols_ = false;
  bool instance_ = false;  // of a variable font, other than the one whose outlines stand in the file
};

// As GDI makes them of the tables `OS/2`, `hhea`, `post` and `head`.
FontMetrics FreeTypeFont::Metrics() {
  const auto *os2 = static_cast<const TT_OS2 *>(FT_Get_Sfnt_Table(face_, FT_SFNT_OS2));
  const auto *post = static_cast<const TT_Postscript *>(FT_Get_Sfnt_Table(face_, FT_SFNT_POST));
  const auto *hhea = static_cast<const TT_HoriHeader *>(FT_Get_Sfnt_Table(face_, FT_SFNT_HHEA));
  int32_t ascent = face_->ascender;
  int32_t descent = -face_->descender;
  if (os2 && os2->usWinAscent + os2->usWinDescent != 0) {
    ascent = os2->usWinAscent;
    descent = os2->usWinDescent;
  }
  FontMetrics metrics;
  metrics.ascent = Scaled(ascent);
  metrics.descent = Scaled(descent);
  metrics.height = metrics.ascent + metrics.descent;
  metrics.internalLeading = metrics.height - static_cast<int32_t>(emPixels_);
  if (hhea) {
    const int32_t gap = hhea->Line_Gap - (ascent + descent - (hhea->Ascender - hhea->Descender));
    metrics.externalLeading = Scaled(std::max(gap, 0));
  }
  metrics.averageWidth = Scaled(os2 ? os2->xAvgCharWidth : face_->max_advance_width / 2);
  if (post) metrics.italicAngle = Rounded(int64_t{post->italicAngle} * 10, 0x10000);
  metrics.left = Scaled(face_->bbox.xMin);
  metrics.bottom = Scaled(face_->bbox.yMin);
  metrics.right = Scaled(face_->bbox.xMax);
  metrics.top = Scaled(face_->bbox.yMax);
  metrics.pitchAndFamily = PitchAndFamily(os2);
  metrics.charSet = symbols_ ? kSymbolCharSet : 0;
  return metrics;
}

uint8_t FreeTypeFont::PitchAndFamily(const TT_OS2 *os2) const {
  const bool fixed = FT_IS_FIXED_WIDTH(face_);
  const auto kind = static_cast<uint8_t>(kVector | kTrueType | (fixed ? 0 : kVariablePitch));
  const auto with = [&](uint8_t family) { return static_cast<uint8_t>(kind | family); };
  if (fixed) return with(kModern);
  if (!os2) return kind;
  switch (os2->panose[0]) {  // kind of family
    case 3:
      return with(kScript);
    case 4:
    case 5:
      return with(kDecorative);
    default:
      break;
  }
  const int serifs = os2->panose[1];
  if (serifs >= 11 && serifs <= 15) return with(kSwiss);
  return serifs >= 2 && serifs <= 10 ? with(kRoman) : kind;
}

bool FreeTypeFont::Box(char16_t character, GlyphBox &box) {
  if (FT_Load_Glyph(face_, GlyphOf(character), FT_LOAD_NO_SCALE | FT_LOAD_NO_BITMAP) != 0) return false;
  if (face_->glyph->format != FT_GLYPH_FORMAT_OUTLINE) return false;
  FT_BBox units;
  FT_Outline_Get_CBox(&face_->glyph->outline, &units);
  // Hinting puts upper and lower edges on whole pixels, and nothing else.
  box.left = Left(units.xMin);
  box.top = Scaled(units.yMax);
  box.width = Right(units.xMax) - box.left;
  box.height = box.top - Scaled(units.yMin);
  return true;
}

std::vector<int32_t> FreeTypeFont::Advances(char16_t first, char16_t last) {
  std::vector<int32_t> advances;
  for (uint32_t character = first; character <= last; ++character) {
    FT_Fixed units = 0;
    if (FT_Get_Advance(face_, GlyphOf(static_cast<char16_t>(character)), FT_LOAD_NO_SCALE, &units) != 0) units = 0;
    advances.push_back(Scaled(units));
  }
  return advances;
}

ByteBuffer FreeTypeFont::LoadTable(FT_ULong tag) const {
  ByteBuffer table;
  FT_ULong size = 0;
  if (FT_Load_Sfnt_Table(face_, tag, 0, nullptr, &size) != 0 || size == 0 || size > limits::kFontProgram) return table;
  table.Resize(size);
  if (FT_Load_Sfnt_Table(face_, tag, 0, table.data(), &size) != 0) table.Clear();
  return table;
}

// Of a collection: a file with the tables of the one font.
ByteBuffer FreeTypeFont::SingleFontFile() const {
  FT_ULong count = 0, tag = 0, length;
  std::vector<FontTableData> tables;
  if (FT_Sfnt_Table_Info(face_, 0, nullptr, &count) != 0 || count > kMostFontTables) return {};
  for (FT_UInt i = 0; i < count; ++i)
    if (FT_Sfnt_Table_Info(face_, i, &tag, &length) == 0)
      tables.push_back({static_cast<uint32_t>(tag), LoadTable(tag)});
  return MakeFontFile(tables);
}

ByteBuffer FreeTypeFont::Table(std::string_view tag) {
  if (tag.empty() && instance_) return {};
  if (tag.empty()) return face_->num_faces > 1 ? SingleFontFile() : LoadTable(0);
  FT_ULong number = 0;
  for (size_t i = 0; i < 4; ++i) number = number << 8 | static_cast<uint8_t>(i < tag.size() ? tag[i] : ' ');
  return LoadTable(number);
}

class ListedFamilies final : public FontFamilies {
 public:
  explicit ListedFamilies(std::shared_ptr<const FontList> fonts);

  const std::shared_ptr<const FontList> &fonts() const { return fonts_; }
  const std::vector<std::u16string> &TrueType() const override { return trueType_; }
  std::u16string OfPostScriptName(std::u16string_view name) const override {
    const auto found = byPostScriptName_.find(name);
    return found == byPostScriptName_.end() || name.empty() ? std::u16string() : found->second;
  }

 private:
  std::shared_ptr<const FontList> fonts_;
  std::vector<std::u16string> trueType_;
  std::map<std::u16string, std::u16string, std::less<>> byPostScriptName_;
};

ListedFamilies::ListedFamilies(std::shared_ptr<const FontList> fonts) : fonts_(std::move(fonts)) {
  const auto &faces = fonts_->faces;
  for (const FontFace &face : faces)
    if (face.trueType && (trueType_.empty() || trueType_.back() != face.family)) trueType_.push_back(face.family);
  std::ranges::stable_sort(trueType_, std::greater(), &std::u16string::size);
  for (auto first = faces.begin(); first != faces.end();) {
    auto best = first;
    const std::u16string &family = first->family;
    for (; first != faces.end() && first->family == family; ++first)
      if (StyleDistance(*first, false, false) < StyleDistance(*best, false, false)) best = first;
    byPostScriptName_.try_emplace(FromUtf8(best->postScriptName), best->family);
  }
}

}  // namespace

std::shared_ptr<const FontFamilies> FontFamilies::Now() {
  static std::mutex mutex;
  static std::shared_ptr<const ListedFamilies> latest;
  auto fonts = CurrentFonts();
  const std::lock_guard lock(mutex);
  if (!latest || latest->fonts() != fonts) latest = std::make_shared<ListedFamilies>(std::move(fonts));
  return latest;
}

std::unique_ptr<SystemFont> SystemFont::Open(const Request &request) {
  const auto fonts = CurrentFonts();
  const FontFace *face = FindFace(*fonts, request.family, request.bold, request.italic);
  auto font = std::make_unique<FreeTypeFont>();
  if (!face || !font->OpenFile(*face, request.emPixels)) return nullptr;
  return font;
}

}  // namespace kapdf::platform
