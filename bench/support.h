// What the import benchmarks share: files to read, a filter that reads them, and peers run as processes.
#pragma once

#include <sys/resource.h>
#include <zlib.h>

#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>

#include "filter/filter.h"

namespace kapdf::bench {

// Processor seconds of all child processes that have ended, user and system.
inline double ChildSeconds() {
  rusage usage{};
  getrusage(RUSAGE_CHILDREN, &usage);
  const auto seconds = [](const timeval &t) {
    return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_usec) * 1e-6;
  };
  return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

// Runs a peer quietly and gives its processor seconds; below zero when it is not there.
inline double RunPeer(const std::string &command) {
  const double before = ChildSeconds();
  if (std::system((command + " >/dev/null 2>&1").c_str()) != 0) return -1.0;
  return ChildSeconds() - before;
}

inline std::string TemporaryPath(const std::string &name) {
  const char *folder = std::getenv("TMPDIR");
  return std::string(folder ? folder : "/tmp") + "/kapdf-bench-" + name;
}

inline void WriteFile(const std::string &path, const std::string &bytes) {
  std::FILE *file = std::fopen(path.c_str(), "wb");
  std::fwrite(bytes.data(), 1, bytes.size(), file);
  std::fclose(file);
}

// Objects 1, 2, ... as they are given, with a classic table; object 1 is the catalogue.
class Document {
 public:
  void Add(const std::string &object) {
    offsets_.push_back(bytes_.size());
    bytes_ += std::to_string(offsets_.size()) + " 0 obj\n" + object + "\nendobj\n";
  }
  void AddStream(const std::string &plain) {
    std::string packed(compressBound(plain.size()), '\0');
    uLongf size = packed.size();
    compress(reinterpret_cast<Bytef *>(packed.data()), &size, reinterpret_cast<const Bytef *>(plain.data()),
             plain.size());
    packed.resize(size);
    Add("<</Length " + std::to_string(size) + "/Filter/FlateDecode>>\nstream\n" + packed + "\nendstream");
  }
  std::string Finish() {
    const size_t start = bytes_.size();
    const std::string size = std::to_string(offsets_.size() + 1);
    bytes_ += "xref\n0 " + size + "\n0000000000 65535 f \n";
    for (const size_t offset : offsets_) {
      char line[32];
      std::snprintf(line, sizeof line, "%010zu 00000 n \n", offset);
      bytes_ += line;
    }
    return bytes_ + "trailer\n<</Size " + size + "/Root 1 0 R>>\nstartxref\n" + std::to_string(start) + "\n%%EOF\n";
  }

 private:
  std::string bytes_ = "%PDF-1.7\n";
  std::vector<size_t> offsets_;
};

// Owns a reading filter for the length of a scope.
class Reader {
 public:
  ~Reader() { filter_->Destroy(1); }
  CPDFFilter *operator->() const { return filter_; }

 private:
  CPDFFilter *filter_ = new CPDFFilter(nullptr);
};

inline std::u16string Wide(const std::string &ascii) { return {ascii.begin(), ascii.end()}; }

}  // namespace kapdf::bench
