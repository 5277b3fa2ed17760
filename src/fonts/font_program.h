// A font program that stands in a document, as FreeType sees it.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <unordered_map>

struct FT_FaceRec_;
struct FT_LibraryRec_;

namespace kapdf {

class FontProgram {
 public:
  // The bytes must outlive the object. False when they are no font; nothing else may be asked then.
  bool Open(std::span<const uint8_t> bytes);

  bool firstMapIsUnicode() const;
  // Top of the box around all glyphs by the height of the ascenders; may be anything.
  double TopByAscender() const;
  std::u16string FamilyName() const;
  // First glyph of that name; -1 for none.
  int GlyphOf(const std::string &name);

 private:
  struct Close {
    void operator()(FT_LibraryRec_ *library) const;
    void operator()(FT_FaceRec_ *face) const;
  };
  std::unique_ptr<FT_LibraryRec_, Close> library_;
  std::unique_ptr<FT_FaceRec_, Close> face_;
  bool namesRead_ = false;
  std::unordered_map<std::string, int> glyphs_;
};

}  // namespace kapdf
