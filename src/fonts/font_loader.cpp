#include "fonts/font_loader.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "base/scan.h"
#include "fonts/cmap.h"
#include "fonts/cmap_names.h"
#include "fonts/glyph_names.h"
#include "pdfmodel/stream.h"
#include "platform/text.h"

namespace kapdf {
namespace {

constexpr std::array<std::string_view, 6> kKinds = {"Type0",    "Type1",        "Type3",
                                                    "TrueType", "CIDFontType0", "CIDFontType2"};
constexpr uint32_t kCodes = 65536;
constexpr size_t kFaceBytes = 255;

}  // namespace

std::optional<double> FontLoader::Number(const CPDFObject *value) {
  std::unique_ptr<CPDFObject> fetched;
  const auto *number = dynamic_cast<const CPDFNumeric *>(Follow(objects_, value, fetched));
  if (!number || !std::isfinite(number->realValue)) return std::nullopt;
  return number->realValue;
}

bool FontLoader::ReadStream(const CPDFIndirectObject &reference, ByteBuffer &bytes) {
  uint8_t firstChar;
  if (streamBytes_ <= 0 || !OpenObject(objects_, reference.objectNumber, firstChar)) return false;
  CPDFStream stream(objects_);
  if (!stream.Parse(firstChar) || !stream.ReadAll(bytes)) return false;
  streamBytes_ -= static_cast<int64_t>(bytes.size());
  return true;
}

bool FontLoader::Load(int32_t objectNumber) {
  uint8_t firstChar;
  if (!OpenObject(objects_, objectNumber, firstChar)) return false;
  objects_.source().StartItems();
  own_ = ParseAny(objects_.source(), firstChar, 0);
  font_.objectNumber = objectNumber;
  dictionary_ = dynamic_cast<const CPDFDictionary *>(own_.get());
  if (dictionary_ && !IsFont()) return false;
  if (dictionary_) {
    face_ = "Arial";
    ReadParts();
  }
  Define();
  return true;
}

// A dictionary of fonts has neither key.
bool FontLoader::IsFont() const {
  if (dictionary_->GetAs<CPDFNameObject>("Type")) return true;
  const auto *kind = dictionary_->GetAs<CPDFNameObject>("Subtype");
  return kind && std::ranges::find(kKinds, kind->name) != kKinds.end();
}

void FontLoader::ReadParts() {
  if (const auto *name = dictionary_->GetAs<CPDFNameObject>("BaseFont")) {
    baseFont_ = name->name;
    face_ = baseFont_;
    FindFamily();
  }
  if (const auto *name = dictionary_->GetAs<CPDFNameObject>("Name")) font_.name = name->name;
  ReadEncoding();
  ReadToUnicode();
  ReadEncodingFile();
  if (font_.codeSpaces_.empty() || (IsSimple() && TakesPairsOnly())) font_.codeSpaces_.SetBytes();
  const auto *kind = dictionary_->GetAs<CPDFNameObject>("Subtype");
  const bool glyphProcedures = kind && kind->name == "Type3";
  if (!GoToDescendant()) return;
  ReadSimpleWidths(glyphProcedures);
  ReadCharacterCollection();
  ReadCidWidths();
  ReadCidToGid();
  ReadDescriptor();
  if (!embedded_ && !baseFont_.empty()) FindByPostScriptName();
  // The mapping data behind the program took its place.
  if (font_.unicode_) font_.cidToGid_.Clear();
}

void FontLoader::ReadEncoding() {
  std::unique_ptr<CPDFObject> fetched;
  const CPDFObject *encoding = Follow(objects_, dictionary_->Get("Encoding"), fetched);
  if (const auto *name = dynamic_cast<const CPDFNameObject *>(encoding)) {
    row_ = FindCMapName(name->name);
    if (row_ < 0) return;
    font_.codePage_ = CMapNameAt(row_).codePage;
    font_.composite_ = CMapNameAt(row_).twoByte;
  }
  const auto *dictionary = dynamic_cast<const CPDFDictionary *>(encoding);
  if (!dictionary) return;
  std::unique_ptr<CPDFObject> fetchedArray;
  const auto *differences =
      dynamic_cast<const CPDFArray *>(Follow(objects_, dictionary->Get("Differences"), fetchedArray));
  if (differences) ReadDifferences(*differences);
}

void FontLoader::ReadDifferences(const CPDFArray &differences) {
  font_.differences_ = differences.Count();
  uint32_t code = 0;
  for (uint32_t i = 0; i < differences.Count(); ++i) {
    const CPDFObject *item = differences.GetAt(i);
    if (const auto *number = dynamic_cast<const CPDFNumeric *>(item)) {
      code = static_cast<uint8_t>(number->intValue);
      continue;
    }
    const auto *name = dynamic_cast<const CPDFNameObject *>(item);
    if (!name) continue;
    if (code >= kCodes) {  // a name behind the last code counts as a number
      code = static_cast<uint8_t>(IntegerFrom(name->name.c_str()));
      continue;
    }
    const GlyphCode glyph = CodeOfGlyphName(name->name);
    if (!glyph.prefix.empty()) prefix_ = glyph.prefix;
    if (glyph.code != 0) {
      if (font_.characterMap_.size() <= code) font_.characterMap_.resize(std::max(code + 1, 256u));
      font_.characterMap_[code] = glyph.code;
    }
    ++code;
  }
}

bool FontLoader::IsSimple() const {
  return !dictionary_->Get("DescendantFonts") && (row_ < 0 || !CMapNameAt(row_).twoByte);
}

// Many programs write a code space of two bytes into the maps of fonts whose codes are single bytes.
bool FontLoader::TakesPairsOnly() const {
  return std::ranges::all_of(font_.codeSpaces(), [](const CodeSpace &space) { return space.bytes == 2; });
}

// Simple fonts with such a map are read through the code spaces, too.
void FontLoader::ReadToUnicode() {
  const auto *reference = dictionary_->GetAs<CPDFIndirectObject>("ToUnicode");
  ByteBuffer text;
  if (!reference || !ReadStream(*reference, text)) return;
  toUnicode_ = true;
  font_.composite_ = true;
  CMap map;
  map.Parse(std::string(reinterpret_cast<const char *>(text.data()), text.size()), false);
  font_.codeSpaces_ = std::move(map.codeSpaces());
  if (!map.ranges().empty()) font_.unicode_ = MakeCodeTable(map.ranges());
}

void FontLoader::ReadEncodingFile() {
  if (font_.unicode_ || row_ < 0) return;
  font_.composite_ = CMapNameAt(row_).twoByte;
  const EncodingFolder::Encoding *encoding = encodings_.Find(CMapNameAt(row_).name);
  if (!encoding) return;
  font_.codeSpaces_.Append(encoding->codeSpaces);
  cids_ = encoding->table;
}

// What follows is read from the font that a composite one is made of.
bool FontLoader::GoToDescendant() {
  if (!dictionary_->Get("DescendantFonts")) return true;
  const auto *descendants = Value<CPDFArray>("DescendantFonts", ownDescendants_);
  if (!descendants) return true;
  dictionary_ = dynamic_cast<const CPDFDictionary *>(Follow(objects_, descendants->GetAt(0), ownDescendant_));
  return dictionary_ != nullptr;
}

void FontLoader::ReadCidToGid() {
  const auto *reference = dictionary_->GetAs<CPDFIndirectObject>("CIDToGIDMap");
  if (reference && !ReadStream(*reference, font_.cidToGid_)) font_.cidToGid_.Clear();
  if (font_.cidToGid_.size() > size_t{2} * kCodes) font_.cidToGid_.Resize(size_t{2} * kCodes);
  font_.cidToGid_.ShrinkToFit();
}

// The map of the collection starts from CIDs. An encoding that is not the identity has a way of its own from codes to
// them: characters take it, and the widths of composite fonts, which are told by CID. Without it such text would be
// other characters than its reader sees.
void FontLoader::ReadCharacterCollection() {
  std::unique_ptr<CPDFObject> fetched, fetchedOrdering;
  const auto *info = row_ >= 0 ? Value<CPDFDictionary>("CIDSystemInfo", fetched) : nullptr;
  if (!info) return;
  const auto *ordering = dynamic_cast<const CPDFString *>(Follow(objects_, info->Get("Ordering"), fetchedOrdering));
  if (!ordering) return;
  const std::string_view file = UnicodeMapFor(CMapNameAt(row_), ordering->bytes);
  const EncodingFolder::Encoding *map = file.empty() ? nullptr : encodings_.Find(file);
  if (!map) return;
  // Only composite fonts take over how CIDs stand in bytes. Bytes of a code page fall into characters as its encoding
  // tells.
  if (font_.composite_) font_.codeSpaces_ = map->codeSpaces;
  if (!map->table) return;
  font_.unicode_ = collection_ = map->table;
  const EncodingFolder::Encoding *encoding =
      CMapNameAt(row_).unicodeMap.empty() ? nullptr : encodings_.Find(CMapNameAt(row_).name);
  if (!encoding || !encoding->table) return;
  auto composed = MakeCodeTable();
  for (uint32_t code = 0; code < kCodes; ++code) {
    const uint16_t cid = (*encoding->table)[code];
    if (cid != kNoTarget) (*composed)[code] = (*map->table)[cid];
  }
  font_.unicode_ = std::move(composed);
  if (font_.composite_) cidOfCode_ = encoding->table;
}

void FontLoader::Define() {
  face_.resize(std::min(face_.size(), kFaceBytes));
  const size_t comma = face_.find(',');
  if (comma != std::string::npos) {
    const std::string style = face_.substr(comma + 1);
    if (style == "Bold" || style == "BoldItalic") font_.style_ |= CPDFFontObject::kBold;
    if (style == "Italic" || style == "BoldItalic") font_.style_ |= CPDFFontObject::kItalic;
    face_.resize(comma);
  }
  font_.faceName_ = platform::ToWide(face_, platform::kSystemCodePage);
  font_.familyName_.resize(std::min(font_.familyName_.size(), kFaceBytes));
  font_.Define(settings_.codePage);
}

}  // namespace kapdf
