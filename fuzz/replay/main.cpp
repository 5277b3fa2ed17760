// Runs one fuzz target over the files and folders named on the command line, without libFuzzer. An input that takes
// more than ten seconds ends the run.
#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <mutex>
#include <string_view>
#include <thread>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

namespace {

// Ends the process unless it is destroyed in time.
class Watchdog {
 public:
  explicit Watchdog(std::chrono::seconds limit) : thread_([this, limit] { Wait(limit); }) {}
  ~Watchdog() {
    {
      const std::lock_guard lock(mutex_);
      done_ = true;
    }
    changed_.notify_one();
    thread_.join();
  }

 private:
  void Wait(std::chrono::seconds limit) {
    std::unique_lock lock(mutex_);
    if (changed_.wait_for(lock, limit, [this] { return done_; })) return;
    std::fprintf(stderr, "more than %d seconds\n", static_cast<int>(limit.count()));
    std::abort();
  }

  std::mutex mutex_;
  std::condition_variable changed_;
  bool done_ = false;
  std::thread thread_;
};

bool Replay(const std::filesystem::path &path, std::chrono::seconds limit) {
  std::ifstream file(path, std::ios::binary);
  if (!file) {
    std::fprintf(stderr, "cannot read %s\n", path.string().c_str());
    return false;
  }
  const std::vector<char> bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  // Printed first, so that the log names the file that crashes.
  std::printf("%s (%zu bytes)", path.string().c_str(), bytes.size());
  std::fflush(stdout);
  const auto start = std::chrono::steady_clock::now();
  {
    const Watchdog watchdog(limit);
    LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t *>(bytes.data()), bytes.size());
  }
  const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
  std::printf(" %.2f s\n", took.count());
  return true;
}

}  // namespace

int main(int argc, char **argv) {
  std::vector<std::filesystem::path> files;
  std::chrono::seconds limit(10);
  for (int i = 1; i < argc; ++i) {
    if (std::string_view(argv[i]) == "--seconds" && i + 1 < argc) {
      limit = std::chrono::seconds(std::atoi(argv[++i]));
      continue;
    }
    if (!std::filesystem::is_directory(argv[i])) {
      files.emplace_back(argv[i]);
      continue;
    }
    for (const auto &entry : std::filesystem::recursive_directory_iterator(argv[i])) {
      if (entry.is_regular_file()) files.push_back(entry.path());
    }
  }
  std::sort(files.begin(), files.end());
  if (files.empty()) std::fprintf(stderr, "no files to replay\n");
  bool ok = !files.empty();
  for (const auto &file : files) ok = Replay(file, limit) && ok;
  return ok ? 0 : 1;
}
