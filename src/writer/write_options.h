// What the writer takes from the settings and from an option string.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace kapdf {

// Those that an option string may override.
struct WriteSettings {
  int32_t colorCompression = 0;  // 0 LZW, 1 DCT, 2 none
  int32_t bwCompression = 0;     // 0 CCITT G4, 1 none
  int32_t quality = 75;
  int32_t pdfa = 0;
  int32_t atOrigin = 0;
  double paperFrame = 2;  // millimetres
};

struct WriteOptions : WriteSettings {
  int32_t geoTiff = 0;
  int32_t embedFonts = 0;
  int32_t joinStyle = 1;
  int32_t lineCap = 0;
  double miter = 10;
  bool useTransparency = true;
  std::string subject, keywords, author, copyright;  // system code page

  // Reads the key `\PDF` below the registry path; PDF/A then has its way.
  static WriteOptions Read(std::u16string_view registryPath);
  // The flag is set last, so that PDF/A can still ask for what it needs. Transparency stays as the settings left it.
  void Override(const WriteSettings &settings);

 private:
  void ApplyPdfA();
};

// Text in the system code page, at most `bytes` long.
std::string NarrowText(std::u16string_view text, size_t bytes);

}  // namespace kapdf
