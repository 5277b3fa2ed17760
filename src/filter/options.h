// The option strings of `OpenRead` and `OpenWrite`. Each option is found by a search for its word with the blank behind
// it, in any order and anywhere in the text, upper and lower case told apart.
#pragma once

#include <cstdint>
#include <string_view>

#include "writer/write_file.h"

namespace kapdf {

struct ImportOptions {
  int32_t asImage = 0;
  int32_t dpi = 200;
  int32_t colorDepth = 3;
  int32_t extractText = 0;
};

// "/col c /bw n /q n /pdfa n /origin n /frame x". What is missing leaves its value alone; false for a value of /col or
// /bw that does not exist.
bool ParseExportOptions(std::u16string_view text, WriteSettings &settings);

// "/mode n /dpi n /col n /text n". A text that is not empty first sets the four to 0, 300, 3 and 0.
void ParseImportOptions(std::u16string_view text, ImportOptions &options);

}  // namespace kapdf
