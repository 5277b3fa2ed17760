// A file of given bytes that lives as long as its object.
#pragma once

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>

namespace kapdf::test {

// In the system's folder for such files, open for reading and writing, at its start. std::tmpfile asks for rights on
// Windows that a test does not have.
class TempFile {
 public:
  explicit TempFile(std::string_view bytes) : path_(NewName()), stream_(std::fopen(path_.c_str(), "w+b")) {
    if (!stream_ || std::fwrite(bytes.data(), 1, bytes.size(), stream_) != bytes.size()) std::abort();
    std::rewind(stream_);
  }
  TempFile(const TempFile &) = delete;
  TempFile &operator=(const TempFile &) = delete;
  ~TempFile() {
    Close();
    std::remove(path_.c_str());
  }

  // Leaves the file to whoever opens it by path.
  void Close() {
    if (stream_) std::fclose(stream_);
    stream_ = nullptr;
  }
  std::FILE *stream() const { return stream_; }
  const std::string &path() const { return path_; }  // ASCII
  std::u16string path16() const { return {path_.begin(), path_.end()}; }

 private:
  static std::string NewName() {
    static std::atomic<unsigned> count{0};
    const std::string name =
        "kapdf-" + std::to_string(reinterpret_cast<size_t>(&count)) + "-" + std::to_string(++count);
    return (std::filesystem::temp_directory_path() / name).string();
  }

  std::string path_;
  std::FILE *stream_;
};

}  // namespace kapdf::test
