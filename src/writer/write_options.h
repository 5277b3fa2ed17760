// What the writer takes from the settings and from an option string.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/settings.h"

namespace kapdf {

// Those that an option string may override.
struct WriteSettings {
  int32_t colorCompression = DefaultOf<int32_t>("ColorCompression");  // 0 LZW, 1 DCT, 2 none
  int32_t bwCompression = DefaultOf<int32_t>("BWCompression");        // 0 CCITT G4, 1 none
  int32_t quality = DefaultOf<int32_t>("Quality");
  int32_t pdfa = DefaultOf<int32_t>("PDFA");
  int32_t atOrigin = DefaultOf<int32_t>("AtOrigin");
  double paperFrame = DefaultOf<double>("PaperFrame");  // millimetres

  // From one of the two keys that keep them.
  template <SettingKey kKey>
  void Read(const platform::SettingsAt<kKey> &settings) {
    colorCompression = settings.Integer("ColorCompression");
    bwCompression = settings.Integer("BWCompression");
    quality = settings.Integer("Quality");
    pdfa = settings.Integer("PDFA");
    atOrigin = settings.Integer("AtOrigin");
    paperFrame = settings.Real("PaperFrame");
  }
};

struct WriteOptions : WriteSettings {
  int32_t geoTiff = DefaultOf<int32_t>("GeoTiff");
  int32_t embedFonts = DefaultOf<int32_t>("EmbedFonts");
  int32_t joinStyle = DefaultOf<int32_t>("JoinStyle");
  int32_t lineCap = DefaultOf<int32_t>("LineCap");
  double miter = DefaultOf<double>("Miter");
  bool useTransparency = true;
  std::string subject, keywords, author, copyright;  // system code page

  // Reads the key `\PDF` below the registry path; PDF/A then has its way.
  static WriteOptions Of(std::u16string_view registryPath);
  // The flag is set last, so that PDF/A can still ask for what it needs. Transparency stays as the settings left it.
  void Override(const WriteSettings &settings);

 private:
  void ApplyPdfA();
};

// Text in the system code page, at most `bytes` long.
std::string NarrowText(std::u16string_view text, size_t bytes);

}  // namespace kapdf
