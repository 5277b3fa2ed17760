// The objects of the fonts that text was written with: each a composite font whose codes are the font's own glyphs.
#pragma once

#include "writer/font_out.h"
#include "writer/objects_out.h"

namespace kapdf {

class FontObjects {
 public:
  // Both are borrowed and must outlive the object.
  FontObjects(ObjectsOut &objects, FontTable &fonts) : objects_(objects), out_(objects.text()), fonts_(fonts) {}

  // The fonts' part of the page's resources, and then the fonts; `embed` with their programs, as far as that may be.
  void WriteResources();
  void Write(bool embed);

 private:
  void WriteToUnicode(const FontOut &font);
  void WriteDescendant(const FontOut &font, const FontOut::Program &program);
  int32_t WriteDescriptor(const FontOut &font, const FontOut::Program &program);

  ObjectsOut &objects_;
  TextOut &out_;
  FontTable &fonts_;
};

}  // namespace kapdf
