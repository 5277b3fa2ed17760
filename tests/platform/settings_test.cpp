#include "platform/settings.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "platform/ini_file.h"
#include "platform/setting_text.h"

namespace kapdf::platform {
namespace {

TEST(Settings, WhatIsWrittenIsRead) {
  const Settings key(u"Software\\kaPDF tests\\Written", u"\\Filter\\PDF");
  for (const int32_t value : {0, -1, 75, INT32_MIN, INT32_MAX}) {
    ASSERT_TRUE(key.WriteInteger(u"Quality", value));
    EXPECT_EQ(value, key.ReadInteger(u"quality", 5)) << "names do not depend on case";
  }
  for (const double value : {0.0, 0.1, -2.5, 1e-300, 1.7976931348623157e308}) {
    ASSERT_TRUE(key.WriteReal(u"PaperFrame", value));
    EXPECT_EQ(value, key.ReadReal(u"PaperFrame", 5));
  }
  EXPECT_FALSE(key.WriteReal(u"PaperFrame", std::numeric_limits<double>::infinity()));
  for (const std::u16string value :
       {u"", u"Entw\u00FCrfe; #1 = [gut]", u"  blanks  ", u"\"", u"\"quoted\"", u"C:\\x\\"}) {
    ASSERT_TRUE(key.WriteString(u"Subject", value));
    EXPECT_EQ(value, key.ReadString(u"Subject", u"fallback"));
  }
  EXPECT_TRUE(key.RemoveKey());
}

TEST(Settings, WhatIsMissingOrOfAnotherKindIsTheFallback) {
  const Settings key(u"Software\\kaPDF tests\\Missing", u"\\PDF");
  EXPECT_EQ(7, key.ReadInteger(u"DPI", 7));
  EXPECT_EQ(2.5, key.ReadReal(u"Miter", 2.5));
  ASSERT_TRUE(key.WriteString(u"DPI", u"many"));
  EXPECT_EQ(7, key.ReadInteger(u"DPI", 7));
  EXPECT_EQ(2.5, key.ReadReal(u"DPI", 2.5));
  EXPECT_TRUE(key.RemoveKey());
  EXPECT_EQ(u"x", key.ReadString(u"DPI", u"x"));
  EXPECT_TRUE(key.RemoveKey()) << "there is nothing left to remove";
}

TEST(Settings, RemovingTakesWhatLiesBelowAndNothingBeside) {
  const std::u16string base = u"Software\\kaPDF tests\\Tree";
  const Settings top(base, u""), below(base, u"\\PDF"), beside(base + u"2", u"\\PDF");
  for (const Settings *key : {&top, &below, &beside}) ASSERT_TRUE(key->WriteInteger(u"A", 1));
  EXPECT_TRUE(top.RemoveKey());
  EXPECT_EQ(0, top.ReadInteger(u"A", 0));
  EXPECT_EQ(0, below.ReadInteger(u"A", 0));
  EXPECT_EQ(1, beside.ReadInteger(u"A", 0));
  EXPECT_TRUE(Settings(base + u"2", u"").RemoveKey());
}

TEST(SettingText, Numbers) {
  const std::pair<const char *, std::optional<double>> reals[] = {
      {" 2.5", 2.5}, {"+3", 3.0}, {"-.5e1 mm", -5.0}, {"2,5", 2.0},  {"1e", 1.0}, {"0x10", 0.0},
      {"inf", {}},   {"nan", {}}, {"", {}},           {"1e999", {}}, {"+-1", {}}, {".", {}}};
  for (const auto &[text, value] : reals) EXPECT_EQ(value, ScanReal(text)) << text;
  const std::pair<const char *, std::optional<int32_t>> integers[] = {
      {" 12 ", 12}, {"-2147483648", INT32_MIN}, {"4294967295", -1}, {"0xFF", 255}, {"010", 10}, {"1.5", {}}, {"", {}},
      {"12a", {}},  {"-2147483649", {}},        {"4294967296", {}}};
  for (const auto &[text, value] : integers) EXPECT_EQ(value, ScanInteger(text)) << text;
  EXPECT_EQ(std::nullopt, ScanInteger("99999999999999999999"));
}

constexpr std::string_view kHandWritten =
    "\xEF\xBB\xBF; my settings\r\n"
    "outside = 1\r\n"
    "\r\n"
    "  [ Key\\PDF ]  \r\n"
    "# a comment = 3\r\n"
    "  Clipping =  0  \r\n"
    "nonsense\r\n"
    "Author= \"  A; B\"\r\n"
    "Clipping=1\r\n"
    "\r\n"
    "[Key\\PDF2]\r\n"
    "Clipping=5\r\n"
    "[key\\pdf]\r\n"
    "Late=9";

TEST(IniFile, ReadsWhatPeopleWrite) {
  const IniFile file = IniFile::Parse(kHandWritten);
  EXPECT_EQ("1", file.Find("KEY\\pdf", "CLIPPING"));
  EXPECT_EQ("  A; B", file.Find("Key\\PDF", "Author"));
  EXPECT_EQ("9", file.Find("Key\\PDF", "Late"));
  EXPECT_EQ("1", file.Find("", "outside"));
  for (const char *name : {"# a comment", "nonsense", ""}) EXPECT_EQ(std::nullopt, file.Find("Key\\PDF", name));
  EXPECT_EQ(std::nullopt, file.Find("Key", "Clipping"));
}

TEST(IniFile, ChangesOneLineAndKeepsTheOthers) {
  IniFile file = IniFile::Parse("a=1\n\n[K] \n; note\n x = 2 ; kept?\n\n\n[L]\ny=3");
  EXPECT_TRUE(file.Set("k", "X", "4"));
  EXPECT_TRUE(file.Set("K", "z", " 5"));
  EXPECT_TRUE(file.Set("New\\Key", "q", "6"));
  EXPECT_EQ("a=1\n\n[K] \n; note\nX=4\nz=\" 5\"\n\n\n[L]\ny=3\n\n[New\\Key]\nq=6\n", file.Text());
  EXPECT_EQ("6", file.Find("New\\Key", "q"));
  for (const char *name : {"", " ", "a=b", "[x]", ";n", "line\nbreak"}) EXPECT_FALSE(file.Set("K", name, "1")) << name;
  EXPECT_FALSE(file.Set("K", "x", "two\nlines"));
  file.RemoveTree("ne");
  EXPECT_EQ("6", file.Find("New\\Key", "q"));
  file.RemoveTree("new");
  EXPECT_EQ(std::nullopt, file.Find("New\\Key", "q"));
}

}  // namespace
}  // namespace kapdf::platform
