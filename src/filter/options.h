// The option strings of `OpenRead` and `OpenWrite`. Each option is found by a search for its word with the blank behind
// it, in any order and anywhere in the text, upper and lower case told apart.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "base/settings_table.h"
#include "writer/write_options.h"

namespace kapdf {

// How a page comes as a raster image, if it does.
struct ImportOptions {
  int32_t asImage = DefaultOf<int32_t>("AsImage");
  int32_t dpi = DefaultOf<int32_t>("DPI");
  int32_t colorDepth = DefaultOf<int32_t>("ColorDepth");
  int32_t extractText = DefaultOf<int32_t>("ExtractText");
  int32_t dither = DefaultOf<int32_t>("Dither");
  // Of one open call: whether the file is read as other readers read it, where an option tells, and its password.
  std::optional<int32_t> extended{};
  std::u16string password{};
};

class OptionString {
 public:
  explicit OptionString(std::u16string_view text);

  // The value of the row's word, as it is stored as a setting. What is missing leaves the value alone, unless the row
  // tells what its absence means; false for a value that does not exist.
  bool Take(const Setting &row, double &value) const;
  bool Take(const Setting &row, int32_t &value) const;

  // "/q 75": the row's word with a value as it is stored.
  static std::string Composed(const Setting &row, double value);

 private:
  std::string text_;
};

// "/col c /bw n /q n /pdfa n /origin n /frame x". What is missing leaves its value alone; false for a value of /col or
// /bw that does not exist.
bool ParseExportOptions(std::u16string_view text, WriteSettings &settings);

// "/mode n /dpi n /col n /text n /ext n /pw TEXT". A text that is not empty first sets the first four to 0, 300, 3 and
// 0. The password goes up to the next blank, and no other option is looked for in it.
void ParseImportOptions(std::u16string_view text, ImportOptions &options);

}  // namespace kapdf
