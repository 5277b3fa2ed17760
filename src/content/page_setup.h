// Makes one page of an open document ready for the interpreter.
#pragma once

#include <optional>

#include "content/interpreter.h"
#include "pdfmodel/pdf_file.h"

namespace kapdf {

// Reads the page's dictionary: rotation and box, which win over those of the tree, and from them the matrix that brings
// the sheet as it is looked at to the origin. A georeference has its own matrix, and its coordinate system becomes a
// property of the document. Nothing when the page's object cannot be read.
std::optional<PageToRead> SetupPage(CPDFFile &document, const PagePosition &position);

// The matrix and the box of a sheet turned by `rotate` radians clockwise. `box` is that of the page's dictionary on
// entry and the one of the turned sheet afterwards, both in points.
Affine RotatePage(double rotate, PageBox &box);

}  // namespace kapdf
