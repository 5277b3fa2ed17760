// Runs one fuzz target over the files and folders named on the command line, without libFuzzer.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

namespace {

bool Replay(const std::filesystem::path &path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) {
    std::fprintf(stderr, "cannot read %s\n", path.string().c_str());
    return false;
  }
  const std::vector<char> bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  // Printed first, so that the log names the file that crashes.
  std::printf("%s (%zu bytes)\n", path.string().c_str(), bytes.size());
  std::fflush(stdout);
  LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t *>(bytes.data()), bytes.size());
  return true;
}

}  // namespace

int main(int argc, char **argv) {
  size_t count = 0;
  bool ok = argc > 1;
  for (int i = 1; i < argc; ++i) {
    if (std::filesystem::is_directory(argv[i])) {
      for (const auto &entry : std::filesystem::recursive_directory_iterator(argv[i])) {
        if (!entry.is_regular_file()) continue;
        ok = Replay(entry.path()) && ok;
        ++count;
      }
    } else {
      ok = Replay(argv[i]) && ok;
      ++count;
    }
  }
  if (count == 0) std::fprintf(stderr, "no files to replay\n");
  return ok && count > 0 ? 0 : 1;
}
