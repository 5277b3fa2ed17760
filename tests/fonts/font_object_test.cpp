#include "fonts/font_object.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "base/bytes.h"
#include "font_program_bytes.h"
#include "fonts/font_cache.h"
#include "platform/system_fonts.h"
#include "platform/text.h"
#include "support/opened_pdf.h"

namespace kapdf {
namespace {

using namespace std::string_literals;
using test::PdfBuilder;
using test::TrueTypeFont;

constexpr int kFont = 10;

// What a font says, in short: face, style, code page; "2" when it takes codes and not bytes; the code spaces; widths in
// thousandths, where they are not that of the highest code, which stands ahead; characters of the codes.
std::string Describe(const CPDFFontObject &font) {
  std::ostringstream text;
  text << platform::ToUtf8(font.faceName()) << ' ' << font.style() << ' ' << font.codePage()
       << (font.composite() ? " 2" : "") << std::hex << " [";
  for (const CodeSpace &space : font.codeSpaces()) text << space.low << '-' << space.high << ' ';
  text << ']';
  const double usual = font.Width(0xFFFF);
  if (font.hasWidths()) text << " w " << std::dec << usual * 1000 << std::hex;
  for (uint32_t code = 0, last; code < 0xFFFF; code = last + 1) {
    for (last = code; last < 0xFFFE && font.Width(last + 1) == font.Width(code);) ++last;
    if (font.Width(code) == usual) continue;
    text << ' ' << code << '-' << last << '=' << std::dec << font.Width(code) * 1000 << std::hex;
  }
  text << " c";
  for (uint32_t code = 0; code < 0xFFFF; ++code) {
    const uint32_t mapped = font.composite() ? font.Character(code) : 0;
    const uint32_t named = code < 256 ? font.MappedCharacter(static_cast<uint8_t>(code)) : 0;
    const uint32_t character = font.composite() ? mapped : named;
    if (character != (font.composite() ? code : 0)) text << ' ' << code << '=' << character;
  }
  return text.str();
}

// A document with the font as object 10 and what it refers to, read with an encoding folder of this test.
class FontTest : public testing::Test {
 protected:
  // "KapdfFamily", whose PostScript name is another one.
  static void SetUpTestSuite() {
    const auto wide = [](std::string_view text) {
      std::string bytes;
      for (const char c : text) bytes += {'\0', c};
      return bytes;
    };
    std::string font = test::BuildFont("KapdfFamily", u"AB");
    const std::string family = wide("KapdfFamily");
    font.replace(font.rfind(family), family.size(), wide("KapdfOfName"));
    test::InstallFont("family.ttf", font);
  }

  FontTest() {
    std::filesystem::create_directory("encoding");
    std::ofstream("encoding/Identity-H") << "1 begincodespacerange\n<0000> <FFFF>\n1 begincidrange\n<0000> <FFFF> 0\n";
    std::ofstream("encoding/90ms-RKSJ-H")
        << "2 begincodespacerange\n<00> <80>\n<8140> <9FFC>\n1 begincidchar\n<82A0> 5";
    std::ofstream("encoding/UniJIS-UCS2-H") << "1 begincodespacerange\n<0000> <FFFF>\n1 begincidchar\n<4E00> 5\n";
    std::ofstream("encoding/adobe-japan1-ucs2") << "1 begincodespacerange\n<0000> <FFFE>\n1 beginbfchar\n<0005> <3042>";
  }

  std::shared_ptr<const CPDFFontObject> Load(std::string_view font, FontSettings settings = {}) {
    builder_.Object(kFont, font);
    pdf_ = std::make_unique<test::OpenedPdf>(builder_.Build());
    EXPECT_EQ(pdf_->result, 0u);
    cache_ = std::make_unique<FontCache>(pdf_->file.objects(), settings, EncodingFolder(u"encoding/"));
    return cache_->Get(kFont);
  }

  PdfBuilder builder_ = test::PagesOf({""});
  std::unique_ptr<test::OpenedPdf> pdf_;
  std::unique_ptr<FontCache> cache_;
};

TEST_F(FontTest, Dictionaries) {
  builder_.Object(11, "<</Subtype/CIDFontType2 /W [1 [250 1500.5] 7 9 300 6 8 400 20]>>")
      .Object(12, "<</CIDSystemInfo <</Ordering (Japan1)>> /DW 500 /W [0 70000 250 -2 1 125]>>")
      .Object(13, "<</CIDToGIDMap 22 0 R /W 14 0 R>>")
      .Object(14, "[3 9]")
      .Stream(21, "", "1 begincodespacerange\n<00> <7F>\n1 beginbfchar\n<41> <0061>\n")
      .Stream(22, "", "\0\7\xFF\xFF\0"s)
      .Stream(24, "", "1 begincodespacerange\n<0000> <FFFF>\n1 beginbfchar\n<41> <0061>\n")
      .Stream(23, "", "1 beginbfrange\n<01> <01> [<0061>]\n");
  const struct {
    std::string_view font, expected;
  } cases[] = {
      {"<</Type/Nothing>>", "Arial 0 -1 [0-ff ] c"},
      {"42", " 0 -1 [] c"},
      {"<</Subtype/Type1 /BaseFont/Zq,Bold /Encoding/WinAnsiEncoding>>", "Zq 1 0 [0-ff ] c"},
      {"<</Subtype/Type1 /BaseFont/ABCDEF+Zq,BoldItalic /Encoding/Winansi>>", "Zq 3 -1 [0-ff ] c"},
      {"<</Type/Font /BaseFont/Zq,Bold,x /FirstChar 65 /LastChar 0 /Widths [250.9 -10 /x 1]>>",
       "Zq 0 -1 [0-ff ] w 0 41-41=250 42-42=-10 44-44=1 c"},
      {"<</Type/Font /Subtype/Type3 /FirstChar 1 /LastChar 2 /Widths [30 40] /FontMatrix [0.01 0 0 0.01 0 0]>>",
       "Arial 0 -1 [0-ff ] w 0 1-1=300 2-2=400 c"},
      {"<</Type/Font /FirstChar 65535 /LastChar 1 /Widths [1 2]>>", "Arial 0 -1 [0-ff ] c"},
      {"<</Type/Font /FirstChar -1 /LastChar 1 /Widths [1 2]>>", "Arial 0 -1 [0-ff ] c"},
      {"<</Type/Font /Widths [1 2]>>", "Arial 0 -1 [0-ff ] c"},
      {"<</Type/Font /Encoding <</Differences [65/B41/fi 321/g97/none/space]>> >>",
       "Arial 0 -1 [0-ff ] c 41=61 42=66 43=20"},
      {"<</Type/Font /ToUnicode 21 0 R>>", "Arial 0 -1 2 [0-7f ] c 41=61"},
      {"<</Type/Font /ToUnicode 24 0 R>>", "Arial 0 -1 2 [0-ff ] c 41=61"},
      {"<</Type/Font /ToUnicode 24 0 R /DescendantFonts [11 0 R]>>",
       "Arial 0 -1 2 [0-ffff ] w 1000 1-1=250 2-2=1500.5 6-8=400 9-9=300 c 41=61"},
      {"<</Type/Font /ToUnicode 23 0 R>>", "Arial 0 -1 2 [0-ff ] c"},
      {"<</Type/Font /ToUnicode 99 0 R /Encoding/Identity-H>>", "Arial 0 0 2 [0-ffff ] c"},
      {"<</Type/Font /Encoding/Identity-H /DescendantFonts [11 0 R]>>",
       "Arial 0 0 2 [0-ffff ] w 1000 1-1=250 2-2=1500.5 6-8=400 9-9=300 c"},
      {"<</Type/Font /Encoding/90ms-RKSJ-H /DescendantFonts [12 0 R]>>",
       "Arial 0 932 [0-80 8140-9ffc ] w 500 0-1=125 2-fffe=250 c"},
      {"<</Type/Font /Encoding/UniJIS-UCS2-H /DescendantFonts [12 0 R] /ToUnicode 99 0 R>>",
       "Arial 0 0 2 [0-fffe ] w 125 4e00-4e00=250 c 4e00=3042"},
      {"<</Type/Font /Encoding/Identity-H /DescendantFonts [<</CIDSystemInfo <</Ordering (JAPAN1)>> >>]>>",
       "Arial 0 0 2 [0-ffff ] c"},
      {"<</Type/Font /Encoding/Identity-H /DescendantFonts [<</CIDSystemInfo <</Ordering (Japan1)>> >>]>>",
       "Arial 0 0 2 [0-fffe ] c 5=3042"},
      {"<</Type/Font /Encoding/Identity-H /DescendantFonts [13 0 R]>>", "Arial 0 0 2 [0-ffff ] w 1000 c 0=7"},
      {"<</Type/Font /ToUnicode 21 0 R /DescendantFonts [/x]>>", "Arial 0 -1 2 [0-7f ] c 41=61"},
  };
  for (const auto &[font, expected] : cases) {
    const auto loaded = Load(font);
    ASSERT_TRUE(loaded) << font;
    EXPECT_EQ(Describe(*loaded), expected) << font;
  }
  EXPECT_FALSE(Load("<</F1 11 0 R /F2 12 0 R>>")) << "a dictionary of fonts";
  EXPECT_FALSE(cache_->Get(99));
  EXPECT_EQ(cache_->Get(11), cache_->Get(11)) << "read once";
}

TEST_F(FontTest, Programs) {
  const std::string font = TrueTypeFont();
  ASSERT_EQ(font.size() % 2, 0u);
  builder_.Stream(21, "", "1 begincodespacerange\n<00> <FF>\n1 beginbfrange\n<01> <02> <0061>\n")
      .Stream(22, "", "\0\0\0\2\0\1"s)
      .Stream(23, "", "\0\0\0\0\0\0\0\0\0\0\0\3"s)
      .Object(61, "<</CIDSystemInfo <</Ordering (Japan1)>> /FontDescriptor 42 0 R>>")
      .Object(62, "<</CIDSystemInfo <</Ordering (Japan1)>> /FontDescriptor 42 0 R /CIDToGIDMap 23 0 R>>")
      .Stream(31, "", font)
      .Stream(32, "", font + '\0')
      .Stream(33, "", TrueTypeFont(test::Cmap(false)) + '\0')
      .Stream(34, "", "no font")
      .Stream(35, "", font.substr(0, font.size() - 100) + '\0');
  for (int i = 31; i <= 35; ++i) {
    const std::string number = std::to_string(i);
    builder_.Object(i + 10, "<</FontFile 9 /CapHeight 700 /FontFile2 " + number + " 0 R>>")
        .Object(i + 20, "<</CIDToGIDMap 22 0 R /FontDescriptor " + std::to_string(i + 10) + " 0 R>>");
  }
  const auto even = static_cast<uint32_t>(font.size());
  const uint32_t marked = (even + 2) | CPDFFontObject::kMappingMark;
  const auto oneMap = static_cast<uint32_t>(TrueTypeFont(test::Cmap(false)).size()) + 1;
  // `glyphs`: what the mapping data tell for "a" and "b", and for the character of the collection.
  const struct {
    std::string_view font;
    bool useUnicodeMap;
    uint32_t size;
    int glyphs[3];
    std::string_view characters;
  } cases[] = {
      {"/ToUnicode 21 0 R /FontDescriptor 41 0 R", true, even, {-1}, " c 1=61 2=62"},
      {"/ToUnicode 21 0 R /FontDescriptor 42 0 R", true, marked, {1, 2, 0}, " c 1=61 2=62"},
      {"/ToUnicode 21 0 R /FontDescriptor 42 0 R", false, even + 2, {-1}, " c"},
      {"/ToUnicode 21 0 R /FontDescriptor 41 0 R", false, even, {-1}, " c 1=61 2=62"},
      {"/ToUnicode 21 0 R /FontDescriptor 43 0 R", true, oneMap, {-1}, " c 1=61 2=62"},
      {"/ToUnicode 21 0 R /DescendantFonts [52 0 R]", true, marked, {2, 1, 0}, " c 1=61 2=62"},
      {"/Encoding/Identity-H /FontDescriptor 41 0 R", true, even, {-1}, " c 1=41 2=42"},
      {"/Encoding/Identity-H /DescendantFonts [51 0 R]", true, even, {-1}, " c 1=42 2=41"},
      {"/Encoding/90ms-RKSJ-H /DescendantFonts [61 0 R]", true, marked, {0, 0, 5}, " c"},
      {"/Encoding/UniJIS-UCS2-H /DescendantFonts [61 0 R]", true, marked, {0, 0, 5}, " c 4e00=3042"},
      {"/Encoding/90ms-RKSJ-H /DescendantFonts [62 0 R]", true, marked, {0, 0, 3}, " c"},
      {"/Encoding/WinAnsiEncoding /FontDescriptor 41 0 R", true, even, {-1}, " c"},
      {"/Encoding/Identity-H /FontDescriptor 44 0 R", true, 7, {-1}, " c"},
  };
  for (const auto &c : cases) {
    FontSettings settings;
    settings.useUnicodeMap = c.useUnicodeMap;
    settings.codePage = 1250;
    const auto loaded = Load("<</Type/Font /BaseFont/Zq,Italic " + std::string(c.font) + ">>", settings);
    ASSERT_TRUE(loaded) << c.font;
    const std::string text = Describe(*loaded);
    EXPECT_EQ(text.substr(text.find(" c")), c.characters) << c.font;
    EXPECT_EQ(loaded->programSize(), c.size) << c.font;
    EXPECT_EQ(loaded->definitionSize(), c.size + 64) << c.font;
    EXPECT_EQ(loaded->look().height, 700);
    EXPECT_DOUBLE_EQ(loaded->look().heightRatio, c.size == 7 ? 1.4 : 1000.0 / 800.0);
    const auto *bytes = static_cast<const uint8_t *>(loaded->definition());
    const auto block = LoadAs<FontDefPayload>(bytes);
    EXPECT_EQ(std::u16string(block.styleName), u"Zq");
    const int page = loaded->codePage() < 0 ? 1250 : loaded->codePage();
    EXPECT_EQ(block.charsetAndCodePage, static_cast<uint32_t>(page) << 16 | CPDFFontObject::kItalic);
    EXPECT_EQ(std::memcmp(bytes + 64, c.size == 7 ? "no font" : font.data(), 7), 0);
    if (c.glyphs[0] < 0) continue;
    const uint8_t *mapping = bytes + 64 + (c.size & ~CPDFFontObject::kMappingMark);
    for (int i = 0; i < 3; ++i)
      EXPECT_EQ(LoadAs<uint16_t>(mapping + 2 * (i < 2 ? 'a' + i : 0x3042)), c.glyphs[i]) << c.font;
  }
  ASSERT_TRUE(Load("<</Type/Font /Encoding/Identity-H /FontDescriptor 45 0 R>>")) << "a program that is cut off";
}

TEST_F(FontTest, FamiliesOfTheSystem) {
  const std::u16string family = platform::FontFamilies::Now()->TrueType().front();  // the longest is found first
  std::string name = platform::ToNarrow(family, 0);
  std::replace(name.begin(), name.end(), ' ', '_');
  builder_.Object(41, "<</FontFile2 31 0 R>>").Stream(31, "", TrueTypeFont());
  for (const bool embeds : {false, true}) {
    FontSettings settings;
    settings.useEmbeddedFonts = embeds;
    const auto font = Load("<</Type/Font /BaseFont/ABCDEF+" + name + "_BoldItalic /FontDescriptor 41 0 R>>", settings);
    ASSERT_TRUE(font);
    EXPECT_EQ(font->faceName(), family);
    EXPECT_EQ(font->hasProgram(), embeds);
    EXPECT_EQ(font->familyName(), embeds ? u"" : family) << "the program's own";
    EXPECT_EQ(font->look().height, font->look().ascent + font->look().descent);
    EXPECT_GT(font->look().ascent, 0);
  }
}

TEST_F(FontTest, PostScriptNamesOfTheSystem) {
  for (const char *capHeight : {"716", "0", "-34", "0.7", "-0.5"}) {
    builder_.Object(41, "<</CapHeight " + std::string(capHeight) + ">>");
    const auto font = Load("<</Type/Font /BaseFont/KapdfOfName /FontDescriptor 41 0 R>>");
    ASSERT_TRUE(font);
    EXPECT_EQ(font->faceName(), u"KapdfFamily");
    // Of a font of 34 pixels the system may measure whole ones.
    const double pixel = std::string(capHeight) == "-34" ? 2.0 / 34 : 0.02;
    EXPECT_NEAR(font->look().heightRatio, 1000 / 700.0, pixel) << capHeight;
  }
}

}  // namespace
}  // namespace kapdf
