// Signals that end a run from outside: no settings and no half of an output may stay behind.
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <streambuf>

#include "commands/tool.h"
#include "system/os.h"

namespace kapdf::tool {
namespace {

// Raises a signal when the first byte arrives, as a pipe does whose reader has gone.
class Raising : public std::streambuf {
 public:
  explicit Raising(int signal) : signal_(signal) {}

 protected:
  std::streamsize xsputn(const char *, std::streamsize count) override {
    std::raise(signal_);
    return count;
  }
  int_type overflow(int_type c) override {
    std::raise(signal_);
    return traits_type::not_eof(c);
  }

 private:
  int signal_;
};

int RunRaising(int signal) {
  Raising buffer(signal);
  std::ostream out(&buffer);
  std::istringstream in;
  std::ostringstream err;
  return RunTool({"import", "all.pdf", "--all", "--set", "Quality=1", "--lib", ProgramFolder() + "/fake_module.so"},
                 {in, out, err});
}

TEST(Leftovers, NoneWhenTheReaderOfTheOutputOrTheTerminalGoesAway) {
  const std::string folder = std::filesystem::absolute("leftovers").string();
  std::filesystem::create_directory(folder);
  std::ofstream("all.pdf") << "{\"kind\":\"composite\"}";
  ASSERT_EQ(setenv("TMPDIR", folder.c_str(), 1), 0);
  EXPECT_EXIT(std::exit(RunRaising(SIGPIPE)), testing::KilledBySignal(SIGPIPE), "");
  EXPECT_TRUE(std::filesystem::is_empty(folder)) << "after SIGPIPE";
  EXPECT_EXIT(std::exit(RunRaising(SIGHUP)), testing::ExitedWithCode(0), "");  // the last page was through by then
  EXPECT_TRUE(std::filesystem::is_empty(folder)) << "after SIGHUP";
  EXPECT_EXIT(
      {
        std::signal(SIGPIPE, SIG_IGN);
        std::exit(RunRaising(SIGPIPE));
      },
      testing::ExitedWithCode(0), "");
  unsetenv("TMPDIR");
  std::filesystem::remove_all(folder);
}

std::string Content(const char *path) {
  std::ostringstream text;
  text << std::ifstream(path).rdbuf();
  return text.str();
}

// Runs with files of at most so many bytes, as on a full disk.
int RunExport(rlim_t bytes, std::vector<std::string> words) {
  std::signal(SIGXFSZ, SIG_IGN);
  rlimit limit{};
  getrlimit(RLIMIT_FSIZE, &limit);
  limit.rlim_cur = std::min(bytes, limit.rlim_max);
  setrlimit(RLIMIT_FSIZE, &limit);
  words.insert(words.begin(),
               {"export", "points.jsonl", "--lib", ProgramFolder() + "/fake_module.so", "-o", "old.pdf"});
  std::istringstream in;
  std::ostringstream out, err;
  const int status = RunTool(words, {in, out, err});
  limit.rlim_cur = limit.rlim_max;
  setrlimit(RLIMIT_FSIZE, &limit);
  return status;
}

TEST(Leftovers, AFailureLeavesTheOlderFileAsItWas) {
  constexpr const char *kPoint = "{\"kind\":\"point\",\"at\":[1,2]}\n";
  std::ofstream points("points.jsonl");
  for (int i = 0; i < 10; ++i) points << kPoint;
  points.close();
  const std::string older = "old " + std::string(600, 'x');
  const struct {
    rlim_t bytes;
    std::vector<std::string> words;
    int status;
  } cases[] = {{800, {}, 1},
               {700, {"--append"}, 1},
               {700, {"--replace", "1"}, 1},
               {RLIM_INFINITY, {"no.jsonl"}, 1},
               {RLIM_INFINITY, {"--options", "/interrupt"}, 130},
               {RLIM_INFINITY, {"--append"}, 0},
               {RLIM_INFINITY, {}, 0}};
  for (const auto &c : cases) {
    std::ofstream("old.pdf") << older;
    EXPECT_EQ(RunExport(c.bytes, c.words), c.status) << testing::PrintToString(c.words);
    EXPECT_EQ(Content("old.pdf") == older, c.status != 0) << testing::PrintToString(c.words);
    EXPECT_FALSE(std::filesystem::exists("old.pdf.kapdf-old"));
  }
}

}  // namespace
}  // namespace kapdf::tool
