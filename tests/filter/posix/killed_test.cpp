// A process that is killed while it adds a page.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>

#include "filter/filter.h"
#include "support/pdf_builder.h"
#include "support/temp_file.h"

namespace kapdf {
namespace {

[[noreturn]] void AddPagesUntilKilled(const std::u16string &path) {
  for (;;) {
    auto *filter = new CPDFFilter(u"Software\\kaPDF-tests\\killed", true);
    FileInfo info{};
    info.xmax = info.ymax = 100;
    info.pageIndex = -2;
    if (filter->OpenWrite(path.c_str(), &info, nullptr, nullptr) != FilterOk) _exit(1);
    filter->EndSection(2, 0, 0);
    filter->BeginSection(4, 0, 0);
    ElementRecord record{};
    record.kind = ElemLine;
    for (int i = 0; i < 20000; ++i) {
      LinePayload line{0.1, i * 0.37, 1, i * 0.91, i * 1.13};
      record.payload = &line;
      filter->WriteElement(&record);
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
    if (child == 0) AddPagesUntilKilled(file.path16());
    usleep(static_cast<useconds_t>(500 + round * round * 150));
    kill(child, SIGKILL);
    int status = 0;
    waitpid(child, &status, 0);
    ASSERT_TRUE(WIFSIGNALED(status));
    std::ifstream in(file.path(), std::ios::binary);
    const std::string left(std::istreambuf_iterator<char>(in), {});
    ASSERT_TRUE(left.starts_with(old)) << round;
    longest = std::max(longest, left.size());
  }
  EXPECT_GT(longest, old.size() + 1000) << "none was killed while it wrote";
}

}  // namespace
}  // namespace kapdf
