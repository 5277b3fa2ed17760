#include "writer/truetype_subset.h"

#include <ft2build.h>
#include FT_FREETYPE_H
#include <gtest/gtest.h>

#include "fonts/font_sfnt.h"
#include "platform/system_fonts.h"
#include "support/bytes.h"

using namespace kapdf;
using Kind = FontSubset::Kind;
using namespace std::string_literals;

namespace {

std::string Big(std::initializer_list<int> words) {
  std::string bytes;
  for (const int word : words) bytes += {static_cast<char>(word >> 8), static_cast<char>(word)};
  return bytes;
}
std::string Table(const std::string &font, std::string_view tag) {
  const auto table = SfntTable(test::Bytes(font), tag);
  return {table.begin(), table.end()};
}
uint32_t Sum(const std::string &bytes, size_t at = 0, size_t size = std::string::npos) {
  uint32_t sum = 0;
  const std::string part = bytes.substr(at, size);
  for (size_t i = 0; i < part.size(); ++i) sum += uint32_t{static_cast<uint8_t>(part[i])} << (24 - i % 4 * 8);
  return sum;
}
std::string Outline(const std::string &font, bool wide, size_t glyph) {
  const std::string loca = Table(font, "loca");
  const auto at = [&](size_t i) { return wide ? Sum(loca, 4 * i, 4) : (Sum(loca, 2 * i, 2) >> 16) * 2; };
  return Table(font, "glyf").substr(at(glyph), at(glyph + 1) - at(glyph));
}

// A and B are glyphs 1 and 2. 2 is made of 3 and 4, and 4 of 5, 6 and, wrongly, itself. There are 20.
std::string Font(bool wide, bool mac, const std::string &version = Big({1, 0})) {
  std::string glyf, loca, bytes(256, '\0');
  for (int i = 0; i <= 20; ++i) {
    const int at = static_cast<int>(glyf.size());
    loca += wide ? Big({0, at}) : Big({at / 2});
    if (i == 2) glyf += Big({-1, 0, 0, 9, 9, 32 | 128 | 1, 3, 7, 7, 1, 2, 3, 4, 32 | 8, 4, 7, 1, 0, 1, 7});
    if (i == 4) glyf += Big({-1, 0, 0, 9, 9, 32 | 64, 5, 7, 1, 2, 32, 4, 7, 0, 6, 7});
    if (i != 2 && i != 4 && i < 20) glyf += Big({1, i, i, i, i, i, i});
  }
  bytes[65] = 1, bytes[66] = 2, bytes[67] = 3;
  const std::string cmap = mac ? Big({0, 1, 1, 0, 0, 12, 0, 262, 0}) + bytes
                               : Big({0, 1, 3, 1, 0, 12, 4, 32, 0, 4, 4, 1, 0, 67, -1, 0, 65, -1, 1 - 65, 1, 0, 0});
  const std::string name = Big({0, 3, 42, 3, 1, 1033, 1, 2, 0, 3, 1, 1031, 4, 2, 0, 1, 0, 1033, 6, 2, 2}) + "\0Fps"s;
  std::string directory = version + Big({9, 0, 0, 0}), data;
  for (const std::string &table :
       {"cmap" + cmap, "cvt odd"s, "glyf" + glyf, "head" + std::string(50, 7) + Big({wide, 0}), "hmtxwhole"s,
        "kerndropped"s, "loca" + loca, "maxp" + Big({1, 0, 20}), "name" + name}) {
    directory += table.substr(0, 4) + Big({0, 0, 0, 156 + static_cast<int>(data.size())});
    directory += Big({0, static_cast<int>(table.size()) - 4});
    data += table.substr(4);
  }
  return directory + data;
}

FontSubset Subset(const std::string &font, std::u16string_view text) {
  const auto glyphs = GlyphsOfCmap(SfntTable(test::Bytes(font), "cmap"));
  CodeSet used;
  for (const char16_t code : text) used.set(code);
  return MakeTrueTypeSubset(test::Bytes(font), glyphs ? *glyphs : CodeTable{}, used, "ZVNEWA+");
}

std::string Drawn(FT_Face face, uint32_t glyph) {
  if (FT_Load_Glyph(face, glyph, FT_LOAD_NO_SCALE) != 0) return "fails";
  const FT_Outline &outline = face->glyph->outline;
  const size_t size = static_cast<size_t>(outline.n_points) * sizeof(FT_Vector);
  return std::to_string(face->glyph->metrics.horiAdvance) + std::string(reinterpret_cast<char *>(outline.points), size);
}

}  // namespace

TEST(TrueTypeSubset, KeepsWhatIsUsedInItsPlace) {
  for (const int form : {0, 1, 2, 3}) {
    const bool wide = form & 1, mac = form & 2;
    const std::string font = Font(wide, mac);
    const FontSubset made = Subset(font, u"AB");
    const std::string file(made.bytes.span().begin(), made.bytes.span().end());
    ASSERT_EQ(file.substr(0, 12), Big({1, 0, 9, 128, 3, 16}));
    EXPECT_EQ(Sum(file), 0xB1B0AFBA);
    std::string tags;
    for (size_t i = 12; i < 156; i += 16) tags += file.substr(i, 4);
    EXPECT_EQ(tags, "cmapcvt glyfheadhmtxlocamaxpnamepost");
    EXPECT_EQ(Sum(file, 12 + 32 + 4, 4), Sum(Table(file, "glyf")));
    for (const char *same : {"cvt ", "hmtx", "maxp"}) EXPECT_EQ(Table(file, same), Table(font, same));
    EXPECT_EQ(Table(file, "head").replace(8, 4, "\7\7\7\7"), Table(font, "head"));
    for (size_t i = 0; i < 20; ++i) {
      std::string outline = i > 6 ? "" : Outline(font, wide, i);
      outline.resize((outline.size() + 3) / 4 * 4);
      EXPECT_EQ(Outline(file, wide, i), outline) << i;
    }
    EXPECT_EQ(Table(file, "cmap"), Big({0, 2, 1, 0, 0, 20, 3, 1, 0, 282, 0, 262, 0}) + std::string(65, '\0') +
                                       (mac ? "\1\2"s : "\0\0"s) + std::string(189, '\0') +
                                       Big({4, 32, 0, 4, 4, 1, 0, 66, -1, 0, 65, -1, 1 - 65, 1, 0, 0}));
    EXPECT_EQ(Table(file, "name"),
              Big({0, 2, 30, 3, 1, 1033, 1, 16, 0, 1, 0, 1033, 6, 9, 16}) + "\0Z\0V\0N\0E\0W\0A\0+\0FZVNEWA+ps"s);
    EXPECT_EQ(Table(file, "post"), Big({3, 0, 0, 0, -17, 13}) + std::string(20, '\0'));
  }
}

TEST(TrueTypeSubset, PrefixesCountToTheBase26) {
  constexpr uint32_t kLast = ((((25 * 26 + 25) * 26 + 25) * 26 + 25) * 26 + 25) * 26 + 25;  // ZZZZZZ
  constexpr uint32_t kFirst = ((((25 * 26 + 21) * 26 + 13) * 26 + 4) * 26 + 22) * 26;       // ZVNEWA
  const std::pair<uint32_t, const char *> cases[] = {{0, "ZVNEWA+"},
                                                     {25, "ZVNEWZ+"},
                                                     {26, "ZVNEXA+"},
                                                     {26 * 4, "ZVNFAA+"},
                                                     {kLast - kFirst, "ZZZZZZ+"},
                                                     {kLast - kFirst + 1, "AAAAAA+"}};
  for (const auto &[number, prefix] : cases) EXPECT_EQ(SubsetPrefix(number), prefix) << number;
}

TEST(TrueTypeSubset, TellsWhatItCannotCut) {
  const std::string font = Font(true, false);
  std::string lost = font;
  lost[lost.find(Table(font, "loca")) + 4 * 6] = 1;  // glyph 6, a component of a component
  EXPECT_EQ(Subset(lost, u"A").kind, Kind::kSubset);
  EXPECT_EQ(Subset(lost, u"B").kind, Kind::kNotEmbeddable);
  EXPECT_EQ(Subset(font, u"ABCDEFGHI").kind, Kind::kSubset);
  EXPECT_TRUE(std::ranges::equal(Subset(font, u"ABCDEFGHIJ").bytes.span(), test::Bytes(font)));
  for (const char *version : {"OTTO", "ttcf"})
    EXPECT_EQ(Subset(Font(true, false, version), u"A").kind, Kind::kNotEmbeddable);
  for (size_t i = 0; i < font.size(); ++i) {  // no damage may crash it, nor a cut be taken for a font
    EXPECT_EQ(Subset(font.substr(0, i), u"AB").kind, Kind::kNotEmbeddable) << i;
    for (const char byte : {0, 1, 127, -1}) static_cast<void>(Subset(std::string(font).replace(i, 1, 1, byte), u"AB"));
  }
}

TEST(TrueTypeSubset, DrawsAsTheWholeFontDoes) {
  const auto opened = platform::SystemFont::Open({.family = u"DejaVu Sans"});
  const ByteBuffer file = opened ? opened->Table("") : ByteBuffer();
  const auto glyphs = GlyphsOfCmap(SfntTable(file.span(), "cmap"));
  if (!glyphs) GTEST_SKIP() << "no TrueType font on this machine";
  CodeSet used;
  for (size_t code = 32; code < 0x1F00; code += code < 0x500 || code >= 0x1EA0 ? 1 : 0x1EA0 - code) used.set(code);
  const FontSubset made = MakeTrueTypeSubset(file.span(), *glyphs, used, "ZVNEWA+");
  ASSERT_EQ(made.kind, Kind::kSubset);
  FT_Library library;
  FT_Face whole, part;
  ASSERT_EQ(FT_Init_FreeType(&library), 0);
  ASSERT_EQ(FT_New_Memory_Face(library, file.data(), static_cast<FT_Long>(file.size()), 0, &whole), 0);
  ASSERT_EQ(FT_New_Memory_Face(library, made.bytes.data(), static_cast<FT_Long>(made.bytes.size()), 0, &part), 0);
  for (size_t code = 0; code < used.size(); ++code)
    EXPECT_EQ(Drawn(part, (*glyphs)[code] * used[code]), Drawn(whole, (*glyphs)[code] * used[code])) << code;
  FT_Done_FreeType(library);
}
