#include "raster/color_space.h"

#include <gtest/gtest.h>

#include <cstdio>

#include "base/color.h"
#include "pdfmodel/objects.h"
#include "support/opened_pdf.h"
#include "support/pdf_builder.h"

namespace kapdf::test {
namespace {

// "components count: entries 0, 1, 2 and the last", or what is missing of it.
std::string Show(const std::string &value) {
  OpenedPdf pdf(
      PagesOf({""})
          .Object(10, value)
          .Object(11, "/DeviceCMYK")
          .Stream(12, "/Alternate /DeviceGray /N 3", "")
          .Stream(13, "/N 1", "")
          .Stream(14, "/Alternate /Lab /N 3", "")
          .Stream(15, "/N 4", "")
          .FlateStream(16, "", "abcdef")
          .Stream(17, "/FunctionType 0 /Size [2] /BitsPerSample 16 /Range [0 1 0 1 0 1 0 1]", "\xFF\1\2\3\x80\4\5\x80")
          .Stream(19, "/FunctionType 4", "{dup}")
          .Object(20, "<</FunctionType 2 /N 1>>")
          .FlateStream(21, "/FunctionType 0 /Size [2147483647 2147483647] /Range [0 1 0 1 0 1]", "abc")
          .Build());
  CPDFIndirectObject reference(pdf.file);
  reference.objectNumber = 10;
  ColorSpace space(pdf.file.objects());
  if (!space.Load(&reference)) return "no";
  std::string text = std::to_string(space.components());
  const Palette *palette = space.palette().get();
  if (!palette) return text;
  text += " " + std::to_string(palette->count) + ":";
  for (int i = 0; i < palette->count; i = i == 2 && palette->count > 4 ? palette->count - 1 : i + 1) {
    char rgb[16];
    const Palette::Entry &e = palette->entries[i];
    std::snprintf(rgb, sizeof rgb, " %02X%02X%02X", e.red, e.green, e.blue);
    text += rgb;
  }
  char half[16];
  std::snprintf(half, sizeof half, " %06X", space.Convert(0.5));  // packed, red lowest
  return text + half;
}

TEST(ColorSpace, TellsComponentsAndPalette) {
  const std::string ramp = " 256: 000000 010101 020202 FFFFFF 7F7F7F";
  const struct {
    const char *value;
    std::string expected;
  } cases[] = {
      {"/DeviceGray", "2" + ramp},
      {"[/DeviceCMYK]", "4"},
      {"[/Lab <<>>]", "no"},
      {"[/ICCBased 12 0 R]", "2" + ramp},  // the alternate space wins
      {"[/ICCBased 13 0 R]", "2" + ramp},
      {"[/ICCBased 14 0 R]", "-1"},
      {"[/Indexed /DeviceRGB 1 <000000FFFFFF>]", "0 2: 000000 FFFFFF 000000"},
      {"[/Indexed /DeviceGray 2 (ab)]", "1 3: 616161 626262 000000 616161"},
      {"[/Indexed 11 0 R 1 <FF00000080000080>]", "0 2: 00FFFF 3F7F7F FFFF00"},
      {"[/Indexed [/ICCBased 15 0 R] 1 16 0 R]", "0 2: 616263 646566 636261"},  // three bytes, whatever the profile has
      {"[/Indexed /DeviceRGB 2 16 0 R]", "1"},                                  // a short table
      {"[/Indexed /DeviceGray 70000 <FEFF0102>]", "1 256: FEFEFE FFFFFF 010101 000000 FEFEFE"},
      {"[/Indexed /DeviceGray -5 <07>]", "1 1: 070707 070707"},
      {"[/Separation /Spot /DeviceCMYK 17 0 R]", "1 2: 00FBFA 3F7D7D FAFB00"},
      {"[/Separation /Spot /DeviceCMYK 19 0 R]", "1 256: FFFFFF FEFEFE FDFDFD 000000 808080"},
      {"[/Separation /Spot 11 0 R 20 0 R]", "4"},
      {"[/Separation /Spot /DeviceRGB 21 0 R]", "1 256: 616263 000000 000000 000000 000000"},
  };
  for (const auto &c : cases) EXPECT_EQ(Show(c.value), c.expected) << c.value;
}

TEST(DefaultPalette, HasACubeAndGreys) {
  const PaletteHandle palette = DefaultPalette();
  const Palette::Entry &color = palette->entries[20 + 36 + 12 + 3], &grey = palette->entries[255];
  EXPECT_EQ(PackColor(color.red, color.green, color.blue), 0x996633u);
  EXPECT_EQ(PackColor(grey.red, grey.green, grey.blue), 0xE4E4E4u);
}

}  // namespace
}  // namespace kapdf::test
