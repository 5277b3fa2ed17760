#include "output.h"

#include "utf.h"

namespace kapdf::tool {

Outcome Output::OpenFile(const std::string &path) {
  path_ = path;
  file_.open(PathOf(path), std::ios::binary | std::ios::trunc);
  if (!file_) return Fail("cannot write " + path);
  stream_ = &file_;
  return {};
}

Output::~Output() {
  if (!file_.is_open()) return;
  file_.close();
  std::error_code ignored;
  std::filesystem::remove(PathOf(path_), ignored);
}

Outcome Output::WriteBuffer() {
  stream_->write(buffer_.data(), static_cast<std::streamsize>(buffer_.size()));
  buffer_.clear();
  return *stream_ ? Outcome{} : Fail("cannot write all of " + path_ + "; is the disk full?");
}

Outcome Output::Finish() {
  if (Outcome written = WriteBuffer(); !written.ok()) return written;
  stream_->flush();
  if (file_.is_open()) {
    const bool kept = static_cast<bool>(file_);
    if (!kept) return Fail("cannot write all of " + path_ + "; is the disk full?");
    file_.close();
  }
  return *stream_ ? Outcome{} : Fail("cannot write all of " + path_ + "; is the disk full?");
}

}  // namespace kapdf::tool
