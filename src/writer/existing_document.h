// The document that gets a page more.
#pragma once

#include <cstdint>
#include <cstdio>
#include <optional>
#include <string_view>
#include <vector>

#include "pdfmodel/xref_table.h"

namespace kapdf {

struct ExistingDocument {
  PDFXRef table;                // all of its sections, newest first
  std::vector<uint32_t> pages;  // object numbers, in the order of the pages
};

// Reads what the stream holds, whose position is undefined afterwards. Nothing when that is no PDF file that can be
// read, or when its object numbers leave no room for more.
std::optional<ExistingDocument> ReadExistingDocument(std::FILE *stream, std::u16string_view registryPath);

}  // namespace kapdf
