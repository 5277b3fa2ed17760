// What a colour space says about samples. Colours are not managed: profiles are not read, and Lab, CalRGB, CalGray,
// Pattern and DeviceN are not known.
#pragma once

#include <cstdint>
#include <string>

#include "pdfmodel/locator.h"
#include "raster/palette.h"

namespace kapdf {

class ColorSpace {
 public:
  // Component counts that are marks and no counts of samples.
  static constexpr int32_t kUnresolved = -1;
  static constexpr int32_t kTwoColors = 0;  // an Indexed space of exactly two entries
  static constexpr int32_t kGrey = 2;

  explicit ColorSpace(ObjectLocator &objects) : objects_(objects) {}

  // `value`: a name, an array, or a reference to one of them. False when it is no space that is known.
  bool Load(const CPDFObject *value);

  // One of the marks; 1 for indexes into the palette, 3 RGB, 4 CMYK.
  int32_t components() const { return components_; }
  const PaletteHandle &palette() const { return palette_; }
  // Packed colour of one component: an index, or 0 to 1 over the whole palette. Black without a palette.
  uint32_t Convert(double component) const;

 private:
  bool LoadArray(const CPDFArray &array);
  void LoadIccBased(const CPDFObject *profile);
  void LoadIndexed(const CPDFArray &array);
  void LoadSeparation(const CPDFArray &array);
  void LoadSampledTint(const CPDFIndirectObject &function, const CPDFDictionary &dictionary);
  void SetDevice(int32_t components);
  void FillPalette(const uint8_t *bytes, size_t available, int entries, int bytesPerEntry);

  ObjectLocator &objects_;
  int32_t components_ = kUnresolved;
  PaletteHandle palette_;
  bool indexed_ = false;
};

}  // namespace kapdf
