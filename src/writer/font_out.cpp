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

const FontFace &FaceTable::Face(const std::u16string &name, uint32_t style) {
  const bool bold = (style & kBold) != 0, italic = (style & kItalic) != 0;
  const std::pair key(name, style & (kBold | kItalic));
  if (const auto found = faces_.find(key); found != faces_.end()) return found->second;
  FontFace face;
  face.name = name;
  face.font = platform::SystemFont::Open({name, kEm, bold, italic});
  int32_t capHeight = kUsualCapHeight;
  if (face.font) {
    face.metrics = face.font->Metrics();
    face.name = face.font->FaceName();
    platform::GlyphBox box;
    if (face.font->Box(u'A', box) && box.height > 0) capHeight = box.height;
    if (face.font->Box(u'|', box)) face.stemV = box.width;
    face.glyphs = GlyphsOfCmap(face.font->Table("cmap").span());
  } else {
    face.metrics.height = kEm;
  }
  face.sizeFactor = static_cast<double>(face.metrics.height - face.metrics.internalLeading) / capHeight;
  while (face.glyphs && face.firstChar < kNoCharacter && (*face.glyphs)[face.firstChar] == 0) ++face.firstChar;
  return faces_.emplace(key, std::move(face)).first->second;
}

FontOut::FontOut(FaceTable &faces, std::string name, std::u16string_view faceName, uint32_t style)
    : faces_(&faces), name_(std::move(name)), faceName_(faceName), style_(style) {}

void FontOut::MarkGlyphs(std::u16string_view text) {
  if (!used()) Open();
  for (const char16_t code : text) glyphUse_->set(code);
}

void FontOut::Open() {
  glyphUse_ = std::make_unique<CodeSet>();
  const FontFace &face = faces_->Face(faceName_, style_);
  baseFontName_ = NarrowText(face.name, kFaceNameBytes);
  face_ = &face;
}

std::vector<int32_t> FontOut::Widths() const {
  std::vector<int32_t> widths;
  for (uint32_t code = firstChar(); code < kNoCharacter; ++code) {
    if (!glyphUse()[code]) continue;
    uint32_t last = code;
    while (last + 1 < kNoCharacter && glyphUse()[last + 1]) ++last;
    if (face_->font) {
      const auto run = face_->font->Advances(static_cast<char16_t>(code), static_cast<char16_t>(last));
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
  if (!face_->font || !face_->glyphs) return {};
  const ByteBuffer file = face_->font->Table({});
  if (const auto compact = CffProgram(file.span()); !compact.empty())
    return {Deflated(compact), file.size(), Program::Outlines::kCompact};
  const FontSubset subset = MakeTrueTypeSubset(file.span(), *face_->glyphs, glyphUse(), prefix);
  if (subset.kind == FontSubset::Kind::kNotEmbeddable) return {};
  Program program{Deflated(subset.bytes.span()), file.size(), Program::Outlines::kTrueType};
  if (subset.kind == FontSubset::Kind::kSubset && !program.deflated.empty()) baseFontName_.insert(0, prefix);
  return program;
}

// The code page in the upper half is for text in bytes, and all text is written in glyphs.
void FontTable::DefineFont(const FontDefPayload &definition) {
  FontOut &font = fonts_.emplace_back(faces_, "TT" + std::to_string(fonts_.size()), NameText(definition.faceName),
                                      definition.charsetAndCodePage & 0xFFFF);
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
