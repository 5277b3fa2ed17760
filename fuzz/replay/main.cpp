// Runs one fuzz target over the files and folders named on the command line, without libFuzzer. An input that takes
// more than ten seconds ends the run.
//   --seconds N   another limit
//   --part I N    only every Nth file of them, the Ith first (from 1)
#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <future>
#include <iterator>
#include <string_view>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

namespace {

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
  const auto run = std::async(std::launch::async, [&bytes] {
    LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t *>(bytes.data()), bytes.size());
  });
  if (run.wait_for(limit) != std::future_status::ready) {
    std::fprintf(stderr, "more than %d seconds\n", static_cast<int>(limit.count()));
    std::abort();
  }
  const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
  std::printf(" %.2f s\n", took.count());
  return true;
}

}  // namespace

int main(int argc, char **argv) {
  std::vector<std::filesystem::path> files;
  std::chrono::seconds limit(10);
  size_t part = 1, parts = 1;
  for (int i = 1; i < argc; ++i) {
    if (std::string_view(argv[i]) == "--seconds" && i + 1 < argc) {
      limit = std::chrono::seconds(std::atoi(argv[++i]));
      continue;
    }
    if (std::string_view(argv[i]) == "--part" && i + 2 < argc) {
      part = std::max(std::strtoul(argv[++i], nullptr, 10), 1ul);
      parts = std::max(std::strtoul(argv[++i], nullptr, 10), 1ul);
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
  for (size_t i = part - 1; i < files.size(); i += parts) ok = Replay(files[i], limit) && ok;
  return ok ? 0 : 1;
}
