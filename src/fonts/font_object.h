// A font of a document: how the bytes of shown strings become characters and widths, and what the host is told of it.
//
// Get it from a FontCache (font_cache.h), which reads every font object once. A string is taken code by code:
//
//   const int length = CodeLength(font.codeSpaces(), first, second);  // code_spaces.h; 0 outside all code spaces
//   if (font.composite()) {
//     const uint32_t code = length == 0 ? 1 : length == 1 ? first : first << 8 | secondByte;
//     width = font.Width(code);
//     character = font.Character(code);
//   } else {
//     width = font.Width(first);
//     character = font.MappedCharacter(first);  // by Differences; 0 for none
//     if (character == 0) character = codePages.Of(codePage).Character(...);  // code_page_table.h
//   }
//
// None of these allocates or calls anything virtual. Without hasWidths() each character is half an em wide. A new font
// gives the values of a font of which nothing could be read.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "base/byte_buffer.h"
#include "fonts/code_spaces.h"
#include "fonts/code_table.h"
#include "fonts/resource_object.h"
#include "kapdf/kapdf.h"

namespace kapdf {

// From the font system when the font was matched with one of its families.
struct FontLook {
  int32_t ascent = 0, descent = 0, internalLeading = 0, capHeight = 0;  // of 1000 to the em
  int32_t height = 1024;                                                // the font's cap height when it tells one
  double heightRatio = 1.4;  // font size by height of the letters; finite and above 0
  double widthRatio = 1.0;   // average width of the letters by font size
};

class CPDFFontObject final : public CPDFResourceObject {
 public:
  static constexpr uint32_t kBold = 1;
  static constexpr uint32_t kItalic = 2;
  static constexpr uint32_t kMappingMark = KAPDF_FONT_MAPPED;  // in the size of a program: mapping data stand behind it
  static constexpr size_t kMappingBytes = KAPDF_FONT_MAPPING_BYTES;  // for each UTF-16 unit the glyph, 16 bits
  static constexpr size_t kDefinitionBytes = sizeof(FontDefPayload);

  bool WriteReference(CZVBaseIO &sink) const override { return WriteNamedReference(sink); }

  // Codes are taken through the code spaces and the table to Unicode, not as bytes of a code page.
  bool composite() const { return composite_; }
  std::span<const CodeSpace> codeSpaces() const { return codeSpaces_.list(); }

  bool hasWidths() const { return hasWidths_; }
  // In em, by code (of a simple font: by byte); 0 for a code outside the table. May be negative.
  double Width(uint32_t code) const { return code < widths_.size() ? widths_[code] : widthBeyond_; }

  // UTF-16 unit of a code of a composite font.
  char16_t Character(uint32_t code) const {
    uint32_t at = code & 0xFFFF;
    if (size_t{2} * at + 1 < cidToGid_.size())
      at = uint32_t{cidToGid_.data()[2 * at]} << 8 | cidToGid_.data()[2 * at + 1];
    if (unicode_) at = (*unicode_)[at];
    return static_cast<char16_t>(at == kNoTarget ? code : at);
  }

  // A code page, or -1 when the font does not imply one: then the setting `CodePage` counts, except beside a program.
  int32_t codePage() const { return codePage_; }
  bool hasDifferences() const { return differences_ != 0; }
  // Character that Differences give a byte of a simple font; 0 for none.
  char16_t MappedCharacter(uint8_t byte) const {
    return byte < characterMap_.size() ? static_cast<char16_t>(characterMap_[byte]) : u'\0';
  }

  // Face by which text names the font: that of a family of the system, or the document's own without its style.
  const std::u16string &faceName() const { return faceName_; }
  // Family in the font system or in the program; may be empty.
  const std::u16string &familyName() const { return familyName_; }
  uint32_t style() const { return style_; }  // kBold, kItalic
  const FontLook &look() const { return look_; }

  // The program stays with the font and goes to the host.
  bool hasProgram() const { return programSize_ != 0; }
  uint32_t programSize() const { return programSize_; }  // with kMappingMark

  // The font's definition for the host: its FontDefPayload, behind it the program when there is one. Lives as long as
  // the font. The size has kMappingMark when mapping data stand behind the program.
  void *definition() const { return const_cast<uint8_t *>(definition_.data()); }
  uint32_t definitionSize() const { return static_cast<uint32_t>(kDefinitionBytes) + programSize_; }

  // Bytes of memory, about.
  size_t MemoryUsed() const;

 private:
  friend class FontLoader;

  // Fills the block ahead of the program; `codePage` is that of a font which implies none.
  void Define(int32_t codePage);

  bool composite_ = false;
  bool hasWidths_ = false;
  double widthBeyond_ = 0.0;  // for codes outside the table
  std::vector<double> widths_;
  std::shared_ptr<const CodeTable> unicode_;
  ByteBuffer cidToGid_;  // big-endian, 16 bits for each code
  CodeSpaces codeSpaces_;
  int32_t codePage_ = -1;
  uint32_t differences_ = 0;  // length of the array
  std::vector<uint16_t> characterMap_;
  std::u16string faceName_;
  std::u16string familyName_;
  uint32_t style_ = 0;
  FontLook look_;
  uint32_t programSize_ = 0;
  ByteBuffer definition_;
};

}  // namespace kapdf
