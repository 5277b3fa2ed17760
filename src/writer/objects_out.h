// The objects of the file that is written: their numbers, their places and their text.
#pragma once

#include <cstdint>
#include <string_view>

#include "pdfmodel/xref_table.h"
#include "writer/text_out.h"

namespace kapdf {

// Numbers are given out in file order. A number that is needed ahead of its object takes its place in the
// cross-reference table at once and its position later.
class ObjectsOut {
 public:
  // `file` is borrowed and must outlive the object.
  explicit ObjectsOut(CZVBaseIO &file) : text_(file) {}

  // Goes on behind the objects of an older file. Before `Begin` only.
  void Continue(PDFXRef table);
  bool continues() const { return firstObject_ != 0; }
  void Begin() { xref_.BeginSection(firstObject_); }
  // The table itself, and where readers find it.
  void WriteTrailer();

  TextOut &text() { return text_; }
  uint32_t Offset() const { return static_cast<uint32_t>(text_.Position()); }

  // The number that is given out next.
  int32_t Next() const { return firstObject_ + allocated_; }
  int32_t Reserve() { return firstObject_ + allocated_++; }
  // The next object of the table stands here, or will be told its position by `BeginReserved`.
  void PlaceHere() { xref_.Append(Offset(), 0, 'n'); }
  int32_t ReserveHere();
  // The object whose number was given out earlier stands here.
  void MoveHere(int32_t number) { xref_.Set(Offset(), number, 'n'); }
  TextOut &BeginReserved(int32_t number);
  void WriteLength(int32_t number, std::string_view text);

 private:
  TextOut text_;
  PDFXRef xref_;
  int32_t firstObject_ = 0;  // 0 in a new file
  int32_t allocated_ = 1;    // the head entry counts
};

}  // namespace kapdf
