// The program that a font brings along: what is taken from it, and what the host gets of it.
#include <cmath>
#include <cstring>

#include "base/bytes.h"
#include "base/scan.h"
#include "fonts/cmap_names.h"
#include "fonts/font_loader.h"
#include "fonts/font_sfnt.h"

namespace kapdf {
namespace {

constexpr uint32_t kCodes = 65536;

void SetGlyph(uint8_t *mapping, uint16_t unit, uint16_t glyph) { StoreAs(mapping + size_t{2} * unit, glyph); }

}  // namespace

void FontLoader::ReadDescriptor() {
  const auto *reference = dictionary_->GetAs<CPDFIndirectObject>("FontDescriptor");
  const auto descriptor = reference ? FetchDictionary(objects_, *reference) : nullptr;
  if (!descriptor) return;
  if (const auto height = Number(descriptor->Get("CapHeight"))) font_.look_.height = TruncateToInteger(*height);
  for (const char *key : {"FontFile2", "FontFile3", "FontFile"}) {
    const auto *file = descriptor->GetAs<CPDFIndirectObject>(key);
    if (!file) continue;
    ByteBuffer bytes;
    if (ReadStream(*file, bytes) && !bytes.empty()) UseProgram(bytes.span());
    return;
  }
}

void FontLoader::UseProgram(std::span<const uint8_t> bytes) {
  FontProgram program;
  if (!program.Open(bytes)) return KeepProgram(bytes, bytes.size());
  const bool keeps = settings_.useEmbeddedFonts || !matched_;
  // Only a program of odd size has mapping data; it is made even for them.
  const bool maps = bytes.size() % 2 != 0 && !program.firstMapIsUnicode();
  bool drops = false;
  if (maps && font_.unicode_ && font_.cidToGid_.empty() && !settings_.useUnicodeMap) {
    drops = true;
    font_.unicode_.reset();
    toUnicode_ = false;
  }
  if (keeps) {
    KeepProgram(bytes, bytes.size() + (maps ? 1 : 0));
    uint8_t *mapping = font_.definition_.data() + CPDFFontObject::kDefinitionBytes + font_.programSize_;
    if (maps && !drops && FillMapping(program, mapping)) font_.programSize_ |= CPDFFontObject::kMappingMark;
  }
  ReadCmap(bytes);
  if (!keeps) return;
  embedded_ = true;
  font_.familyName_ = program.FamilyName();
  const double ratio = program.TopByAscender();
  font_.look_.heightRatio = std::isfinite(ratio) && ratio > 0.0 ? ratio : FontLook().heightRatio;
  font_.look_.widthRatio = 1.0;
}

// There is always room for mapping data behind the program. It is cleared when the program was made even for them.
void FontLoader::KeepProgram(std::span<const uint8_t> bytes, size_t size) {
  font_.definition_.Resize(CPDFFontObject::kDefinitionBytes + size + CPDFFontObject::kMappingBytes);
  uint8_t *place = font_.definition_.data() + CPDFFontObject::kDefinitionBytes;
  std::memcpy(place, bytes.data(), bytes.size());
  if (size > bytes.size()) std::memset(place + bytes.size(), 0, size - bytes.size() + CPDFFontObject::kMappingBytes);
  font_.programSize_ = static_cast<uint32_t>(size);
}

bool FontLoader::FillMapping(FontProgram &program, uint8_t *mapping) {
  if (!font_.unicode_) {
    if (!cids_ || font_.codePage_ <= 0) return false;
    std::memcpy(mapping, cids_->data(), sizeof *cids_);
    return true;
  }
  // Glyphs go by CID. Where the codes of text are no CIDs, the collection knows the characters of these.
  const CodeTable &characters = collection_ ? *collection_ : *font_.unicode_;
  const ByteBuffer &glyphs = font_.cidToGid_;
  for (uint32_t code = 0; code < kCodes; ++code) {
    const uint16_t unit = characters[code];
    if (unit == kNoTarget) continue;
    if (glyphs.empty())
      SetGlyph(mapping, unit, NamedGlyph(program, code));
    else if (code < glyphs.size() / 2)
      SetGlyph(mapping, unit, static_cast<uint16_t>(LoadBigEndian(glyphs.data() + size_t{2} * code, 2)));
  }
  return true;
}

// The glyph whose name has the number that Differences tell for the code; else the code itself.
uint16_t FontLoader::NamedGlyph(FontProgram &program, uint32_t code) {
  const auto own = static_cast<uint16_t>(code);
  if (prefix_.empty() || code >= font_.characterMap_.size() || font_.characterMap_[code] == 0) return own;
  const int glyph = program.GlyphOf(std::string(prefix_) + std::to_string(font_.characterMap_[code]));
  return glyph < 0 ? own : static_cast<uint16_t>(glyph);
}

// Codes of an identity encoding are glyphs, or become such by the CIDToGIDMap: what the program's own table takes to
// them is their character. Of several characters the lowest counts (a blank, not the no-break space).
void FontLoader::ReadCmap(std::span<const uint8_t> bytes) {
  if (toUnicode_ || row_ <= 0 || !CMapNameAt(row_).name.starts_with("Identity")) return;
  const auto glyphs = GlyphsByUnicode(SfntTable(bytes, "cmap"));
  if (!glyphs) return;
  const auto characters = MakeCodeTable();
  for (uint32_t unit = kCodes - 1; unit-- > 0;) {
    if ((*glyphs)[unit] != 0) (*characters)[(*glyphs)[unit]] = static_cast<uint16_t>(unit);
  }
  auto table = font_.unicode_ ? std::make_shared<CodeTable>(*font_.unicode_) : MakeCodeTable();
  const ByteBuffer &map = font_.cidToGid_;
  for (uint32_t code = 0; code < kCodes; ++code) {
    const bool mapped = code < map.size() / 2;
    const auto glyph = mapped ? LoadBigEndian(map.data() + size_t{2} * code, 2) : code;
    if ((*characters)[glyph] != kNoTarget) (*table)[code] = (*characters)[glyph];
  }
  font_.unicode_ = std::move(table);
  toUnicode_ = true;
}

}  // namespace kapdf
