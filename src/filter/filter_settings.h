// What a filter object takes from the settings when it is made.
#pragma once

#include <string_view>

#include "base/settings_table.h"
#include "filter/options.h"
#include "writer/write_options.h"

namespace kapdf {

struct FilterSettings {
  WriteSettings write;
  ImportOptions import;
  bool convertPoly = DefaultOf<bool>("ConvertPoly");
  double fitTolerance = DefaultOf<double>("FitTolerance");
  bool log = DefaultOf<bool>("Log");

  // Reads the key `\Filter\PDF` below the registry path.
  static FilterSettings Of(std::u16string_view registryPath) {
    const platform::SettingsAt<SettingKey::kFilterPdf> settings(registryPath);
    FilterSettings read;
    read.write.Read(settings);
    read.import.asImage = settings.Integer("AsImage");
    read.import.dpi = settings.Integer("DPI");
    read.import.colorDepth = settings.Integer("ColorDepth");
    read.import.extractText = settings.Integer("ExtractText");
    read.import.dither = settings.Integer("Dither");
    read.convertPoly = settings.Switch("ConvertPoly");
    read.fitTolerance = settings.Real("FitTolerance");
    read.log = settings.Switch("Log");
    return read;
  }
};

}  // namespace kapdf
