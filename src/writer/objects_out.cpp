#include "writer/objects_out.h"

#include <utility>

#include "writer/xref_stream.h"

namespace kapdf {

void ObjectsOut::Continue(PDFXRef table) {
  xref_ = std::move(table);
  firstObject_ = xref_.HighestObject() + 1;
  allocated_ = 0;
}

void ObjectsOut::WriteTrailer() {
  const int64_t position = WriteXRefStream(text_, xref_, continues() ? firstObject_ : 1);
  text_.Text("startxref\r").Integer(static_cast<uint32_t>(position)).Text("\r%%EOF\r");
}

int32_t ObjectsOut::ReserveHere() {
  PlaceHere();
  return Reserve();
}

TextOut &ObjectsOut::BeginReserved(int32_t number) {
  MoveHere(number);
  return text_.BeginObject(number);
}

void ObjectsOut::WriteLength(int32_t number, std::string_view text) {
  BeginReserved(number).Text(text).Text("endobj\r");
}

}  // namespace kapdf
