// A drawing read from JSON Lines: one page of it, whole in memory, in the order of the file.
#pragma once

#include <istream>
#include <optional>
#include <string>
#include <vector>

#include "records/record.h"
#include "records/shapes.h"
#include "system/outcome.h"

namespace kapdf::tool {

struct Drawing {
  NameTable names;
  std::vector<Record> records;
  std::optional<Box> extents;  // as the file's header tells them, millimetres
};

// Every line that has the key "kapdf" starts a page; a file without such a line is one page. `page` counts from 1;
// without it the file must hold one page only. `name` is what the sentences call the file.
Outcome ReadDrawing(std::istream &in, const std::string &name, std::optional<int> page, Drawing &drawing);

}  // namespace kapdf::tool
