// How content is cut into statements in extended reading.
#include <gtest/gtest.h>

#include "base/name_text.h"
#include "drawing.h"

namespace kapdf::test {
namespace {

InterpreterSettings Extended() {
  InterpreterSettings settings;
  settings.rules = kExtendedReading;
  return settings;
}

std::string Lexed(const std::vector<std::string> &streams, std::string_view entries = kLetter,
                  const std::vector<std::string> &more = {}) {
  return Joined(ReadPage(PageBytes(streams, entries, more), Extended()));
}

struct Case {
  std::string content, drawn;
};

TEST(Lexed, StatementsAreThoseOfTheFormat) {
  const std::string line = "line 256 w1 0,0 10,10";
  const Case cases[] = {
      {"0 0 m 10 10 l S", line},
      {std::string("0 0\tm\f10 10 l\0S", 16), line},
      {"0\n0\nm 10\r\n10 l\rS", line},
      {"0 0 m % 5 5 l S\n10 10 l %x\rS", line},
      {"0 0 m%x\n10 10 l S", line},
      {"0 0 m +10. ++10 l S", line},
      {"20 20 m --10 30 l 30 30 l S", "line 256 w1 20,20 30,30"},  // the first sign counts: off the page
      {"0 0 m 10.0.7 1-0 l S", line},
      {"0 0 m 10 10 l unknown S", line},
      {"0 0 m 1 2 unknown 10 10 l S", line},
      {"BX 1 2 xyz EX 0 0 m 10 10 l S", line},
      {"(a(b)S\\) Q 1 w) x 0 0 m 10 10 l S", line},
      {"<</A [(>>) <3E> /B true]>> x 0 0 m 10 10 l S ] > ) }", line},
      {"/Span <</ActualText (x)>> BDC 0 0 m 10 10 l S EMC", line},
      {"BT 2 0 0 2 0 0 cm 0 0 m 5 5 l S ET", "line 256 w2 0,0 10,10"},
      {"q BT Q q 0 0 m 10 10 l S ET", line},
      {"0 0 m 10 10 l", ""},
      {"0 0 m 10 10 l [ (a S", ""},
  };
  for (const Case &c : cases) {
    EXPECT_EQ(Lexed({c.content}), c.drawn) << c.content;
  }
}

TEST(Lexed, GoOnInTheNextStream) {
  const std::string line = "line 256 w1 0,0 10,10";
  EXPECT_EQ(Lexed({"0 0 m 10", "10 l", "S"}), line);
  EXPECT_EQ(Lexed({"0 0 m 10 10 ", "l S q 1", " 0 0 1 0 0 cm Q"}), line);
}

// Strings with zeros, nested parentheses and every escape reach the font as they are.
TEST(Lexed, StringsKeepTheirBytes) {
  const std::string font = std::string(kLetter) + " /Resources <</Font <</F 100 0 R>> >>";
  const std::vector<std::string> objects = {
      "<</Type /Font /Subtype /Type0 /BaseFont /X /Encoding /Identity-H /DescendantFonts [101 0 R]>>",
      "<</Type /Font /Subtype /CIDFontType2 /BaseFont /X /DW 1000 /CIDSystemInfo <</Registry (Adobe) /Ordering "
      "(Identity) /Supplement 0>> >>"};
  const auto text = [&](const std::string &string) {
    const std::string drawn = Lexed({"/F 10 Tf BT 1 0 0 1 20 20 Tm " + string + " ET"}, font, objects);
    const size_t from = drawn.find('\''), to = drawn.find('\'', from + 1);
    return from == std::string::npos ? drawn : drawn.substr(from + 1, to - from - 1);
  };
  EXPECT_EQ(text(std::string("(\0A\0(\0A\0)) Tj", 13)), "A(A)");
  EXPECT_EQ(text(std::string("(\0A\0\\() Tj", 10)), "A(");
  EXPECT_EQ(text(std::string("[(\0A)(\0\\))] TJ", 14)), "A)");
  EXPECT_EQ(text("(\\000A\\0A\\000\\050) Tj"), "AA(");
  EXPECT_EQ(text("<00 41\n0028> Tj"), "A(");
  EXPECT_EQ(text(std::string("(\0\\\nA) Tj % (\n", 15)), "A");
}

TEST(Lexed, NamesHaveOneSpelling) {
  const std::string longName(200, 'n');
  for (const auto &[written, defined] : {std::pair<std::string, std::string>{"/G#53", "/GS"},
                                         {"/" + longName, "/" + SpellName(longName)},
                                         {"/a#20b", "/a#20b"}}) {
    const std::string entries = std::string(kLetter) + " /Resources <</ExtGState <<" + defined + " 100 0 R>> >>";
    EXPECT_EQ(Lexed({written + " gs 0 0 m 10 10 l S"}, entries, {"<</LW 4>>"}), "line 256 w4 0,0 10,10") << written;
  }
}

TEST(Lexed, MarkedContentNests) {
  const std::string entries =
      std::string(kLetter) + " /Resources <</Properties <</A 100 0 R /B 101 0 R>> /XObject <</X 102 0 R>> >>";
  const std::vector<std::string> objects = {
      "<</Type /OCG /Name (One)>>", "<</Type /OCG /Name (Two)>>",
      "<</Subtype /Form /Length 31>>\nstream\n/P BMC /Q BMC 0 0 m 4 4 l S EMC\nendstream"};
  const std::string drawn =
      Lexed({"/OC /A BDC /P BMC 0 0 m 1 1 l S EMC 0 0 m 2 2 l S /OC /B BDC 0 0 m 3 3 l S EMC /X Do "
             "0 0 m 5 5 l S EMC EMC 0 0 m 6 6 l S"},
            entries, objects);
  EXPECT_EQ(drawn,
            "layer One\nline 256 w1 0,0 1,1 @One\nline 256 w1 0,0 2,2 @One\nlayer Two\nline 256 w1 0,0 3,3 @Two\n"
            "line 256 w1 0,0 4,4 @One\nline 256 w1 0,0 5,5 @One\nline 256 w1 0,0 6,6");
}

TEST(Lexed, InlineImages) {
  const std::string place = "8 0 0 2 0 0 cm BI ";
  const std::string after = " 1 0 0 1 0 0 cm Q 0 0 m 1 1 l S";
  const std::string whole = Drawn("q " + place + "/W 8 /H 2 /BPC 1 /CS /G ID \xFF\xFF EI" + after);
  EXPECT_TRUE(whole.find("8x2@72") != whole.npos && whole.ends_with("line 256 w1 0,0 1,1"));
  const Case cases[] = {
      {"q " + place + "/W 8/H 2/BPC 1/CS/G ID \xFF\xFF EI" + after, whole},
      {"q " + place + "/DP null/Width 8/Height 2\n/BitsPerComponent\n1 %x\n/CS /DeviceGray\nID\r\n\xFF\xFF\nEI" + after,
       whole},
      {"q " + place + "/W 8 /H 2 /BPC 1 /CS /G /F [/A85] ID s8N~>EI" + after, whole},
      {"q " + place + "/DP [<</Columns 8>>] /W 8 /H 2 /BPC 1 /CS /G /F /AHx ID FF\nFF> EI" + after, whole},
  };
  for (const Case &c : cases) EXPECT_EQ(Lexed({c.content}), c.drawn) << c.content;
}

TEST(Lexed, WhatNeverEndsTakesTimeByItsLength) {
  const size_t size = 1 << 20;
  for (const std::string part : {"(", "[", "<<", "/", "BI ", "BI /F /A85 ID ", "1 ", "% \n", "a ", "q BT "}) {
    std::string content;
    while (content.size() < size) content += part;
    EXPECT_LT(Lexed({content}).size(), size) << part;
  }
}

}  // namespace
}  // namespace kapdf::test
