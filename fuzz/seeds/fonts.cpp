// Seeds of the fonts: dictionaries, maps and programs, joined as the target cuts them.
#include "fonts/font_program_bytes.h"
#include "seeds/seeds.h"

namespace kapdf::fuzz {

void AddFonts(SeedFolder &folder) {
  const std::string descriptor = "<</CapHeight 700 /FontFile2 15 0 R>>";
  const std::string map = "1 begincodespacerange\n<0000> <FFFF>\n1 beginbfrange\n<0001> <0002> <0041>\n";
  const std::string glyphs = "\1\1\2\2";
  const std::string program = test::TrueTypeFont();
  const auto join = [&](const std::string &font, const std::string &descendant, const std::string &file) {
    return font + '\0' + descendant + '\0' + descriptor + '\0' + map + '\0' + glyphs + '\0' + file;
  };
  folder.Add("simple", join("<</Subtype/TrueType /BaseFont/ABCDEF+A,Bold /Encoding <</Differences [65/B41/g7/fi 0/A]>> "
                            "/FirstChar 32 /LastChar 34 /Widths [250 333.5 408] /FontDescriptor 12 0 R>>",
                            "", program));
  folder.Add("glyph_procedures", join("<</Type/Font /Subtype/Type3 /FontMatrix [0.01 0 0 0.01 0 0] /ToUnicode 13 0 R "
                                      "/FirstChar 1 /LastChar 2 /Widths 11 0 R>>",
                                      "[30 40]", ""));
  for (const std::string encoding : {"Identity-H", "90ms-RKSJ-V", "UniJIS-UCS2-H", "None"}) {
    const std::string font = "<</Type/Font /BaseFont/B-Italic /Encoding/" + encoding + " /DescendantFonts [11 0 R]";
    const std::string descendant =
        "<</CIDToGIDMap 14 0 R /DW 500 /W [1 [250 300] 5 9 400] /CIDSystemInfo <</Ordering (Japan1)>> /FontDescriptor "
        "12 0 R>>";
    folder.Add(encoding, join(font + ">>", descendant, program + '\0'));
    folder.Add(encoding + "_unicode", join(font + "/ToUnicode 13 0 R>>", descendant, program + '\0'));
  }
  // Would take minutes if each width were set.
  std::string widths = "<</W [";
  for (int i = 0; i < 100'000; ++i) widths += "0 65535 1 ";
  folder.Add("widths", join("<</Type/Font /DescendantFonts [11 0 R]>>", widths + "]>>", ""));
}

void AddSubsets(SeedFolder &folder) {
  const std::u16string_view characters = u"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz\u0416\u6C38";
  for (const std::string padding : {"", " ", "   "})
    folder.Add("font" + padding, test::BuildFont("A", characters) + padding);
  folder.Add("bytes", test::TrueTypeFont());
}

}  // namespace kapdf::fuzz
