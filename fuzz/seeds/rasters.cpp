// Pages of images: content and objects as fuzz_raster takes them.
#include "seeds/seeds.h"
#include "support/jpeg.h"
#include "support/pdf_builder.h"

namespace kapdf::fuzz {
namespace {

std::string Page(char table, std::string_view content, std::initializer_list<std::string> objects) {
  std::string page = table + std::string(content);
  for (const std::string &object : objects) page.append("\n====\n").append(object);
  return page;
}

std::string Image(std::string_view entries, std::string_view data) {
  return "<</Subtype /Image " + std::string(entries) + "\n" + std::string(data);
}

}  // namespace

void AddRasters(SeedFolder &folder) {
  using namespace std::string_literals;
  const auto jpeg = [](uint32_t components) {
    return test::Jpeg(8, 9, components, 75, [](uint32_t i) { return i * i >> 2; });
  };
  const std::string draw =
      "q 80 0 0 90 1 2 cm /X10 Do Q 0 40 -40 0 0 0 cm /X11 Do /X12 Do\n/X13 Do /X14 Do 1 g /X15 Do";
  const std::string size = "/Width 4 /Height 2 /BitsPerComponent ", rgb = "0123456789abcdefghijklmn";
  folder.Add(
      "samples",
      Page('0', draw,
           {Image(size + "1 /ImageMask true", "\xA0\x50"), Image(size + "8 /ColorSpace /DeviceGray", rgb),
            Image(size + "8 /ColorSpace /DeviceRGB /Mask 10 0 R", rgb),
            Image(size + "8 /ColorSpace /DeviceCMYK /SMask 14 0 R", rgb),
            Image(size + "1 /ColorSpace /DeviceGray /Matte [1 2 3]", "\xA0\x50"),
            Image(size + "4 /ColorSpace [/Indexed /DeviceRGB 15 16 0 R] /Mask [3 5]", rgb), "<<\n" + rgb + rgb}));
  folder.Add("filters", Page('0', draw,
                             {Image(size + "1 /Filter /CCITTFaxDecode /DecodeParms <</K -1>>", "\x26\xA0\x10\x01"),
                              Image(size + "8 /Filter [/A85 /FlateDecode]", "Gar8O8SDlP!!!!~>"),
                              Image(size + "8 /Filter /RunLengthDecode", "\x3"s + rgb + "\x80"),
                              Image(size + "8 /ColorSpace /DeviceRGB /Filter /DCTDecode", jpeg(3)),
                              Image(size + "8 /Filter [/Fl /DCT] /Mask 11 0 R", test::Deflate(jpeg(1))),
                              Image(size + "8 /Filter /Fl /DecodeParms <</Predictor 15>>", test::Deflate(rgb))}));
  folder.Add("spaces", Page('0', "/X10 cs .5 sc 0 0 9 9 re f /X12 CS .2 SC 0 0 m 9 9 l S " + draw,
                            {Image(size + "8 /ColorSpace [/Separation /A /DeviceCMYK 14 0 R]", rgb),
                             Image(size + "8 /ColorSpace [/ICCBased 15 0 R]", rgb),
                             "[/Separation /A /DeviceRGB 16 0 R]", "[/Indexed [/ICCBased 15 0 R] 1 <000000FFFFFF>]",
                             "<</FunctionType 0 /Range [0 1 0 1 0 1 0 1] /Size [4]\n" + rgb, "<</N 1\n",
                             "<</FunctionType 4\n{}"}));
  folder.Add("stripes",
             Page('1', draw, {Image(size + "1", "\xA0\x50"), "<</A 12 0 R /B 10 0 R>>", Image(size + "8", rgb)}));
  folder.Add(
      "forms",
      Page('0', "/X10 Do 0 0 m 5 5 l S",
           {"<</Subtype /Form /Matrix [2 0 0 2 1 1] /Resources <</XObject <</A 11 0 R /B 10 0 R>> >>\n/A Do /B Do",
            Image("/Width 1 /Height 9 /BitsPerComponent 8", rgb)}));
  folder.Add(
      "inline",
      Page(
          '0',
          "BI /W 4 /H 2 /BPC 8 /CS /G ID 01234567 EI q 9 0 0 9 0 0 cm\nBI\n/W 4/H 2/IM true/D[1 0]\nID\nab\nEI\n"
          "BI /W 2 /H 1 /BPC 8 /CS [/Indexed /RGB 1 (abcdef)] /F /AHx ID 0001> EI\n"
          "BI /W 4 /H 2 /F /CCF /DP <</K -1 /Columns 4>> ID \x26\xA0 EI Q BI /W 2 /H 2 /CS /X10 /F [/A85 /Fl] ID ~> EI",
          {"[/ICCBased 11 0 R]", "<</N 3\n"}));
}

}  // namespace kapdf::fuzz
