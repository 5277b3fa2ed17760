// Opens what other readers open - encrypted, damaged or unusual files - and makes of one page a small document in
// memory, in the plain form that the rooms behind read. Nothing of the library underneath shows here.
#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

#include "base/byte_buffer.h"

namespace kapdf {

// What a person may want to know of a document besides its pages.
struct IntakeFacts {
  uint32_t warnings = 0;     // that opening and the pages taken so far gave
  std::string encryption;    // "RC4 128", "AES 256", ...; empty for none
  int32_t permissions = -1;  // the bits of ISO 32000-1, table 22; not enforced
};

class Intake {
 public:
  Intake();
  ~Intake();

  // `stream` is borrowed and must stay open as long as this object lives. `password`: UTF-8, the user's or the owner's;
  // empty for none. 0; 5 for a file without pages; 11 when the password is missing or wrong, or the encryption is
  // unknown; 12 when it is not a PDF file.
  uint32_t Open(std::FILE *stream, std::string_view password);

  // Pages as other readers count them.
  int32_t pageCount() const;
  // The page as a document of its own: streams in plain or in one of the four image codecs, resources and boxes in
  // place, the box that viewers show at its size on paper. `annotations`: those that a screen shows are drawn, on the
  // layer "PDF_Annotations". False when the page cannot be read or asks for too much.
  bool TakePage(int32_t index, bool annotations, ByteBuffer &document);

  IntakeFacts facts() const;

 private:
  struct Document;
  std::unique_ptr<Document> document_;
};

}  // namespace kapdf
