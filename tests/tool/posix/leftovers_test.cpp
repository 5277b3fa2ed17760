// Signals that end a run from outside: no settings and no half of an output may stay behind.
#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <streambuf>

#include "os.h"
#include "tool.h"

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

}  // namespace
}  // namespace kapdf::tool
