// The cross-reference stream that ends every file.
#pragma once

#include <cstdint>

#include "pdfmodel/xref_table.h"
#include "writer/text_out.h"

namespace kapdf {

// Appends the stream's own entry at the present position, then writes the whole table, old sections and new. The Root
// is the object after `infoObject`. Returns the position that startxref tells.
int64_t WriteXRefStream(TextOut &out, PDFXRef &table, int32_t infoObject);

}  // namespace kapdf
