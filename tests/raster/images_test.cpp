// Image XObjects as a host gets them, with their description and all rows; colour spaces.
#include <gtest/gtest.h>

#include <cstdio>

#include "raster/raster_object.h"
#include "support/jpeg.h"
#include "support/opened_pdf.h"
#include "support/pdf_builder.h"
#include "support/row_text.h"

namespace kapdf::test {
namespace {

using namespace std::string_literals;

std::string Text(const Palette::Entry &color) {
  char text[8];
  std::snprintf(text, sizeof text, "%02X%02X%02X", color.red, color.green, color.blue);
  return text;
}

// "WxH kind", "inverted", "p" with the palette's entry 1 and "x" with the entries that are not painted; then the rows.
std::string Show(CPDFRasterObject &raster) {
  const ImageDescription told = raster.Describe();
  std::string text = std::to_string(told.width) + "x" + std::to_string(told.height) + " k" +
                     std::to_string(static_cast<int>(told.kind)) + (told.invert ? " inverted" : "");
  if (told.palette) {
    text += " p" + Text(told.palette->entries[1]);
    for (int i = 0; i < 256; ++i) {
      if (told.palette->entries[i].flags == Palette::kTransparent) text += " x" + std::to_string(i);
    }
  }
  std::vector<uint32_t> row(CPDFRasterObject::RowBytes(told.width) / 4, 0xEEEEEEEE);
  auto *bytes = reinterpret_cast<uint8_t *>(row.data());
  for (uint32_t y = 0; y < told.height; ++y) {
    const size_t used = raster.ReadLine(bytes);
    text += RowText(told.kind, told.width, bytes);
    EXPECT_EQ(used, told.kind == RasterKind::kBilevel ? RunList(bytes).bytes() : used / told.width * told.width);
  }
  return text;
}

// Image 10 beside others that it may refer to. "no" when it cannot be prepared.
std::string Shown(const std::string &entries, const std::string &data, bool jbig2 = true) {
  const std::string image = "/Subtype /Image ", fourByTwo = "/Width 4 /Height 2 ";
  OpenedPdf pdf(
      PagesOf({""})
          .Stream(10, image + entries, data)
          .Object(11, "[/Indexed /DeviceRGB 3 (abcdefghijkl)]")
          .Stream(20, image + fourByTwo + "/ImageMask true /BitsPerComponent 1", "\xF0\xF0")
          .Stream(21, image + fourByTwo + "/ImageMask true /BitsPerComponent 1 /Mask 21 0 R", "\x50\xF0")
          .Stream(22, image + "/Width 8 /Height 4 /ImageMask true /BitsPerComponent 1", "\x0F\0\0\xFF"s)
          .Stream(24, image + fourByTwo + "/ColorSpace /DeviceGray /BitsPerComponent 1 /SMask 24 0 R", "\x50\xF0")
          .Stream(25, image + fourByTwo + "/ColorSpace /DeviceGray /BitsPerComponent 8", "\0\1\2\3\0\1\2\3"s)
          .Stream(26, image + "/Width 1 /Height 4 /ImageMask true /BitsPerComponent 1", "\x80\0\x80\0"s)
          .Stream(27, image + fourByTwo + "/ImageMask true /BitsPerComponent 1 /Decode [1 0]", "\x50\xF0")
          .Stream(28, image + "/Width 2 /Height 2 /ImageMask true /BitsPerComponent 1", "\x40\x80")
          .Object(30, "<</Predictor 2>>")
          .Object(32, "[<<>> 30 0 R]")
          .Object(33, "<</A 20 0 R /B 34 0 R>>")
          .Object(34, "<</C 21 0 R /D 33 0 R>>")
          .Object(35, "<</A 20 0 R /B 36 0 R>>")
          .Object(36, "<</C 26 0 R /D 25 0 R /E 22 0 R /F 21 0 R>>")
          .Build());
  CPDFRasterObject raster(pdf.file.objects(), {.jbig2 = jbig2});
  const int number = entries.empty() ? std::stoi(data) : 10;
  if (!raster.Load(number) || !raster.Prepare()) return "no";
  const std::string first = Show(raster);
  EXPECT_TRUE(raster.Prepare() && Show(raster) == first) << "a second time";
  return first;
}

struct Case {
  std::string entries, data, expected;
};

void Check(const std::string &size, const std::vector<Case> &cases) {
  for (const Case &c : cases) EXPECT_EQ(Shown(size + c.entries, c.data), c.expected) << c.entries;
}

TEST(Image, KindAndPolarityFollowFromTheDictionary) {
  const std::string bits = "\xA0\x60", runs = " | 0-0 2-2 | 1-2", one = "/BitsPerComponent 1 ";
  Check(
      "/Width 4 /Height 2 ",
      {{one, bits, "4x2 k0" + runs},
       {one + "/ColorSpace /DeviceGray", bits, "4x2 k0 inverted" + runs},
       {one + "/ColorSpace /DeviceGray /Decode [1 0]", bits, "4x2 k0" + runs},
       {"/ImageMask true", bits, "4x2 k0 inverted" + runs},
       {"/ImageMask true /Decode [1 0]", bits, "4x2 k0" + runs},
       {one + "/ColorSpace [/Indexed /DeviceGray 1 <FF00>]", bits, "4x2 k0 inverted" + runs},
       {one + "/ColorSpace [/ICCBased 99 0 R]", bits, "no"},
       {one + "/Filter /Fl", Deflate("\xA0"), "4x2 k0 | 0-0 2-2 |"},  // short of data
       {"/BitsPerComponent 8 /ColorSpace /DeviceGray", "abcdABCD", "4x2 k1 p010101 | abcd | ABCD"},
       {"/BitsPerComponent 8 /Filter /Fl", Deflate("abcdAB"), "4x2 k2 p800000 | abcd | AB0000"},
       {"/BitsPerComponent 8", "abcdAB", "4x2 k2 p800000 | abcd | AB0000"},  // and not what stands behind them
       {"/BitsPerComponent 4 /ColorSpace 11 0 R /Mask [1 2]", "\x01\x23\x32\x10",
        "4x2 k2 p646566 x1 x2 | 00010203 | 03020100"},
       {"/BitsPerComponent 8 /ColorSpace /DeviceCMYK /Filter /Fl", Deflate("\0\0\0\xFF\xFF\0\0\0\x80\0\0\x80\0\0\0\0"s),
        "4x2 k4 | 00000000FFFF3F7F7FFFFFFF | FFFFFFFFFFFFFFFFFFFFFFFF"},
       {"/BitsPerComponent 8 /ColorSpace [/ICCBased 10 0 R] /N 536870915", "abcd", "no"}});
}

TEST(Image, FiltersAreChosenByName) {
  const std::string eight = "/BitsPerComponent 8 ", plain = "4x2 k2 p800000 | abcd | ABCD";
  const auto letter = [](uint32_t) { return 'a'; };
  const std::string fax = "\x26\xAF\0\x10\x01"s;  // two black rows and the end
  Check("/Width 4 /Height 2 ",
        {{eight + "/Filter /FlateDecode", Deflate("abcdABCD"), plain},
         {eight + "/Filter [/Fl] /DecodeParms [<</Predictor 2>>]", Deflate("a\1\1\1A\1\1\1"), plain},
         {eight + "/Filter [/ASCII85Decode /Fl]", "GhPea8ksAJEcqH`%%%*]~>", plain},
         {eight + "/Filter [/Fl /Fl] /DecodeParms 32 0 R", Deflate(Deflate("a\1\1\1A\1\1\1")), plain},
         {eight + "/Filter [/LZWDecode /Fl]", Deflate("abcdABCD"), plain},  // the first one is skipped
         {eight + "/Filter /RunLengthDecode", "\7abcdABCD\x80", plain},
         {eight + "/Filter /RL", "\7abcdABCD\x80", "no"},
         {eight + "/Filter [/Fl /Fl /Fl]", Deflate("abcd"), "no"},
         {"/Filter /CCITTFaxDecode /DecodeParms <</K -1>>", fax, "4x2 k0 inverted | 0-3 | 0-3"},
         {"/Filter /CCF /DecodeParms <</K -1 /BlackIs1 true /EncodedByteAlign true>>", "\x26\xAC\xC0\0\x10\x01"s,
          "4x2 k0 | 0-3 | 0-3"},
         {eight + "/Filter /CCF /DecodeParms <</K -1>>", fax, "no"},
         {"/Filter /JBIG2Decode", "damaged", "4x2 k0 inverted | |"},
         {eight + "/Filter /JPXDecode", "damaged", "4x2 k4 | 000000000000000000000000 | 000000000000000000000000"},
         {"/Filter /DCTDecode /ColorSpace /DeviceGray", Jpeg(4, 2, 1, 100, letter), "4x2 k2 p010101 | aaaa | aaaa"},
         {"/Filter /DCT", Jpeg(5, 1, 3, 100, letter),
          "4x2 k4 | aaaaaaaaaaaa | 000000000000000000000000"},  // wider than told
         {"/Filter [/A85 /DCT]", "damaged", "no"}});
  EXPECT_EQ(Shown("/Width 4 /Height 2 /Filter /JBIG2Decode", "damaged", false), "no");
}

TEST(Image, MasksChangeTheKind) {
  const std::string rgb = "/Width 4 /Height 2 /BitsPerComponent 8 /ColorSpace /DeviceRGB ",
                    pixels = "abcdefghijklABCDEFGHIJKL";
  const std::string gray = "/Width 4 /Height 2 /BitsPerComponent 8 /ColorSpace /DeviceGray ";
  const std::string plain = "4x2 k4 | abcdefghijkl | ABCDEFGHIJKL";
  const std::string masked = "4x2 k5 | abc00defFFghi00jklFF | ABCFFDEFFFGHIFFJKLFF";
  Check("",
        {{rgb + "/Mask 20 0 R", pixels, plain},  // hides nothing
         {rgb + "/Mask 21 0 R", pixels, masked},
         {rgb + "/SMask 24 0 R", pixels, "4x2 k5 | abcFFdef00ghiFFjkl00 | ABC00DEF00GHI00JKL00"},
         {rgb + "/SMask 25 0 R", pixels, plain},  // of 8 bits: not used
         {rgb + "/Mask 22 0 R", pixels,
          "8x4 k5 | abc00abc00def00def00ghiFFghiFFjklFFjklFF | abc00abc00def00def00ghi00ghi00jkl00jkl00"
          " | ABC00ABC00DEF00DEF00GHI00GHI00JKL00JKL00 | ABCFFABCFFDEFFFDEFFFGHIFFGHIFFJKLFFJKLFF"},
         {gray + "/Mask 21 0 R", "abcdABCD", "4x2 k2 p010101 x255 | aFFcFF | FFFFFFFF"},
         {"/Width 4 /Height 2 /BitsPerComponent 1 /Mask 21 0 R", "\xFF\xFF", "4x2 k0 inverted | 1-1 3-3 | 0-3"},
         {"/Width 4 /Height 2 /ColorSpace /DeviceGray /BitsPerComponent 1 /Mask 27 0 R", "\xFF\xFF",
          "4x2 k0 | 1-1 3-3 | 0-3"},
         {"/Width 4 /Height 2 /BitsPerComponent 1 /ColorSpace /DeviceGray /SMask 24 0 R", "\xFF\xFF",
          "4x2 k0 | 1-1 3-3 | 0-3"},
         {rgb + "/Mask 26 0 R", pixels, "1x4 k5 | abcFF | abc00 | ABCFF | ABC00"},
         // Coarser than its image, of which it takes every second pixel.
         {"/Width 4 /Height 4 /BitsPerComponent 8 /ColorSpace /DeviceGray /Mask 28 0 R", "abcdefghijklmnop",
          "2x2 k2 p010101 x255 | aFF | FFk"},
         {"/Width 1 /Height 3 /BitsPerComponent 1", "\x80\0\x80"s, "3x1 k0 | 0-0 2-2"},  // turned
         {"/Width 150 /Height 2 /BitsPerComponent 1",
          std::string(8, '\xFF') + "\x80\x01" + std::string(8, '\0') + "\4" + std::string(16, '\0') + "\x3F\xFF\xFC",
          "150x2 k0 | 0-64 79-79 149-149 | 130-149"}});
}

TEST(Image, StripesShowAsOne) {
  EXPECT_EQ(Shown("", "33"), "no");  // goes round in a circle
  // Nested; the first one tells width and kind. One that is turned fits, another kind or width is blank.
  EXPECT_EQ(Shown("", "35"), "4x11 k0 inverted | 0-3 | 0-3 | 0-0 2-2 | | | | | | | 1-1 3-3 | 0-3");
}

TEST(Image, StandsWhereItsMatrixSays) {
  const struct {
    Affine matrix;
    uint32_t width, height;
    const char *expected;  // place, angle, scales, resolution
  } cases[] = {{{72, 0, 0, 144, 72, 36}, 100, 100, "25.4 12.7 0 0.5 1 50"},
               {{0, 72, -72, 0, 0, 0}, 100, 50, "0 0 1.5708 0.5 1 50"},
               {{7200, 0, 0, 7200, 0, 0}, 99, 99, "0 0 0 1.0101 1.0101 1"},
               {{1e300, 0, 0, 1e-300, HUGE_VAL, 0}, 1, 1, "0 0 0 1e+300 1e-300 72"}};
  for (const auto &c : cases) {
    const Placement p = PlaceImage(c.matrix, c.width, c.height);
    char text[200];
    std::snprintf(text, sizeof text, "%g %g %g %g %g %u", p.x, p.y, p.angle, p.scaleX, p.scaleY, p.dpi);
    EXPECT_STREQ(text, c.expected);
  }
  EXPECT_EQ(PlaceInlineImage({7200, 0, 0, 7200, 0, 0}, 99, 99).dpi, 0u);  // cut and not rounded
}

// "components count: entries 0, 1, 2 and the last", or what is missing of it.
std::string ShownSpace(const std::string &value) {
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
          .Stream(18, "", "abcdef")
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
    text += " " + Text(palette->entries[i]);
  }
  const uint32_t packed = space.Convert(0.5);
  return text + " " + Text({uint8_t(packed), uint8_t(packed >> 8), uint8_t(packed >> 16)});
}

TEST(ColorSpace, TellsComponentsAndPalette) {
  const std::string ramp = " 256: 000000 010101 020202 FFFFFF 7F7F7F";
  const std::pair<const char *, std::string> cases[] = {
      {"/DeviceGray", "2" + ramp},
      {"[/Lab <<>>]", "no"},
      {"[/ICCBased 12 0 R]", "2" + ramp},  // the alternate space wins
      {"[/ICCBased 13 0 R]", "2" + ramp},
      {"[/ICCBased 14 0 R]", "-1"},
      {"[/Indexed /DeviceRGB 1 <000000FFFFFF>]", "0 2: 000000 FFFFFF 000000"},
      {"[/Indexed /DeviceGray 2 (ab)]", "1 3: 616161 626262 000000 616161"},
      {"[/Indexed 11 0 R 1 <FF00000080000080>]", "0 2: 00FFFF 3F7F7F 00FFFF"},
      {"[/Indexed [/ICCBased 15 0 R] 1 16 0 R]", "0 2: 616263 646566 616263"},  // three bytes, whatever the profile has
      {"[/Indexed /DeviceRGB 2 16 0 R]", "1"},                                  // a short table
      {"[/Indexed /DeviceRGB 2 18 0 R]", "1"},
      {"[/Indexed /DeviceRGB 1 18 0 R]", "0 2: 616263 646566 616263"},
      {"[/Indexed /DeviceGray 70000 <FEFF0102>]", "1 256: FEFEFE FFFFFF 010101 000000 FEFEFE"},
      {"[/Indexed /DeviceGray -5 <07>]", "1 1: 070707 070707"},
      {"[/Separation /Spot /DeviceCMYK 17 0 R]", "1 2: 00FBFA 3F7D7D 00FBFA"},
      {"[/Separation /Spot /DeviceCMYK 19 0 R]", "1 256: FFFFFF FEFEFE FDFDFD 000000 808080"},
      {"[/Separation /Spot /DeviceRGB 21 0 R]", "1 256: 616263 000000 000000 000000 000000"},
  };
  for (const auto &[value, expected] : cases) EXPECT_EQ(ShownSpace(value), expected) << value;
  EXPECT_EQ(DefaultPalette()->entries[20 + 36 + 12 + 3].green, 2 * 51);
  EXPECT_EQ(DefaultPalette()->entries[255].blue, 228);
}

}  // namespace
}  // namespace kapdf::test
