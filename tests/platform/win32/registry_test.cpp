#include <gtest/gtest.h>
#include <windows.h>

#include "platform/file.h"
#include "platform/settings.h"

namespace kapdf::platform {
namespace {

class Registry : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyExW(HKEY_CURRENT_USER, L"Software\\kaPDF tests\\Registry\\PDF", 0, nullptr, 0,
                                             KEY_ALL_ACCESS, nullptr, &raw_, nullptr));
  }
  void TearDown() override {
    RegCloseKey(raw_);
    EXPECT_TRUE(Settings(u"Software\\kaPDF tests\\Registry", u"").RemoveKey());
  }
  void Put(const wchar_t *name, DWORD type, const void *data, DWORD size) {
    ASSERT_EQ(ERROR_SUCCESS, RegSetValueExW(raw_, name, 0, type, static_cast<const BYTE *>(data), size));
  }

  HKEY raw_ = nullptr;
  const Settings key_{u"Software\\kaPDF tests\\Registry", u"\\PDF"};
};

TEST_F(Registry, TypesAreThoseThatHostsWrite) {
  ASSERT_TRUE(key_.WriteInteger(u"I", -2));
  ASSERT_TRUE(key_.WriteReal(u"R", 2.5));
  DWORD type = 0, number = 0, size = sizeof number;
  ASSERT_EQ(ERROR_SUCCESS, RegQueryValueExW(raw_, L"I", nullptr, &type, reinterpret_cast<BYTE *>(&number), &size));
  EXPECT_EQ(DWORD{REG_DWORD}, type);
  EXPECT_EQ(0xFFFFFFFEu, number);
  wchar_t text[16] = {};
  size = sizeof text;
  ASSERT_EQ(ERROR_SUCCESS, RegQueryValueExW(raw_, L"R", nullptr, &type, reinterpret_cast<BYTE *>(text), &size));
  EXPECT_EQ(DWORD{REG_SZ}, type);
  EXPECT_EQ(std::wstring(L"2.5"), text);
}

TEST_F(Registry, StoredTextMayLackItsZeroOrBeLong) {
  Put(L"NoZero", REG_SZ, L"3.5", 6);
  EXPECT_EQ(3.5, key_.ReadReal(u"NoZero", 0));
  Put(L"Odd", REG_SZ, L"ab", 3);
  EXPECT_EQ(u"a", key_.ReadString(u"Odd", u""));
  const std::wstring large(3000, L'x');
  Put(L"Long", REG_SZ, large.c_str(), 6002);
  EXPECT_EQ(std::u16string(3000, u'x'), key_.ReadString(u"Long", u""));
}

TEST_F(Registry, OtherTypesGiveTheFallback) {
  const uint64_t wide = 5;
  Put(L"Q", REG_QWORD, &wide, 8);
  Put(L"Short", REG_DWORD, &wide, 2);
  EXPECT_EQ(9, key_.ReadInteger(u"Q", 9));
  EXPECT_EQ(9, key_.ReadInteger(u"Short", 9));
  EXPECT_EQ(u"x", key_.ReadString(u"Q", u"x"));
  EXPECT_EQ(0.5, key_.ReadReal(u"Q", 0.5));
}

TEST(FileOnWindows, NamesFoldersAndDevices) {
  EXPECT_EQ(u"b/c", FileNameOf(u"C:\\a\\b/c"));
  EXPECT_EQ(u"C:\\a\\", FolderOf(u"C:\\a\\b/c"));
  EXPECT_EQ(u"", FolderOf(u"c"));
  EXPECT_EQ(u"c:\\tmp\\x.txt", DiagnosticPath("x.txt"));
  EXPECT_FALSE(OpenFile(u"NUL", "rb", Share::kRead));
}

}  // namespace
}  // namespace kapdf::platform
