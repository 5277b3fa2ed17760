// The settings that a person may change, as fields of a dialog, and the option strings made of them.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/form.h"
#include "platform/settings.h"

namespace kapdf {

// All settings of one direction. A setting that two keys hold is read at the first and written to both.
class OptionForm {
 public:
  enum class Direction { kImport, kExport };

  // From the settings below the registry path; what the option string says, if anything, comes above them.
  OptionForm(Direction direction, std::u16string_view registryPath, std::u16string_view options);

  uint32_t dialog() const;
  std::vector<platform::FormField> &fields() { return fields_; }

  // Writes all of them to the settings.
  void Save() const;
  // "/mode n /dpi n /col n /text n /Convert n /Tolerance x" of an import,
  // "/col c /bw n /q n /pdfa n /origin n /frame x" of an export.
  std::u16string Options() const;

 private:
  static int32_t WholeToStore(const platform::Settings &key, const Setting &row, double value);
  double Value(size_t index) const;
  double PlaceOf(size_t index, double value) const;
  void SetValue(size_t index, double value);
  void TakeOptions(std::u16string_view options);

  Direction direction_;
  std::u16string registryPath_;
  std::vector<const Setting *> rows_;  // one for each field
  std::vector<platform::FormField> fields_;
  std::vector<double> given_;  // what each number began with, as it is stored
};

}  // namespace kapdf
