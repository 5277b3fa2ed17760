#include "platform/system_fonts.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "platform/font_name_table.h"
#include "support/font_builder.h"

namespace kapdf::platform {
namespace {

using namespace std::string_literals;

class SystemFonts : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    std::filesystem::remove("late.ttf");
    test::InstallFont("early.ttf", test::BuildFont("KapdfEarly", u"AZ"));
  }
};

TEST_F(SystemFonts, AreFoundWhenTheyComeLater) {
  const auto before = FontFamilies::Now();
  const auto find = [](const FontFamilies &families, std::u16string_view name) {
    return std::ranges::count(families.TrueType(), name);
  };
  EXPECT_EQ(find(*before, u"KapdfEarly"), 1);
  EXPECT_EQ(FontFamilies::Now(), before);
  EXPECT_EQ(before->OfPostScriptName(u"KapdfLate"), u"");
  test::InstallFont("late.ttf", test::BuildFont("KapdfLate", u"AZ"));
  const auto after = FontFamilies::Now();
  EXPECT_EQ(find(*after, u"KapdfLate"), 1);
  EXPECT_EQ(after->OfPostScriptName(u"KapdfLate"), u"KapdfLate");
  EXPECT_EQ(SystemFont::Open({u"KapdfLate"})->FaceName(), u"KapdfLate");
  EXPECT_EQ(find(*before, u"KapdfLate"), 0) << "who holds a list goes on with it";
}

TEST_F(SystemFonts, FamiliesAndWhatTheyTell) {
  const auto now = FontFamilies::Now();
  const auto &families = now->TrueType();
  for (size_t i = 0; i + 1 < families.size(); ++i) EXPECT_GE(families[i].size(), families[i + 1].size());
  EXPECT_EQ(now->OfPostScriptName(u"no such font"), u"");
  EXPECT_EQ(now->OfPostScriptName(u""), u"");
  const auto substitute = SystemFont::Open({u"no such font"});
  EXPECT_TRUE(substitute);
  for (size_t i = 0; i < std::min<size_t>(families.size(), 5); ++i) {
    const auto font = SystemFont::Open({families[i], 2000});
    ASSERT_TRUE(font);
    const FontMetrics metrics = font->Metrics();
    EXPECT_EQ(metrics.height, metrics.ascent + metrics.descent);
    EXPECT_EQ(metrics.internalLeading, metrics.height - 2000);
    const auto small = SystemFont::Open({families[i], 1000});
    EXPECT_NEAR(metrics.averageWidth, 2 * small->Metrics().averageWidth, 2);
    GlyphBox letter;
    ASSERT_TRUE(font->Box(u'A', letter));
    EXPECT_LE(letter.left + letter.width, metrics.right + 1);
    EXPECT_LE(letter.top, metrics.top + 1);
    EXPECT_EQ(font->Advances(u'A', u'Z').size(), 26u);
    const ByteBuffer head = font->Table("head");
    const ByteBuffer file = font->Table("");
    ASSERT_EQ(head.size(), 54u);
    EXPECT_NE(std::search(file.span().begin(), file.span().end(), head.span().begin(), head.span().end()),
              file.span().end());
    EXPECT_TRUE(font->Table("none").empty());
    const auto names = PostScriptNames(font->Table("name").span());
    ASSERT_FALSE(names.empty());
    EXPECT_EQ(now->OfPostScriptName(names.front()), families[i]);
  }
}

TEST_F(SystemFonts, PostScriptNames) {
  const auto record = [](int platform, int id, int length, int offset) {
    std::string bytes;
    for (const int value : {platform, 0, 0, id, length, offset})
      bytes += {static_cast<char>(value >> 8), static_cast<char>(value)};
    return bytes;
  };
  const std::string strings = "\0\0\0\4\0\x36"s;  // four records
  const struct {
    std::string table;
    std::vector<std::u16string> names;
  } cases[] = {
      {strings + record(1, 6, 2, 0) + record(3, 6, 4, 2) + record(3, 1, 2, 0) + record(0, 6, 3, 2) + "Ab\0C\0d"s,
       {u"Ab", u"\x43\x64", u"C"}},
      {strings + record(1, 6, 3, 0) + record(1, 6, 1, 3) + record(1, 6, 0xFFFF, 0) + record(1, 6, 1, 1) + "Ab", {u"b"}},
      {strings + record(1, 6, 0, 0), {}},
      {"\0\0\0\4\0"s, {}},
  };
  for (const auto &[table, names] : cases)
    EXPECT_EQ(PostScriptNames({reinterpret_cast<const uint8_t *>(table.data()), table.size()}), names);
}

}  // namespace
}  // namespace kapdf::platform
