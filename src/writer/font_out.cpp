#include "writer/font_out.h"

#include <charconv>

#include "io/codec_flate.h"
#include "writer/cff_program.h"
#include "writer/tables.h"
#include "writer/write_options.h"

namespace kapdf {
namespace {

constexpr int32_t kEm = 1000;
constexpr int32_t kUsualCapHeight = 716;
constexpr size_t kFaceNameBytes = 246;
constexpr uint32_t kNoCharacter = 65535;  // ends every walk over characters

}  // namespace

FontOut::FontOut(std::string name, std::u16string_view faceName, uint32_t style, uint32_t codePage)
    : name_(std::move(name)), faceName_(faceName), style_(style), codePage_(codePage) {}

void FontOut::MarkGlyphs(std::u16string_view text) {
  if (!opened_) Open();
  for (const char16_t code : text) glyphUse_.set(code);
}

void FontOut::Open() {
  opened_ = true;
  font_ = platform::SystemFont::Open({faceName_, kEm, (style_ & kBold) != 0, (style_ & kItalic) != 0});
  int32_t capHeight = kUsualCapHeight;
  if (font_) {
    metrics_ = font_->Metrics();
    faceName_ = font_->FaceName();
    platform::GlyphBox box;
    if (font_->Box(u'A', box) && box.height > 0) capHeight = box.height;
    if (font_->Box(u'|', box)) stemV_ = box.width;
    glyphs_ = GlyphsOfCmap(font_->Table("cmap").span());
  } else {
    metrics_.height = kEm;
  }
  sizeFactor_ = static_cast<double>(metrics_.height - metrics_.internalLeading) / capHeight;
  baseFontName_ = NarrowText(faceName_, kFaceNameBytes);
  while (glyphs_ && firstChar_ < kNoCharacter && (*glyphs_)[firstChar_] == 0) ++firstChar_;
}

std::vector<int32_t> FontOut::Widths() const {
  std::vector<int32_t> widths;
  for (uint32_t code = firstChar_; code < kNoCharacter; ++code) {
    if (!glyphUse_[code]) continue;
    uint32_t last = code;
    while (last + 1 < kNoCharacter && glyphUse_[last + 1]) ++last;
    if (font_) {
      const auto run = font_->Advances(static_cast<char16_t>(code), static_cast<char16_t>(last));
      widths.insert(widths.end(), run.begin(), run.end());
    } else {
      widths.resize(widths.size() + last - code + 1, kEm / 2);
    }
    code = last;
  }
  return widths;
}

bool FontOut::IsTemporary() const {
  constexpr std::string_view kPrefix = "ZV";
  if (!baseFontName_.starts_with(kPrefix)) return false;
  uint32_t number = 0;
  const char *const end = baseFontName_.data() + baseFontName_.size();
  const auto read = std::from_chars(baseFontName_.data() + kPrefix.size(), end, number);
  return read.ec == std::errc::result_out_of_range || number > 0;
}

FontOut::Program FontOut::MakeProgram() {
  const std::string prefix = NextSubsetPrefix();
  if (!font_ || !glyphs_) return {};
  const ByteBuffer file = font_->Table({});
  if (const auto compact = CffProgram(file.span()); !compact.empty())
    return {Deflated(compact), file.size(), Program::Outlines::kCompact};
  const FontSubset subset = MakeTrueTypeSubset(file.span(), *glyphs_, glyphUse_, prefix);
  if (subset.kind == FontSubset::Kind::kNotEmbeddable) return {};
  Program program{Deflated(subset.bytes.span()), file.size(), Program::Outlines::kTrueType};
  if (subset.kind == FontSubset::Kind::kSubset && !program.deflated.empty()) baseFontName_.insert(0, prefix);
  return program;
}

// A code page below zero is none.
void FontTable::DefineFont(const FontDefPayload &definition, uint32_t defaultCodePage) {
  const auto codePage = static_cast<int16_t>(definition.charsetAndCodePage >> 16);
  FontOut &font = fonts_.emplace_back("TT" + std::to_string(fonts_.size()), NameText(definition.faceName),
                                      definition.charsetAndCodePage & 0xFFFF,
                                      codePage < 0 ? defaultCodePage : static_cast<uint32_t>(codePage));
  byName_.Add(NameText(definition.styleName), &font);
  last_ = nullptr;
}

FontOut *FontTable::FindFont(std::u16string_view styleName) {
  if (last_ && styleName == lastName_) return last_;
  FontOut *const *found = byName_.Find(styleName);
  lastName_ = styleName;
  return last_ = found ? *found : nullptr;
}

}  // namespace kapdf
