// The pages of a document as other readers count them.
#pragma once

#include <qpdf/QPDF.hh>
#include <vector>

namespace kapdf {

// In order. A page tree that cannot be walked gives way to all page objects that the file holds, in order of their
// numbers. Empty when there are none.
std::vector<QPDFObjectHandle> ListPages(QPDF &pdf);

}  // namespace kapdf
