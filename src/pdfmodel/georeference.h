// The georeference of a page, its entry `LGIDict`: read from the page's dictionary, and written into one.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "kapdf/kapdf.h"
#include "pdfmodel/locator.h"

namespace kapdf {

// A block that tells nothing yet.
CoordinateSystemBlock MakeCoordinateSystem(uint32_t systemClass, double scale);

struct Georeference {
  // There when the dictionary tells a projection, whether or not it is a known one.
  std::optional<CoordinateSystemBlock> system;
  // Rows (0, 1), (2, 3), (4, 5): points of the page to millimetres of the drawing, which map units stand for.
  std::optional<std::array<double, 6>> matrix;
};

// Nothing when the page has no such dictionary, in place, in an array or behind a reference. References to a system, to
// a matrix and to numbers are followed. Entries of a wrong class leave what they tell at its start value.
std::optional<Georeference> ReadGeoreference(ObjectLocator &objects, const CPDFDictionary &page);

// How the sheet lies in the drawing.
struct SheetPlace {
  double scale;             // points for one millimetre
  double originX, originY;  // millimetres
};

// Writes the entry for an open page dictionary. A block without a code of its system gives one without a projection.
void WriteGeoreference(CZVBaseIO &sink, const CoordinateSystemBlock &block, const SheetPlace &place);

// A number with 16 significant digits and no more zeros than it takes. "0" for one that is not finite.
std::string FormatNumber(double value);
// The text in a code page as a hexadecimal string, or, with the system's own page 0, as a literal one whose brackets of
// all kinds are escaped; a backslash is not.
std::string FormatString(std::u16string_view text, uint32_t codePage);

}  // namespace kapdf
