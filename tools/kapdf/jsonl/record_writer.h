// Writes element records as JSON Lines.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "kapdf/kapdf.h"
#include "records/kinds.h"

namespace kapdf::tool {

// Numbers in their shortest form that reads back as the same double; a sign of zero is kept. The caller makes sure
// that the value is finite.
void AppendNumber(std::string &out, double value);
void AppendJsonText(std::string &out, std::string_view utf8);
// Text that is not valid Unicode becomes an array of its UTF-16 units, so that nothing is lost.
void AppendJsonText(std::string &out, std::u16string_view text);

// Appends the record's line, with its line end. On failure appends nothing and gives the fault. `picture`: the file
// that holds the rows of a raster header, in UTF-8; empty when they follow as lines.
std::optional<std::string> AppendRecord(std::string &out, const ElementRecord &record, std::string_view picture = {});

}  // namespace kapdf::tool
