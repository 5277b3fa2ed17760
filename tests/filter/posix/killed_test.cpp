// A process that is killed while it adds a page.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <vector>

#include "filter/filter.h"
#include "support/bytes.h"
#include "support/pdf_builder.h"
#include "support/temp_file.h"

namespace kapdf {
namespace {

[[noreturn]] void AddPages(const std::u16string &path) {
  for (;;) {
    auto *filter = new CPDFFilter(u"Software\\kaPDF-tests\\killed");
    FileInfo info{};
    info.xmax = info.ymax = 100;
    info.pageIndex = -2;
    if (filter->OpenWrite(path.c_str(), &info, nullptr, nullptr) != FilterOk) _exit(1);
    // Rows of noise, so that much is written for long.
    RasterHeaderPayload header{500, 2000, 0, 0, 100, 0, 4, nullptr};
    ElementRecord record{};
    record.kind = ElemRasterHeader;
    record.payload = &header;
    filter->WriteElement(&record);
    std::vector<uint8_t> row(1500);
    record.kind = ElemRasterRows;
    record.payload = row.data();
    record.payloadBytes = 1500;
    for (uint32_t noise = 1; filter->WriteElement(&record) == FilterOk;) {
      for (uint8_t &byte : row) byte = static_cast<uint8_t>((noise = noise * 1664525 + 1013904223) >> 24);
    }
    filter->Close();
    filter->Destroy(1);
  }
}

TEST(Killed, LeavesTheOldBytes) {
  const std::string old = test::PagesOf({"q", "Q"}).Build(test::XRefForm::kObjectStream);
  size_t longest = 0;
  for (int round = 0; round < 25; ++round) {
    test::TempFile file(old);
    file.Close();
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) AddPages(file.path16());
    usleep(static_cast<useconds_t>(500 + round * round * 150));
    kill(child, SIGKILL);
    int status = 0;
    waitpid(child, &status, 0);
    ASSERT_TRUE(WIFSIGNALED(status));
    const std::string left = test::ReadFile(file.path());
    ASSERT_TRUE(left.starts_with(old)) << round;
    longest = std::max(longest, left.size());
  }
  EXPECT_GT(longest, old.size() + 1000) << "none was killed while it wrote";
}

}  // namespace
}  // namespace kapdf
