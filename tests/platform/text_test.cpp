#include "platform/text.h"

#include <gtest/gtest.h>

#include <tuple>

namespace kapdf::platform {
namespace {

TEST(Text, CodePagesBothWays) {
  const std::tuple<uint32_t, std::string, std::u16string> cases[] = {
      {0, "a\x80\x81\x9F\xE4", u"a\u20AC\u0081\u0178\u00E4"},
      {1252, "\x8D\x8E\x8F\x90\x91\xFF", u"\u008D\u017D\u008F\u0090\u2018\u00FF"},
      {437, "\x84\xE1\xB3", u"\u00E4\u00DF\u2502"},
      {850, "\x84\xD5", u"\u00E4\u0131"},
      {874, "\xA1\x80", u"\u0E01\u20AC"},
      {1251, "\xC4\xE0", u"\u0414\u0430"},
      {1255, "\xE0", u"\u05D0"},
      {1258, "A\xD5", u"A\u01A0"},  // an A that might have got an accent
      {932, "x\x93\xFA\x96\x7B\xB1", u"x\u65E5\u672C\uFF71"},
      {936, "\xC4\xE3", u"\u4F60"},
      {949, "\xB0\xA1", u"\uAC00"},
      {950, "\xA7\x41", u"\u4F60"},
      {10000, "\x8A", u"\u00E4"},
      {65001, "\xC3\xA4\xF0\x9F\x98\x80", u"\u00E4\U0001F600"},
      {40404, "\x80", u"\u20AC"},  // an unknown page acts as the system's
  };
  for (const auto &[page, bytes, text] : cases) {
    EXPECT_EQ(text, ToWide(bytes, page)) << page;
    EXPECT_EQ(bytes, ToNarrow(text, page)) << page;
  }
}

TEST(Text, WhatAPageCannotExpressIsAQuestionMarkAndLengthIsFree) {
  EXPECT_EQ("a?b?", ToNarrow(u"a\u65E5b\u0101", 1252));  // and not the similar "a" for an a with a bar
  EXPECT_EQ("?", ToNarrow(u"\u0080", 1252));             // the byte means something else
  EXPECT_EQ("\x93\xFA?x", ToNarrow(u"\u65E5\u05D0x", 932));
  std::string bytes;
  for (int i = 0; i < 5000; ++i) bytes += "\x93\xFA";
  EXPECT_EQ(bytes, ToNarrow(ToWide(bytes, 932), 932)) << "a long text keeps its end";
  EXPECT_EQ("", ToNarrow(u"", 932));
  EXPECT_EQ(u"", ToWide("", 932));
}

TEST(Text, BrokenUnicodeBecomesTheReplacement) {
  const std::pair<std::string, std::u16string> cases[] = {
      {"\xC0\xAF", u"\uFFFD\uFFFD"},                        // overlong
      {"\xE0\x80\xAF", u"\uFFFD\uFFFD\uFFFD"},              // overlong
      {"\xED\xA0\x80", u"\uFFFD\uFFFD\uFFFD"},              // a surrogate
      {"\xF4\x90\x80\x80z", u"\uFFFD\uFFFD\uFFFD\uFFFDz"},  // above the last character
      {"a\xE2\x82", u"a\uFFFD"},                            // ends inside
      {"\xE2\x82\x41", u"\uFFFD\u0041"},
  };
  for (const auto &[bytes, text] : cases) EXPECT_EQ(text, FromUtf8(bytes));
  EXPECT_EQ("\xEF\xBF\xBD\x61", ToUtf8(std::u16string{0xDC00, u'a'}));
  EXPECT_EQ("\xEF\xBF\xBD\xF0\x9F\x98\x80", ToUtf8(std::u16string{0xD83D, 0xD83D, 0xDE00}));
}

}  // namespace
}  // namespace kapdf::platform
