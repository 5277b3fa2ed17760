// The coordinate system of a page in words for people.
#pragma once

#include <optional>
#include <string>

#include "kapdf/kapdf.h"

namespace kapdf::tool {

// The block that a record brings; nothing for any other record, and for a property whose value is not one.
std::optional<CoordinateSystemBlock> CoordinateSystemOf(const ElementRecord &record);

// The value of the property for an export: with the number of the projection, which the import leaves open.
std::u16string ValueForExport(CoordinateSystemBlock block);

// Lines of a word and what it says, as `kapdf info` prints them: projection with its parameters, datum, units, code.
std::string Tell(const CoordinateSystemBlock &block);

}  // namespace kapdf::tool
