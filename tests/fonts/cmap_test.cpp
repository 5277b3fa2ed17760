#include "fonts/cmap.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "fonts/cmap_name_table.h"
#include "fonts/encoding_folder.h"
#include "fonts/glyph_names.h"

namespace kapdf {
namespace {

// "1 41 5A; 2 8140 FEFE" and so on: the code spaces, then the targets by code, all hexadecimal.
std::string Describe(std::span<const CodeSpace> spaces, const CodeTable *table) {
  std::ostringstream text;
  text << std::hex << std::uppercase;
  for (const CodeSpace &space : spaces) text << space.bytes << ' ' << space.low << ' ' << space.high << "; ";
  for (size_t code = 0; table && code < table->size(); ++code)
    if ((*table)[code] != kNoTarget) text << code << '=' << (*table)[code] << ' ';
  return text.str();
}

TEST(CMap, Texts) {
  const struct {
    std::string_view text, result;
  } cases[] = {
      {"1 beginbfchar\n<41> <0041>\nendbfchar", "41=41 "},
      {"%!PS\r\n/CMapType 2 def\r\n2 beginbfrange\r\n\r\n <0003><0005><0061>\r<0041> <0041> <D835DC00>\r\n",
       "3=61 4=62 5=63 41=D835 "},
      {"2 begincodespacerange\n<00> <80>\n<8140> <FEFE>\nendcodespacerange\n", "1 0 80; 2 8140 FEFE; "},
      {"1 begincodespacerange\n<0000> <00FF>\n", "2 0 FF; "},
      {"1 begincodespacerange\n<00> <00FF>\n", "2 0 FF; "},
      {"1 begincodespacerange <00> <FF> endcodespacerange\n1 beginbfchar\n<1> <2>", "1 0 FF; 1=2 "},
      {"2 begincodespacerange <0000> <FFFF>\n<00> <80>", "2 0 FFFF; 2 0 FFFF; "},  // the same line counts twice
      {"1 begincodespacerange\n<00> <80>\nx\n2 begincodespacerange\n<8140> <FEFE>\n<A0> <DF>", "1 0 80; "},
      {"3 begincodespacerange\n<00> <80>\nx\nx\n2 begincodespacerange\n<8140> <FEFE>\n<A0> <DF>",
       "1 0 80; 2 8140 FEFE; 1 A0 DF; "},
      {"2 beginbfrange\n<01> <02> [<0061> <0062>]\n<03> <04> <0063>\n", "3=63 4=64 "},
      {"1 beginbfchar\nendbfchar\n<05> <0041>", ""},  // what is no entry counts as one
      {"1 begincidrange\n<20> <21> 0x10\n2 beginbfchar\n<41> <0041>\n<42> 66", "20=10 21=11 42=42 "},
      {"2 beginbfrange\n<0005> <0005> <0009>\n<0001> <0009> <0004>", "1=4 2=5 3=6 4=7 5=9 6=9 7=A 8=B 9=C "},
      {"2 beginbfrange\n<0005> <0005> <0001>\n<0005> <0006> <0004>", "5=4 6=5 "},  // the higher target wins
      {"3 beginbfrange\n<FFFE> <FFFF> <FFFE>\n<0009> <0001> <0001>\n<FFFF> <0000> <0001>", "FFFE=FFFE "},
      {"1 endbfrange beginbfchar\n<41> <0041>\nx beginbfchar\n<42> <0042>\n0 beginbfchar\n-1 beginbfchar", "41=41 "},
      {"2000000000 beginbfchar\n<41> <0041>\n<> <0042>\n<43> <>\n<4 4> <0043>\n<45 <0044>", "41=41 "},
      {std::string_view("1 beginbfchar\n<41> <0041>\n\0001 beginbfchar\n<42> <0042>", 52), "41=41 "},
  };
  for (const auto &[text, result] : cases) {
    CMap cmap;
    cmap.Parse(std::string(text), false);
    EXPECT_EQ(Describe(cmap.codeSpaces().list(), MakeCodeTable(cmap.ranges()).get()), result) << text;
  }
}

TEST(CodeSpaces, LengthsOfCodes) {
  CodeSpaces mixed;
  mixed.Announce(3);
  for (const CodeSpace space : {CodeSpace{1, 0, 0x80}, {2, 0x8140, 0x9FFC}, {1, 0x81, 0x81}}) mixed.Add(space);
  const struct {
    uint8_t first, second;
    int length;
  } cases[] = {{0x41, 0, 1}, {0x82, 0xA0, 2}, {0x82, 0x20, 2}, {0xE0, 0x40, 0}, {0x81, 0x40, 2}, {0x81, 0x20, 1}};
  for (const auto &c : cases) EXPECT_EQ(CodeLength(mixed.list(), c.first, [&] { return c.second; }), c.length);
}

TEST(EncodingFolder, VerticalFilesAddToHorizontalOnes) {
  std::ofstream("x-H") << "2 begincodespacerange\n<00> <80>\n<8140> <FEFE>\n2 begincidrange\n<41> <43> 5\n";
  std::ofstream("x-V") << "1 begincodespacerange\n<00> <FF>\n1 begincidrange\n<42> <42> 9\n";
  std::ofstream("y-V") << "1 begincidchar\n<42> 9\n";
  EncodingFolder folder(u"./");
  const auto describe = [&](std::string_view name) {
    const auto *encoding = folder.Find(name);
    return encoding ? Describe(encoding->codeSpaces.list(), encoding->table.get()) : "none";
  };
  EXPECT_EQ(describe("x-H"), "1 0 80; 2 8140 FEFE; 41=5 42=6 43=7 ");
  EXPECT_EQ(describe("x-V"), "1 0 80; 2 8140 FEFE; 41=5 42=9 43=7 ");
  EXPECT_EQ(describe("y-V"), "42=9 ");
  EXPECT_EQ(describe("z-V"), "none");
  EXPECT_EQ(describe(""), "none");
  std::filesystem::remove("x-V");
  EXPECT_EQ(describe("x-V"), "1 0 80; 2 8140 FEFE; 41=5 42=9 43=7 ") << "read once";
}

// What the build put beside this program.
TEST(EncodingFolder, HasAFileForEachName) {
  EncodingFolder folder;
  if (!folder.Find("Identity-H")) GTEST_SKIP() << "built without poppler-data";
  for (size_t row = 2; row < kCMapNames.size(); ++row) {
    const auto *encoding = folder.Find(kCMapNames[row].name);
    ASSERT_TRUE(encoding && encoding->table && !encoding->codeSpaces.empty()) << kCMapNames[row].name;
  }
  const struct {
    std::string_view name;
    uint16_t code, target;
  } cases[] = {{"90ms-RKSJ-H", 0x82A0, 843},       {"ETenms-B5-H", 0x20, 1},     {"UniJIS-UCS2-HW-H", 0x3042, 843},
               {"UNIKS_UCS2-V", 0xAC00, 1086},     {"GBK2K-EUC-H", 0xB0A1, 940}, {"KSCPC-UHC-V", 0xB0A1, 1086},
               {"adobe-korea1-ucs2", 1086, 0xAC00}};
  for (const auto &c : cases) EXPECT_EQ((*folder.Find(c.name)->table)[c.code], c.target) << c.name;
}

TEST(CMapNames, MapsToUnicode) {
  const struct {
    std::string_view name, ordering, map;
  } cases[] = {{"90ms-RKSJ-H", "JAPAN1", "adobe-japan1-ucs2"},
               {"Identity-H", "Gb1", "adobe-gb1-ucs2"},
               {"UNIKS_UCS2-V", "Japan1", "adobe-japan1-ucs2"},
               {"Identity-H", "GB1", ""}};
  for (const auto &c : cases) {
    ASSERT_GE(FindCMapName(c.name), 0);
    EXPECT_EQ(UnicodeMapFor(CMapNameAt(FindCMapName(c.name)), c.ordering), c.map) << c.name << ' ' << c.ordering;
  }
  for (const char *name : {"UniGB-UCS2-H", "UNIKS-UCS2-V", "identity-h", ""}) EXPECT_EQ(FindCMapName(name), -1);
}

TEST(GlyphNames, Codes) {
  const struct {
    const char *name;
    uint16_t code;
    std::string_view prefix;
  } cases[] = {{"B41", 0x41, "B"}, {"g65", 65, "g"},   {"MT33", 33, "MT"}, {"MTx", 0, "MT"},         {"B", 'B', ""},
               {"Beta", 0xE, "B"}, {"fi", 'f', ""},    {"zero", '0', ""},  {"germandbls", 0xDF, ""}, {"g", 'g', ""},
               {"66", 66, ""},     {"uni0041", 0, ""}, {"", 0, ""}};
  for (const auto &c : cases) {
    EXPECT_EQ(CodeOfGlyphName(c.name).code, c.code) << c.name;
    EXPECT_EQ(CodeOfGlyphName(c.name).prefix, c.prefix) << c.name;
  }
}

}  // namespace
}  // namespace kapdf
