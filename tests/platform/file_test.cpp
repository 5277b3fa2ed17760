#include "platform/file.h"

#include <gtest/gtest.h>

#include <ctime>
#include <tuple>

#include "platform/environment.h"
#include "platform/module.h"

namespace kapdf::platform {
namespace {

void Put(std::u16string_view path, std::string_view bytes) {
  const FileHandle file = OpenFile(path, "wb", Share::kExclusive);
  ASSERT_TRUE(file);
  ASSERT_EQ(bytes.size(), std::fwrite(bytes.data(), 1, bytes.size(), file.get()));
}

std::string Get(std::u16string_view path) {
  const FileHandle file = OpenFile(path, "rb", Share::kAll);
  std::string bytes(100, '\0');
  bytes.resize(file ? std::fread(bytes.data(), 1, bytes.size(), file.get()) : 0);
  return bytes;
}

TEST(File, SharingModes) {
  const std::u16string path = u"sharing.bin";
  Put(path, "kept");
  const std::tuple<const char *, Share, const char *, Share, bool> cases[] = {
      {"rb", Share::kRead, "rb", Share::kRead, true},
      {"rb", Share::kAll, "rb", Share::kRead, true},
      {"rb", Share::kRead, "r+b", Share::kExclusive, false},
      {"r+b", Share::kExclusive, "rb", Share::kRead, false},
      {"r+b", Share::kExclusive, "w+b", Share::kExclusive, false},
      {"r+b", Share::kRead, "rb", Share::kRead, false},  // writes while it wants nobody else to
      {"r+b", Share::kAll, "r+b", Share::kAll, true},
  };
  for (const auto &[firstMode, firstShare, mode, share, opens] : cases) {
    const FileHandle first = OpenFile(path, firstMode, firstShare);
    ASSERT_TRUE(first);
    EXPECT_EQ(opens, OpenFile(path, mode, share) != nullptr) << firstMode << ", then " << mode;
  }
  EXPECT_EQ("kept", Get(path)) << "a refused \"w\" must not have emptied the file";
  EXPECT_TRUE(OpenFile(path, "r+b", Share::kExclusive)) << "closing gives the file free";
  EXPECT_TRUE(RemoveFile(path));
}

TEST(File, ModesDecideAboutTheFile) {
  const std::u16string path = u"Zeichnung \u00E4\u65E5.bin";
  RemoveFile(path);
  for (const char *mode : {"rb", "r+b", "", "x"}) EXPECT_FALSE(OpenFile(path, mode, Share::kRead)) << mode;
  EXPECT_FALSE(FileExists(path));
  Put(path, "twelve bytes");
  Put(path, "two");
  EXPECT_EQ("two", Get(path));
  EXPECT_FALSE(CreateNewFile(path));
  EXPECT_TRUE(RemoveFile(path));
  EXPECT_FALSE(RemoveFile(path));
  EXPECT_TRUE(CreateNewFile(path));
  EXPECT_TRUE(FileExists(path));
  RemoveFile(path);
  EXPECT_TRUE(FileExists(u"."));
  EXPECT_FALSE(OpenFile(u".", "rb", Share::kRead));
}

TEST(File, PositionsBeyondFourGibibytes) {
  {
    const FileHandle file = OpenFile(u"far.bin", "w+b", Share::kExclusive);
    const int64_t far = (int64_t{5} << 30) + 3;
    EXPECT_TRUE(SeekFile(file.get(), far, SEEK_SET));
    EXPECT_EQ(far, TellFile(file.get()));
    EXPECT_TRUE(SeekFile(file.get(), -far, SEEK_CUR));
    EXPECT_EQ(0, TellFile(file.get()));
    EXPECT_FALSE(SeekFile(file.get(), -1, SEEK_SET));
  }
  RemoveFile(u"far.bin");
}

TEST(Module, FolderHoldsThisProgram) {
  const std::u16string folder = ModuleFolder();
  EXPECT_TRUE(FileExists(folder + u"test_platform") || FileExists(folder + u"test_platform.exe"));
  EXPECT_EQ(folder, FolderOf(folder + u"x"));
  EXPECT_FALSE(SetCurrentFolder(u""));
  EXPECT_TRUE(SetCurrentFolder(folder));
  EXPECT_TRUE(FileExists(u"test_platform") || FileExists(u"test_platform.exe"));
}

TEST(Environment, DateAndTimeFollowThePicture) {
  const std::time_t before = std::time(nullptr);
  const LocalMoment moment = LocalMoment::Now();
  const std::time_t after = std::time(nullptr);
  const auto told = [](std::time_t time) {
    char text[64];
    std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S %Y%m%d%H%M%S", std::localtime(&time));
    return std::string(text);
  };
  const std::string text =
      moment.Date("yyyy-MM-dd") + ' ' + moment.Time("HH:mm:ss") + ' ' + moment.Date("yyyyMMdd") + moment.Time("HHmmss");
  EXPECT_TRUE(text == told(before) || text == told(after)) << text;
  EXPECT_FALSE(UserName().empty());
}

}  // namespace
}  // namespace kapdf::platform
