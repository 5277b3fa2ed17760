#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <thread>
#include <vector>

#include "platform/file.h"
#include "platform/settings.h"
#include "support/bytes.h"

namespace kapdf::platform {
namespace {

// Each test has an empty folder of its own and a settings file in it that is not there yet.
class SettingsFile : public testing::Test {
 protected:
  void SetUp() override {
    folder_ = std::filesystem::absolute(testing::UnitTest::GetInstance()->current_test_info()->name());
    std::filesystem::remove_all(folder_);
    std::filesystem::create_directory(folder_);
    path_ = folder_ / "settings.ini";
    setenv("KAPDF_SETTINGS", path_.c_str(), 1);
  }
  void TearDown() override { std::filesystem::remove_all(folder_); }

  void Put(std::string_view text) const { test::WriteFile(path_, text); }

  const Settings key_{u"", u"\\PDF"};
  std::filesystem::path folder_, path_;
};

TEST_F(SettingsFile, ReadingNeverMakesTheFile) {
  EXPECT_EQ(3, key_.ReadInteger(u"A", 3));
  key_.CreateKey();
  EXPECT_TRUE(key_.RemoveKey());
  EXPECT_TRUE(std::filesystem::is_empty(folder_));
}

TEST_F(SettingsFile, ChangesShowAtOnce) {
  for (int i = 0; i < 50; ++i) {  // the same size each time, within one tick of the file system's clock
    Put("[Software\\Tessmark GmbH\\ZVIOFilter\\PDF]\nA=" + std::to_string(10 + i));
    ASSERT_EQ(10 + i, key_.ReadInteger(u"A", 0));
  }
}

// A file that has been as it is for long is kept in memory.
TEST_F(SettingsFile, ChangesOfAnOldFileShowToo) {
  const auto now = std::filesystem::file_time_type::clock::now();
  const auto put = [&](const std::filesystem::path &path, const char *value, int hoursAgo) {
    test::WriteFile(path, "[Software\\Tessmark GmbH\\ZVIOFilter\\PDF]\nA=" + std::string(value) + "\n");
    std::filesystem::last_write_time(path, now - std::chrono::hours(hoursAgo));
  };
  put(path_, "10", 1);
  ASSERT_EQ(10, key_.ReadInteger(u"A", 0));
  put(path_, "11", 2);  // another time
  EXPECT_EQ(11, key_.ReadInteger(u"A", 0));
  put(path_, "120", 2);  // another size
  EXPECT_EQ(120, key_.ReadInteger(u"A", 0));
  put(folder_ / "new.ini", "130", 2);  // another file in its place
  std::filesystem::rename(folder_ / "new.ini", path_);
  EXPECT_EQ(130, key_.ReadInteger(u"A", 0));
}

TEST_F(SettingsFile, IsFoundInTheUsersFolders) {
  unsetenv("KAPDF_SETTINGS");
  setenv("XDG_CONFIG_HOME", (folder_ / "config").c_str(), 1);
  ASSERT_TRUE(key_.WriteInteger(u"A", 1));
  EXPECT_TRUE(std::filesystem::exists(folder_ / "config/kaPDF/settings.ini"));
  unsetenv("XDG_CONFIG_HOME");
  setenv("HOME", folder_.c_str(), 1);
  EXPECT_EQ(0, key_.ReadInteger(u"A", 0));
  ASSERT_TRUE(key_.WriteInteger(u"A", 2));
  EXPECT_TRUE(std::filesystem::exists(folder_ / ".config/kaPDF/settings.ini"));
}

TEST_F(SettingsFile, LinksAndRightsStay) {
  Put("; mine\n");
  std::filesystem::rename(path_, folder_ / "real.ini");
  std::filesystem::permissions(folder_ / "real.ini", std::filesystem::perms(0600));
  std::filesystem::create_symlink("real.ini", path_);
  ASSERT_TRUE(key_.WriteInteger(u"A", 1));
  EXPECT_TRUE(std::filesystem::is_symlink(path_));
  EXPECT_EQ("; mine\n\n[Software\\Tessmark GmbH\\ZVIOFilter\\PDF]\nA=1\n", test::ReadFile(path_));
  EXPECT_EQ(std::filesystem::perms(0600), std::filesystem::status(path_).permissions());
}

TEST_F(SettingsFile, WritersAtTheSameTimeLoseNothing) {
  std::vector<std::thread> writers;
  for (char16_t name : {u'A', u'B', u'C', u'D'}) {
    writers.emplace_back([this, name] {
      for (int i = 1; i <= 10; ++i) key_.WriteInteger(std::u16string(1, name), i);
    });
  }
  for (std::thread &writer : writers) writer.join();
  for (char16_t name : {u'A', u'B', u'C', u'D'}) EXPECT_EQ(10, key_.ReadInteger(std::u16string(1, name), 0));
}

TEST_F(SettingsFile, AFolderInItsPlaceGivesFallbacks) {
  std::filesystem::create_directory(path_);
  EXPECT_EQ(3, key_.ReadInteger(u"A", 3));
  EXPECT_FALSE(key_.WriteInteger(u"A", 1));
}

TEST(FileOnPosix, PipesAndDevicesAreNotReadAndHoldNobodyUp) {
  unlink("pipe");
  ASSERT_EQ(0, mkfifo("pipe", 0600));
  EXPECT_FALSE(OpenFile(u"pipe", "rb", Share::kRead));
  EXPECT_FALSE(OpenFile(u"pipe", "wb", Share::kExclusive));
  EXPECT_FALSE(OpenFile(u"/dev/zero", "rb", Share::kRead));
  EXPECT_FALSE(OpenFile(u"/dev/null", "r+b", Share::kRead));
  EXPECT_TRUE(OpenFile(u"/dev/null", "wb", Share::kExclusive));
  unlink("pipe");
}

TEST(FileOnPosix, NamesAndFolders) {
  EXPECT_EQ(u"c", FileNameOf(u"/a\\b/c"));
  EXPECT_EQ(u"c", FileNameOf(u"c"));
  EXPECT_EQ(u"", FileNameOf(u"a/"));
  EXPECT_EQ(u"/a\\b/", FolderOf(u"/a\\b/c"));
  EXPECT_EQ(u"", FolderOf(u"a\\c"));
  EXPECT_EQ(u"/tmp/x.txt", DiagnosticPath("x.txt"));
}

}  // namespace
}  // namespace kapdf::platform
