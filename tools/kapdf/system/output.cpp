#include "system/output.h"

#include <algorithm>
#include <iterator>

#include "system/settings.h"
#include "system/utf.h"

namespace kapdf::tool {
namespace {

constexpr std::string_view kKnownExtensions[] = {
    ".ai",   ".bmp",  ".csv",  ".dgn",  ".doc", ".docx", ".dwf",  ".dwg",  ".dxf",   ".emf",    ".eps",
    ".gif",  ".hpgl", ".htm",  ".html", ".jp2", ".jpeg", ".jpg",  ".json", ".jsonl", ".ndjson", ".odg",
    ".odt",  ".pdf",  ".plt",  ".png",  ".ps",  ".rtf",  ".step", ".stp",  ".svg",   ".svgz",   ".tif",
    ".tiff", ".txt",  ".webp", ".wmf",  ".xls", ".xlsx", ".xml",  ".xps",  ".zip"};

}  // namespace

Outcome CheckExtension(const std::string &path, std::string_view extension) {
  const std::string ending = Utf8Of(PathOf(path).extension());
  const auto is = [&](std::string_view known) { return EqualsIgnoringCase(ending, known); };
  if (is(extension) || std::ranges::none_of(kKnownExtensions, is)) return {};
  return FailUsage("the output must be named " + std::string(extension) + ", not " + path);
}

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
