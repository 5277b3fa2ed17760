#include "fonts/font_program.h"

#include <ft2build.h>
#include FT_FREETYPE_H

#include <algorithm>
#include <array>

#include "base/limits.h"
#include "platform/text.h"

namespace kapdf {

void FontProgram::Close::operator()(FT_LibraryRec_ *library) const { FT_Done_FreeType(library); }
void FontProgram::Close::operator()(FT_FaceRec_ *face) const { FT_Done_Face(face); }

bool FontProgram::Open(std::span<const uint8_t> bytes) {
  if (bytes.empty() || bytes.size() > limits::kFontProgram) return false;
  FT_Library library;
  if (FT_Init_FreeType(&library) != 0) return false;
  library_.reset(library);
  FT_Face face;
  if (FT_New_Memory_Face(library, bytes.data(), static_cast<FT_Long>(bytes.size()), 0, &face) != 0) return false;
  face_.reset(face);
  return true;
}

bool FontProgram::firstMapIsUnicode() const {
  return face_->num_charmaps > 0 && face_->charmaps[0]->encoding == FT_ENCODING_UNICODE;
}

double FontProgram::TopByAscender() const {
  return static_cast<double>(face_->bbox.yMax) / static_cast<double>(face_->ascender);
}

std::u16string FontProgram::FamilyName() const {
  return face_->family_name ? platform::FromUtf8(face_->family_name) : std::u16string();
}

// FreeType would go through all names for each one.
int FontProgram::GlyphOf(const std::string &name) {
  if (!namesRead_ && FT_HAS_GLYPH_NAMES(face_.get())) {
    const FT_Long count = std::min(face_->num_glyphs, FT_Long{0xFFFF});
    std::array<char, 128> text;
    for (FT_Long glyph = 0; glyph < count; ++glyph) {
      if (FT_Get_Glyph_Name(face_.get(), static_cast<FT_UInt>(glyph), text.data(), text.size()) == 0)
        glyphs_.try_emplace(text.data(), static_cast<int>(glyph));
    }
  }
  namesRead_ = true;
  const auto found = glyphs_.find(name);
  return found == glyphs_.end() ? -1 : found->second;
}

}  // namespace kapdf
