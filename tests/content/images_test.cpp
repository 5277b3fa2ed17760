// Images and forms of a page, with the rows of every image.
#include <gtest/gtest.h>

#include "drawing.h"
#include "io/codec_lzw.h"
#include "io/memory_file.h"
#include "platform/settings.h"
#include "support/pdf_builder.h"

namespace kapdf::test {
namespace {

using namespace std::string_literals;

std::string Stream(const std::string &entries, const std::string &data) {
  return "<<" + entries + " /Length " + std::to_string(data.size()) + ">>stream\n" + data + "\nendstream";
}

std::string DrawnWith(const std::vector<std::string> &streams, const std::string &resources) {
  const std::string image = "/Subtype /Image ",
                    two = image + "/Width 2 /Height 1 /BitsPerComponent 8 /ColorSpace /DeviceGray";
  const std::string bits = image + "/Width 8 /Height 2 /BitsPerComponent 1", form = "/Subtype /Form ";
  return Joined(ReadPage(PageBytes(
      streams, std::string(kLetter) + " /Resources <<" + resources + ">>",
      {Stream(two, "ab"), Stream(two, "cd"), Stream(bits, "\xFF\xFF"), Stream(bits, "\0\0"s),
       Stream(bits + " /ImageMask true", "\x0F\x0F"),
       Stream(form + "/Matrix [2 0 0 2 10 20] /Resources <</XObject <</A 101 0 R /G 106 0 R /F 105 "
                     "0 R>> /ExtGState <</E 108 0 R>> >>",
              "/E gs /F Do /A Do /G Do 0 0 1 1 re f"),
       Stream(form + "/Resources <</XObject <</F 105 0 R /S 102 0 R>> >>", "/F Do /S Do /Full Do 5 w 0 0 m 1 1 l S"),
       "<</A 100 0 R /B 101 0 R>>", "<</ca .5 /LW 1>>", Stream(form, "1 0 0 rg 0 0 1 1 re f"),
       Stream(form + "/Filter /No", "f"), "[/Indexed /DeviceRGB 3 <FF0000 00FF00 0000FF 000000>]",
       "[/ICCBased 113 0 R]", Stream("/Alternate /DeviceGray", "-"), Stream(two + " /Mask 115 0 R", "ef"),
       "<</Broken true /R 107 0 R>>", Stream(form, "2 w q 3 w"),
       Stream(image + "/Width 1 /Height 4 /ImageMask true /BitsPerComponent 1", "\0\0\0\0"s),
       Stream(form, "BT 30 Tz")})));
}

struct Case {
  std::string content, expected;
};

void Check(const std::string &resources, const std::vector<Case> &cases) {
  for (const Case &c : cases) EXPECT_EQ(DrawnWith({c.content}, resources), c.expected) << c.content;
}

TEST(XObjects, AreFoundEnteredAndAnnounced) {
  const std::string line = "line 256 w1 0,0 9,9";
  const auto forms = [&](const std::string &opacity) {
    return "A #100 10,20 0 o" + opacity + " 2x1@36 k1 | cd\nfill 256 w0 o" + opacity +
           " 10,20 12,20 12,22 10,22\nFull #100 10,20 0 o" + opacity +
           " 8x2@72 k0 | 0-7 | 0-7\nline 256 w10 10,20 12,22\nfill 256 w2 o" + opacity +
           " 10,20 10,22 12,22 12,20 10,20";
  };
  Check(
      "/XObject <</A 100 0 R /F 105 0 R /Q 116 0 R /Full 102 0 R /Blank 103 0 R /M 104 0 R /R 109 0 R /No 110 0 R "
      "/P 114 0 R /T 117 0 R /B 118 0 R>> /ExtGState <</E 108 0 R>>",
      {{"q 72 0 0 36 5 6 cm /A Do Q", "A #100 5,6 0 o100 2x1@2 k1 | ab"},
       {"0 72 -72 0 5 6 cm /E gs /A Do", "A #100 5,6 90 o50 2x1@1 k1 | ab"},
       {"1 g /A Do /M Do", "A #100 0,0 0 o100 2x1@72 k1 | ab\nM #FF 0,0 0 o100 8x2@144 k0 inverted | 4-7 | 4-7"},
       // What stands behind on the line is drawn behind, however it was written.
       {"/R Do 0 0 m 9 9 l S %% and 5 5 m 6 6 l S", "fill #FF0000 w1 o100 0,0 0,1 1,1 1,0 0,0\n" + line},
       {"/R Do 0 0\0\nm\0 9 9 l S"s, "fill #FF0000 w1 o100 0,0 0,1 1,1 1,0 0,0\n" + line},
       // Forms: the state comes back, alphas are multiplied, and none draws itself. Those of the page have no solids.
       {"/F Do 0 0 m 9 9 l S", forms("50") + "\n" + line},
       {"/E gs /F Do", forms("25")},
       {"0 J\n1 Do\n1 gs\n1 cs\n1 CS\n1 d\n1 BDC\n1 Tf\n0 0 m 9 9 l S BT 1 Tj 1 TJ 1 ' 1 \" ET",
        line},                                                        // numbers where names belong
       {"/Q Do 0 0 m 9 9 l S", "line 256 w2 0,0 9,9"},                // of what a form leaves open one state comes back
       {"50 Tz /B Do (A) Tj ET", "text 256 'A' 0,0 h0.714 w0.5 a0"},  // also in the text object that it left open
       {"4 0 0 2 1 2 cm 1 g /Full Do /Blank Do", "fill 255 w0 o100 1,2 5,2 5,4 1,4"},
       {"0 4 -2 0 5 2 cm 1 g /Full Do", "fill 255 w0 o100 5,2 5,6 3,6 3,2"},
       {"2 0 0 8 5 6 cm 1 g /T Do", "fill 255 w0 o100 5,14 5,6 7,6 7,14"}});  // one pixel wide: turned
}

TEST(XObjects, BehindAReferenceAreImagesOrStripes) {
  const platform::Settings settings(u"Software\\kaPDF-tests", u"\\PDF");
  const std::string content = "9 0 0 9 0 0 cm /A Do 1 0 0 1 0 1 cm /B Do", table = "/XObject 107 0 R";
  EXPECT_EQ(DrawnWith({content}, table), "A #100 0,0 0 o100 2x1@8 k1 | ab\nB #100 0,9 0 o100 2x1@8 k1 | cd");
  ASSERT_TRUE(settings.WriteInteger(u"CombineStripes", 1));
  EXPECT_EQ(DrawnWith({content}, table), "B #100 0,9 0 o100 2x2@8 k1 | cd | ab");  // from the upper one on
  EXPECT_EQ(DrawnWith({"/A Do"}, table), "");
  ASSERT_TRUE(settings.RemoveKey());
}

TEST(InlineImages, AreReadInEveryForm) {
  const std::string at = " #100 0,0 0 o100 ", one = "InlineImage0" + at, gray = one + "2x2@72 k1 | ab | cd";
  const std::string line = "\nline 256 w1 0,0 9,9", draw = "\n0 0 m 9 9 l S", eight = "/W 2/H 2/BPC 8/CS/G";
  std::string letters;  // more codes than have nine bits
  for (int i = 0; i < 600; ++i) letters += static_cast<char>('a' + i * 7919 % 601 * i % 26);
  CZVMemoryFileFlat lzwBytes;
  CZVLzw late(lzwBytes, 0, CodecMode::kEncode);
  late.SetEarlyChange(false);
  late.Write(letters.data(), letters.size());
  ASSERT_TRUE(late.flush());
  const std::string lzw(lzwBytes.bytes().begin(), lzwBytes.bytes().end());
  Check(
      "/ColorSpace <</CS0 111 0 R /CS1 112 0 R>>",
      {{"q 2 0 0 2 0 0 cm BI /W 2 /H 2 /BPC 8 /CS /G ID abcd EI Q" + draw, gray + line},
       {"q 2 0 0 2 0 0 cm\nBI\n/Width 2\n/Height 2\n/BitsPerComponent 8\n/ColorSpace /DeviceGray\nID\n\r abcd\nEI\nQ" +
            draw,
        gray + line},
       {"2 0 0 2 0 0 cm BI" + eight + " ID abcdEI", gray},  // no white space before the end
       {"2 0 0 2 0 0 cm BI\n/W\t2\t/H \t2\n/BPC\t8\t/CS\t/G\nID abcd\nEI", gray},
       {"2 0 0 2 0 0 cm BI" + eight + "/F[/AHx] ID 6162 6364> EI", gray},
       {"2 0 0 2 0 0 cm BI" + eight + "/F/A85 ID @:E_W~> EI", gray},
       {"2 0 0 2 0 0 cm BI" + eight + "/F[/A85/Fl] ID GhPea8ksAJEcqH`%%%*]~> EI", gray},
       {"BI/W 600/H 1/BPC 8/CS/G/F/LZW/DP<</EarlyChange 0>> ID " + lzw + " EI", one + "600x1@72 k1 | " + letters},
       {"2 0 0 2 0 0 cm BI" + eight + "/F/Fl/DP<</Predictor 2/Columns 2>> ID " + Deflate("a\1c\1") + " EI", gray},
       {"2 0 0 2 0 0 cm\nBI\n" + eight + "\nID\na\\\nbcd\nEI", gray},  // a backslash and a line end are no data
       {"q 2 0 0 2 0 0 cm BI" + eight + " ID \nabcd EI Q" + draw, gray + line},  // data behind the line
       // A line that "ID" starts goes on up to a line end with "EI" behind it. Without one a blank will do.
       {"BI\n/W 6/H 1/BPC 8/CS/G\nID a EI\n\nEI Q" + draw, one + "6x1@72 k1 | a20EI0A00" + line},
       {"BI\n/W 2/H 1/BPC 8/CS/G\nID ab EI Q" + draw, one + "2x1@72 k1 | ab" + line},
       {"BI/W 2/H 1/BPC 8/CS/G ID \0\0\nEI Q"s + draw, one + "2x1@72 k1 | 0000" + line},
       {"BI/W 4/H 1/BPC 8/CS/G ID \0%% Q\nEI Q"s + draw, one + "4x1@72 k1 | 00252520" + line},
       {"BI/W 6/H 1/BPC 8/CS/G ID \0\0EI\n\r\nEI"s, one + "6x1@72 k1 | 0000EI0A0D"},
       {"BI/W 8/H 1/IM true ID \x0F EI", one + "8x1@72 k0 inverted | 4-7"},
       {"BI/W 8/H 1/BPC 1/CS/G/D[1\n0] ID \x0F EI", one + "8x1@72 k0 | 4-7"},
       {"BI/W 8/H 1/IM true/F/CCF/DP<</K -1/Columns 8>> ID \x80 EI", one + "8x1@72 k0 |"},
       {"BI/W 1/H 1/BPC 8/CS/CMYK ID \0\0\0\xFF EI"s, one + "1x1@72 k5 | 00000000"},
       {"BI/W 4/H 1/BPC 2/CS[/Indexed/DeviceRGB 3 (a\0]\nEI q Q\n)]/I true ID \x1B EI"s, one + "4x1@72 k2 | 00010203"},
       {"BI/W 2/H 1/BPC 8/CS/CS1 ID ab EI", one + "2x1@72 k2 | ab"},
       {"BI/W 0/H 1 ID x EI" + draw, line.substr(1)},
       {"BI/W 1/H 1/BPC 8/CS/G ID a EI BI/W 1/H 1/BPC 8/CS/G ID b EI",
        one + "1x1@72 k1 | a\nInlineImage1" + at + "1x1@72 k1 | b"}});
  for (const size_t cut : {19u, 25u, 30u, 37u, 44u, 46u, 47u, 52u, 54u, 55u, 56u}) {
    const std::string whole = "q 2 0 0 2 0 0 cm\nBI /W 2 /H 2 /BPC 8 /CS /G ID abcd EI Q" + draw;
    EXPECT_EQ(DrawnWith({whole.substr(0, cut), whole.substr(cut)}, ""), gray + line) << cut;
  }
}

TEST(ColorSpaces, OfTheResourcesColourPaths) {
  const std::string area = " 0 0 1 1 re f", points = " w1 o100 0,0 0,1 1,1 1,0 0,0";
  const std::string way = " 0 0 m 9 9 l S", way1 = " w1 0,0 9,9";
  Check("/ColorSpace <</I 111 0 R /G 112 0 R /S [/Separation /A /DeviceCMYK 99 0 R]>>",
        {{"/I cs 1 sc" + area, "fill #00FF00" + points},
         {"/I cs 99.5 scn" + area, "fill #000000" + points},  // black stays a plain colour
         {"/G cs .5 sc" + area, "fill #7F7F7F" + points},
         {"/G CS .5 SC" + way, "line #7F7F7F" + way1},
         {"/S cs 0 1 1 0 scn" + area, "fill #FF0000" + points}});
}

}  // namespace
}  // namespace kapdf::test
