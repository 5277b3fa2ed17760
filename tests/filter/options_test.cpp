#include "filter/options.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace kapdf {
namespace {

std::string Ascii(std::u16string_view text) { return {text.begin(), text.end()}; }

// Over settings of before, so that a word that is not there shows. What a refused text leaves is not asked for.
std::string AfterExport(std::u16string_view text) {
  WriteSettings s{7, 7, 77, 7, 7, 7.5};
  if (!ParseExportOptions(text, s)) return "refused";
  std::ostringstream out;
  out << s.colorCompression << ' ' << s.bwCompression << ' ' << s.quality << ' ' << s.pdfa << ' ' << s.atOrigin << ' '
      << s.paperFrame;
  return out.str();
}

TEST(ExportOptions, EachWordAndItsValues) {
  const std::pair<std::string, std::vector<std::u16string_view>> cases[] = {
      // Without its blank the word is not there; other alphabets' blanks and digits are none.
      {"7 7 77 7 7 7.5",
       {u"", u"/col", u"/COL D", u"/q", u"/q x", u"/frame", u"/frame inf", u"/frame nan", u"/q\u00A05 /q \u0665"}},
      {"1 0 90 1 1 2.5", {u"/col D /bw 4 /q 90 /pdfa 1 /origin 1 /frame 2.500000"}},
      {"0 1 5 0 0 -10", {u"/frame -1e1 /origin 0 /pdfa 0 /q 5 /bw 0 /col L"}},
      {"2 7 77 7 7 7.5", {u"/col 0", u"/col U"}},
      {"1 7 77 7 7 7.5", {u"/col 1", u"/col J"}},
      {"0 7 77 7 7 7.5", {u"/col 2", u"/col \t\n L", u"/col Lossless"}},
      // The slash is taken for the value.
      {"refused", {u"/col X", u"/col d", u"/col ", u"/col /bw 4", u"/bw 1", u"/bw ", u"/bw x"}},
      // The first of two counts, wherever it stands.
      {"7 0 77 7 7 7.5", {u"/bw 0x4", u"/bw 4 /bw 1", u"name=\"a/bw 4\""}},
      {"7 7 8 7 7 7.5", {u"/q 010"}},
      {"7 7 2147483647 7 7 7.5", {u"/q 99999999999"}},
      {"7 7 -5 7 7 7.5", {u"/q -5"}},
      {"7 7 77 7 7 1", {u"/frame 1,5"}},
  };
  for (const auto &[after, texts] : cases) {
    for (const std::u16string_view text : texts) EXPECT_EQ(AfterExport(text), after) << Ascii(text);
  }
}

// Any text replaces all four values, also those that it does not name.
TEST(ImportOptions, EachWordAndItsValues) {
  const std::pair<std::u16string_view, std::string> cases[] = {
      {u"", "1 77 7 7"},
      {u" ", "0 300 3 0"},
      {u"/dpi 150", "0 150 3 0"},
      {u"/mode 2 /dpi 600 /col 4 /text 1 /Convert 0 /Tolerance 0.5", "2 600 4 1"},
      {u"/text 1/col 2", "0 300 2 1"},
      {u"/col 99 /mode -1", "-1 300 99 0"},
      {u"/MODE 1 /dpi /col D", "0 300 3 0"},
  };
  for (const auto &[text, after] : cases) {
    ImportOptions o{1, 77, 7, 7};
    ParseImportOptions(text, o);
    std::ostringstream out;
    out << o.asImage << ' ' << o.dpi << ' ' << o.colorDepth << ' ' << o.extractText;
    EXPECT_EQ(out.str(), after) << Ascii(text);
  }
}

// The password ends at a blank, and no other option is found in it. Without an option the setting decides.
TEST(ImportOptions, HowTheFileIsRead) {
  const struct {
    std::u16string_view text, password;
    int32_t extended, dpi;
  } cases[] = {{u"", u"", -1, 77},
               {u"/ext 1", u"", 1, 300},
               {u"/ext 0 /dpi 9", u"", 0, 9},
               {u"/pw a/ext 1 /dpi 9", u"a/ext", -1, 9},
               {u"/pw se\u00FCcret", u"se\u00FCcret", -1, 77},
               {u"/dpi 9 /pw /dpi 8 /ext 1", u"/dpi", 1, 9}};
  for (const auto &c : cases) {
    ImportOptions o{1, 77, 7, 7};
    ParseImportOptions(c.text, o);
    EXPECT_EQ(o.password, c.password) << Ascii(c.text);
    EXPECT_EQ(o.extended.value_or(-1), c.extended) << Ascii(c.text);
    EXPECT_EQ(o.dpi, c.dpi) << Ascii(c.text);
  }
}

}  // namespace
}  // namespace kapdf
