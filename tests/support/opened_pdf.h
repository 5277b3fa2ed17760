// Bytes opened as a document that is read.
#pragma once

#include <string_view>

#include "pdfmodel/pdf_file.h"
#include "support/temp_file.h"

namespace kapdf::test {

struct OpenedPdf {
  explicit OpenedPdf(std::string_view bytes)
      : temp(bytes), file(temp.stream(), u"Software\\kaPDF-tests"), result(file.Open(info)) {}

  TempFile temp;
  FileInfo info{};
  CPDFFile file;
  uint32_t result;  // of Open
};

}  // namespace kapdf::test
