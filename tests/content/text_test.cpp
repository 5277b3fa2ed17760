// Runs of text and layers. Fonts without a size in the system: their letters are 1/1.4 of the font size high.
#include <gtest/gtest.h>

#include "drawing.h"

namespace kapdf::test {
namespace {

// Every letter of /F is 0.5 em wide, the blank 0.25; /G has none of this and is told by ToUnicode.
const std::vector<std::string> kObjects = {
    "<</Type/Font/Subtype/Type1/BaseFont/NoSuchFace/FirstChar 32/LastChar 70/Widths[250"
    " 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 500 500 500 500 500 500]>>",
    "<</Type/OCG/Name(One)>>", "<</Type/OCG/Name<FEFF004F03A9>>>",
    "<</Type/Font/Subtype/Type1/BaseFont/Differs/Encoding<</Differences[65/Z]>>>>"};

std::string Shown(const std::string &content) {
  const std::string entries = std::string(kLetter) +
                              " /Resources <</Font<</F 100 0 R/H 100 0 R/D 103 0 R>>"
                              "/Properties<</L1 101 0 R/L2 102 0 R/L3 (x)>>>>";
  return Joined(ReadPage(PageBytes({content}, entries, kObjects))) + "\n";
}

// What the content shows behind "BT /F 10 Tf" at 0,0, without the font's definition; height and width factor only
// where they are not those of 10 points.
std::string Runs(const std::string &content) {
  std::string lines = Shown("BT /F 10 Tf " + content + " ET");
  const std::string font = "font NoSuchFace\n", usual = " h7.143 w1 a0";
  EXPECT_EQ(lines.substr(0, font.size()), font) << content;
  lines.erase(0, font.size());
  for (size_t at; (at = lines.find(usual)) != std::string::npos;) lines.erase(at, usual.size());
  if (lines == "\n") lines.clear();
  for (size_t at; (at = lines.find("text 256 ")) != std::string::npos;) lines.erase(at, 9);
  return lines;
}

TEST(Text, Runs) {
  const struct {
    const char *content, *runs;
  } cases[] = {
      {"(AB) Tj", "'AB' 0,0\n"},
      {"5 7 Td (AB) Tj (C) Tj", "'AB' 5,7\n'C' 15,7\n"},
      {"[(AB) -100 (CD)] TJ", "'ABCD' 0,0\n"},  // a small kern stays inside
      {"[(AB) -1000 (CD)] TJ (E)Tj", "'AB' 0,0\n'CD' 20,0\n'E' 30,0\n"},
      {"[(AB)(C)-300 ] TJ (D) Tj", "'ABC' 0,0\n'D' 18,0\n"},  // a kern behind the last string counts, too
      {"[ -2000 (A)] TJ", "'A' 0,0\n"},                       // nothing counts ahead of the first string
      {"(  AB) Tj", "'AB' 5,0\n"},                            // blanks move the pen
      {"(A B) Tj", "'A B' 0,0\n"},
      {"2 Tw (A B) Tj", "'A' 0,0\n'B' 9.5,0\n"},  // wide ones cut
      {"0.5 Tw (A B) Tj (C) Tj", "'A B' 0,0\n'C' 13,0\n"},
      {"3 Tc (AB) Tj", "'A' 0,0\n'B' 8,0\n"},
      {"12 TL 1 32 Td (A) Tj T* (B) Tj (C) '", "'A' 1,32\n'B' 1,20\n'C' 1,8\n"},
      {"0 9 Td 0 -4 TD (A) Tj T* (B) Tj", "'A' 0,5\n'B' 0,1\n"},
      {"10 TL 0 12 Td 3 0 (AB) \"", "'AB' 0,2\n"},
      {"(\\101\\(\\)B\\\\) Tj", "'A()B\\' 0,0\n"},  // escapes
      {"<41 4 2> Tj <4> Tj", "'AB' 0,0\n'@' 10,0\n"},
      {"[<41>-2000(B)]TJ", "'A' 0,0\n'B' 25,0\n"},
      {"(AB", ""},
      {"(A(B)) Tj", "'A(B' 0,0\n"},  // nesting is not tracked
      {"50 Tz (AB) Tj (C) Tj", "'AB' 0,0 h7.143 w0.5 a0\n'C' 5,0 h7.143 w0.5 a0\n"},
      {"2 0 0 4 1 2 Tm (A) Tj (B) Tj", "'A' 1,2 h28.571 w0.5 a0\n'B' 11,2 h28.571 w0.5 a0\n"},
      {"0 1 -1 0 5 5 Tm (A) Tj (B) Tj", "'A' 5,5 h7.143 w1 a1.571\n'B' 5,10 h7.143 w1 a1.571\n"},
      {"700 0 Td (A) Tj 1 1 Td (B) Tj", ""},  // outside the sheet
      {"3 Tr (A) Tj (B) Tj", "layer PDF_HiddenText\n'A' 0,0 @PDF_HiddenText\n'B' 5,0 @PDF_HiddenText\n"},
      {"/H 20 Tf (A) Tj", "font NoSuchFace\n'A' 0,0 h14.286 w1 a0\n"},  // told once for each name
      {"/F 20 Tf /None 10 Tf (A) Tj (B) Tj", "'A' 0,0\n'B' 5,0\n"},
      {"q 9 0 0 9 0 0 cm 0 0 m 5 5 l S (A) Tj", "'A' 0,0\n"},  // nothing else acts in a text object
  };
  for (const auto &c : cases) EXPECT_EQ(Runs(c.content), c.runs) << c.content;
}

TEST(Text, WithoutAFontAndBetweenTextObjects) {
  EXPECT_EQ(Shown("BT 0 0 Td (AB) Tj (C) Tj ET"), "text 256 'AB' 0,0 h0.714 w1 a0\ntext 256 'C' 1,0 h0.714 w1 a0\n");
  EXPECT_EQ(Shown("/F 10 Tf 1 0 0 rg q 2 0 0 2 0 0 cm BT (A) Tj ET Q ET BT 1 1 1 rg (B) Tj ET"),
            "font NoSuchFace\ntext #FF0000 'A' 0,0 h14.286 w1 a0\ntext 255 'B' 0,0 h7.143 w1 a0\n");
  // Bytes are decoded by the font that Q brings back, and drawn by the one selected last.
  EXPECT_EQ(Shown("/D 10 Tf q /F 10 Tf Q BT (A) Tj ET"),
            "font Differs\nfont NoSuchFace\ntext 256 'Z' 0,0 h7.143 w1 a0\n");
}

TEST(MarkedContent, NamesTheLayerOfWhatIsInside) {
  const struct {
    const char *content, *drawn;
  } cases[] = {
      {"/OC /L1 BDC %EMC %", "layer One\n% @One\n%\n"},
      {"/OC /L1 BDC %EMC /OC/L1 BDC %", "layer One\n% @One\n% @One\n"},  // told once
      {"1 0 0 RG /OC /L2 BDC %", "layer O\xA9\n% @O\xA9\n"},
      {"/OC /L1 BDC /OC /None BDC %", "layer One\n%\n"},
      {"/OC /L3 BDC %", "%\n"},
      {"/OC /L1 BDC /Span <</X 1>> BDC %EMC %", "layer One\n% @One\n%\n"},  // one level
      {"/OC /L1 BDC BMC EMC BT (A) Tj ET %", "layer One\n*%\n"},
  };
  for (const auto &c : cases) {
    const auto filled = [](std::string text, const std::string &line) {
      for (size_t at; (at = text.find('%')) != std::string::npos;) text.replace(at, 1, line);
      if (const size_t at = text.find('*'); at != std::string::npos)
        text.replace(at, 1, "text 256 'A' 0,0 h0.714 w1 a0\n");
      return text;
    };
    const std::string color = c.content[0] == '1' ? "#FF0000" : "256";
    EXPECT_EQ(Shown(filled(c.content, "0 0 m 9 0 l S ")), filled(c.drawn, "line " + color + " w1 0,0 9,0"))
        << c.content;
  }
}

}  // namespace
}  // namespace kapdf::test
