// Opening a file that is there already.
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <thread>

#include "platform/settings.h"
#include "support/filter_pointer.h"
#include "support/pdf_builder.h"
#include "support/temp_file.h"

namespace kapdf {
namespace {

constexpr char16_t kPath[] = u"Software\\kaPDF-tests\\extending";

struct Opened {
  explicit Opened(const std::u16string &path, int32_t page) : filter(new CPDFFilter(kPath)) {
    info.xmax = info.ymax = 10;
    info.pageIndex = page;
    info.pageCount = 77;
    const auto before = std::chrono::steady_clock::now();
    result = filter->OpenWrite(path.c_str(), &info, nullptr, nullptr);
    seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - before).count();
  }

  test::FilterPointer filter;
  FileInfo info{};
  uint32_t result;
  double seconds;
};

TEST(Extending, WaitsForAFileThatAnotherHolds) {
  test::TempFile file(test::OnePage(""));
  file.Close();
  const platform::Settings settings(kPath, u"\\Filter\\PDF");
  {
    const Opened holder(file.path16(), -2);
    ASSERT_EQ(holder.result, FilterOk);
    const struct {
      int32_t retries, page;
      double least, most;  // seconds
    } cases[] = {{2, -2, 0.45, 5}, {1, 0, 0, 0.4}, {0, -2, 0, 0.4}, {-3, -2, 0, 0.4}, {9, -1, 0, 0.4}};
    for (const auto &c : cases) {
      settings.WriteInteger(u"WriteRetries", c.retries);
      const Opened second(file.path16(), c.page);
      EXPECT_EQ(second.result, FilterCannotWrite) << c.retries;
      EXPECT_TRUE(second.seconds >= c.least && second.seconds <= c.most) << c.retries << ": " << second.seconds;
    }
  }
  EXPECT_GT(std::filesystem::file_size(file.path()), 0u) << "nobody emptied it";

  settings.WriteInteger(u"WriteRetries", 20);
  auto holder = std::make_unique<Opened>(file.path16(), -2);
  std::thread release([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(700));
    holder.reset();
  });
  const Opened late(file.path16(), -2);
  release.join();
  EXPECT_EQ(late.result, FilterOk);
  EXPECT_GE(late.seconds, 0.6);
  platform::Settings(kPath, u"").RemoveKey();
}

TEST(Extending, KnowsAtOnceThatAFolderIsNoFile) {
  const std::u16string folder = std::filesystem::current_path().u16string();
  for (const int32_t page : {-1, -2, 0, 5}) {
    const Opened opened(folder, page);
    EXPECT_EQ(opened.result, FilterCannotWrite) << page;
    EXPECT_LT(opened.seconds, 0.4) << page;
  }
}

TEST(Extending, LeavesTheHostsFieldsAlone) {
  test::TempFile file(test::OnePage(""));
  file.Close();
  for (const int32_t page : {-2, -7, 0, 5}) {
    const Opened opened(file.path16(), page);
    EXPECT_EQ(opened.result, FilterOk);
    EXPECT_EQ(std::pair(opened.info.pageIndex, opened.info.pageCount), std::pair(page, 77));
    EXPECT_EQ(opened.info.formatName[0], 0);
  }
}

}  // namespace
}  // namespace kapdf
