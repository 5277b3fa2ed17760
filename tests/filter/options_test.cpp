#include "filter/options.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>

namespace kapdf {
namespace {

std::string Ascii(std::u16string_view text) { return {text.begin(), text.end()}; }

auto Values(const WriteSettings &s) {
  return std::tuple(s.colorCompression, s.bwCompression, s.quality, s.pdfa, s.atOrigin, s.paperFrame);
}
auto Values(const ImportOptions &o) { return std::tuple(o.asImage, o.dpi, o.colorDepth, o.extractText); }

TEST(ExportOptions, EachWordAndItsValues) {
  // Settings of before, so that a word that is not there shows.
  constexpr WriteSettings kBefore{7, 7, 77, 7, 7, 7.5};
  const struct {
    std::u16string_view text;
    bool good;
    WriteSettings after;
  } cases[] = {
      {u"", true, kBefore},
      {u"/col D /bw 4 /q 90 /pdfa 1 /origin 1 /frame 2.500000", true, {1, 0, 90, 1, 1, 2.5}},
      {u"/frame -1e1 /origin 0 /pdfa 0 /q 5 /bw 0 /col L", true, {0, 1, 5, 0, 0, -10}},
      {u"/col 0", true, {2, 7, 77, 7, 7, 7.5}},
      {u"/col U", true, {2, 7, 77, 7, 7, 7.5}},
      {u"/col 1", true, {1, 7, 77, 7, 7, 7.5}},
      {u"/col J", true, {1, 7, 77, 7, 7, 7.5}},
      {u"/col 2", true, {0, 7, 77, 7, 7, 7.5}},
      {u"/col \t\n L", true, {0, 7, 77, 7, 7, 7.5}},
      {u"/col Lossless", true, {0, 7, 77, 7, 7, 7.5}},
      {u"/col X", false, kBefore},
      {u"/col d", false, kBefore},
      {u"/col ", false, kBefore},
      {u"/col /bw 4", false, kBefore},  // the slash is taken for the value
      {u"/col", true, kBefore},         // without its blank the word is not there
      {u"/COL D", true, kBefore},
      {u"/bw 1", false, kBefore},
      {u"/bw ", false, kBefore},
      {u"/bw x", false, kBefore},
      {u"/bw 0x4", true, {7, 0, 77, 7, 7, 7.5}},
      {u"/bw 4 /bw 1", true, {7, 0, 77, 7, 7, 7.5}},  // the first one counts
      {u"name=\"a/bw 4\"", true, {7, 0, 77, 7, 7, 7.5}},
      {u"/q", true, kBefore},
      {u"/q x", true, kBefore},
      {u"/q 010", true, {7, 7, 8, 7, 7, 7.5}},
      {u"/q 99999999999", true, {7, 7, 2147483647, 7, 7, 7.5}},
      {u"/q -5", true, {7, 7, -5, 7, 7, 7.5}},
      {u"/frame 1,5", true, {7, 7, 77, 7, 7, 1}},
      {u"/frame inf", true, kBefore},
      {u"/frame nan", true, kBefore},
      {u"/frame", true, kBefore},
      {u"/q\u00A0"
       u"5 /q \u0665",
       true, kBefore},  // other alphabets' blanks and digits are none
  };
  for (const auto &test : cases) {
    WriteSettings settings = kBefore;
    EXPECT_EQ(ParseExportOptions(test.text, settings), test.good) << Ascii(test.text);
    if (!test.good) continue;  // the document is refused; what was parsed before is not asked for
    EXPECT_EQ(Values(settings), Values(test.after)) << Ascii(test.text);
  }
}

// Any text replaces all four values, also those that it does not name.
TEST(ImportOptions, EachWordAndItsValues) {
  constexpr ImportOptions kBefore{1, 77, 7, 7};
  const struct {
    std::u16string_view text;
    ImportOptions after;
  } cases[] = {
      {u"", kBefore},
      {u" ", {0, 300, 3, 0}},
      {u"/dpi 150", {0, 150, 3, 0}},
      {u"/mode 2 /dpi 600 /col 4 /text 1 /Convert 0 /Tolerance 0.5", {2, 600, 4, 1}},
      {u"/text 1/col 2", {0, 300, 2, 1}},
      {u"/col D", {0, 300, 3, 0}},
      {u"/col 99 /mode -1", {-1, 300, 99, 0}},
      {u"/MODE 1 /dpi", {0, 300, 3, 0}},
      {u"no word of these", {0, 300, 3, 0}},
  };
  for (const auto &test : cases) {
    ImportOptions options = kBefore;
    ParseImportOptions(test.text, options);
    EXPECT_EQ(Values(options), Values(test.after)) << Ascii(test.text);
  }
}

}  // namespace
}  // namespace kapdf
