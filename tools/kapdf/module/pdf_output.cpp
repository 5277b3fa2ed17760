#include "module/pdf_output.h"

#include <algorithm>
#include <chrono>
#include <fstream>
#include <thread>

#include "module/page_writer.h"
#include "module/results.h"
#include "system/utf.h"

namespace kapdf::tool {
namespace {

constexpr int32_t kNewDocument = -1, kAddPage = -2;
constexpr int kAttempts = 10;  // at a file that another process extends, as the module has them for itself
constexpr std::chrono::milliseconds kPause(500);
constexpr uintmax_t kTailBytes = 1024;  // that hold the end of a document

uint32_t IdentifyInTime(Filter &reader, const std::u16string &path, FileInfo &info) {
  for (int attempt = 1;; ++attempt) {
    const uint32_t result = reader.table().Identify(reader.get(), path.c_str(), &info);
    if (result != FilterCannotRead || attempt == kAttempts || InterruptGuard::Requested()) return result;
    std::this_thread::sleep_for(kPause);
  }
}

std::optional<uintmax_t> SizeOf(const std::string &path) {
  std::error_code error;
  const uintmax_t bytes = std::filesystem::file_size(PathOf(path), error);
  return error ? std::nullopt : std::optional(bytes);
}

}  // namespace

PdfOutput::~PdfOutput() {
  std::error_code ignored;
  if (begun_) {
    filter_.table().Close(filter_.get());
    if (!copy_.empty()) {
      std::filesystem::rename(copy_, overwritten_, ignored);
      return;
    }
    if (!extends_) {
      std::filesystem::remove(PathOf(target_.path), ignored);
    } else if (olderBytes_) {
      std::filesystem::resize_file(PathOf(target_.path), *olderBytes_, ignored);
    }
  }
  if (!copy_.empty()) std::filesystem::remove(copy_, ignored);
}

Outcome PdfOutput::Prepare(int pages) {
  pagesToCome_ = pages;
  if (target_.append || target_.replace) {
    if (Outcome looked = LookAtOlderFile(); !looked.ok()) return looked;
  }
  return filter_.Create(session_.module.WritingRow(), session_.registryPath);
}

Outcome PdfOutput::LookAtOlderFile() {
  std::error_code error;
  const std::filesystem::path path = PathOf(target_.path);
  if (!std::filesystem::exists(path, error)) {
    return target_.append ? Outcome{} : Fail("there is no " + target_.path + " to replace a page of");
  }
  if (std::filesystem::is_directory(path, error)) return Fail("cannot add to " + target_.path + ": it is a folder");
  Filter reader;
  if (Outcome made = reader.Create(session_.module.ReadingRow(), session_.registryPath); !made.ok()) return made;
  FileInfo info{};
  const uint32_t result = IdentifyInTime(reader, ToUtf16(target_.path), info);
  if (result != FilterOk) return Fail("cannot add to " + target_.path + ": " + OpenResult(result));
  if (target_.replace && (*target_.replace < 1 || *target_.replace > info.pageCount)) {
    return NoSuchPage(target_.path, *target_.replace, info.pageCount);
  }
  extends_ = true;
  olderPages_ = info.pageCount;
  return {};
}

// Beside the file, so that it can take its place again even on a full disk.
void PdfOutput::CopyOlderFile() {
  std::error_code error;
  overwritten_ = std::filesystem::canonical(PathOf(target_.path), error);
  if (error || !std::filesystem::is_regular_file(overwritten_, error)) return;
  std::filesystem::path copy = overwritten_;
  copy += ".kapdf-old";
  if (std::filesystem::copy_file(overwritten_, copy, error)) {
    copy_ = copy;
  } else if (error != std::errc::file_exists) {
    std::filesystem::remove(copy, error);
  }
}

// Another process may have added a page while the module waited for the file, or between two pages; then nobody knows
// where it ended.
void PdfOutput::NoteOlderBytes(std::optional<uintmax_t> before) {
  if (begun_ && before != pageEnd_) olderBytes_.reset();
  if (begun_ || !extends_) return;
  if (before && before == SizeOf(target_.path)) olderBytes_ = before;
}

Outcome PdfOutput::BeginPage(const Box &extents, Progress &progress) {
  FileInfo info{};
  info.xmin = extents.xmin;
  info.ymin = extents.ymin;
  info.xmax = extents.xmax;
  info.ymax = extents.ymax;
  info.pageCount = pagesToCome_;
  info.pageIndex = target_.replace ? *target_.replace - 1 : extends_ || pages_ > 0 ? kAddPage : kNewDocument;
  const std::u16string options = ToUtf16(target_.options);
  if (info.pageIndex == kNewDocument) CopyOlderFile();
  const std::optional<uintmax_t> before = SizeOf(target_.path);
  const uint32_t result = filter_.table().OpenWrite(filter_.get(), ToUtf16(target_.path).c_str(), &info,
                                                    progress.object(), options.empty() ? nullptr : options.c_str());
  NoteOlderBytes(before);
  pageStart_ = info.pageIndex == kNewDocument ? 0 : before.value_or(0);
  // With any other result the file has been made, emptied or extended already.
  if (result != FilterCannotWrite) begun_ = true;
  return result == FilterOk ? Outcome{} : Fail("cannot write " + target_.path + ": " + OpenResult(result));
}

Outcome PdfOutput::EndPage(const PageWriter &page) {
  filter_.table().Close(filter_.get());
  pageEnd_ = SizeOf(target_.path);
  if (!HoldsAnEnd()) return Fail("cannot write all of " + target_.path + "; is the disk full?");
  ++pages_;
  written_.Add(page.written());
  refused_.Add(page.refused());
  drawnPlain_.Add(page.drawnPlain());
  return {};
}

// At the very end, unless another process adds a page already.
bool PdfOutput::HoldsAnEnd() const {
  std::ifstream in(PathOf(target_.path), std::ios::binary);
  if (!in) return true;  // held by somebody who could read it
  const uintmax_t size = SizeOf(target_.path).value_or(0);
  for (const uintmax_t from : {std::max(pageStart_, size - std::min(size, kTailBytes)), pageStart_}) {
    in.clear();
    in.seekg(static_cast<std::streamoff>(from));
    for (std::string line; std::getline(in, line);) {
      if (line.find("startxref") != std::string::npos) return true;
    }
  }
  return false;
}

// Behind object numbers that leave no room for more the module begins anew, and readers lose the older pages.
Outcome PdfOutput::Keep() {
  if (extends_) {
    Filter reader;
    FileInfo info{};
    if (Outcome made = reader.Create(session_.module.ReadingRow(), session_.registryPath); !made.ok()) return made;
    const uint32_t result = IdentifyInTime(reader, ToUtf16(target_.path), info);
    if (result == FilterOk && info.pageCount < olderPages_ + (target_.append ? pages_ : 0)) {
      return Fail("cannot add to " + target_.path + ": its older pages would be lost");
    }
  }
  begun_ = false;
  return {};
}

void PdfOutput::TellSummary() const {
  std::ostream &err = session_.streams.err;
  if (!session_.quiet) {
    err << "kapdf: " << target_.path << ": ";
    if (pages_ > 1) err << pages_ << " pages, ";
    err << written_.Tell() << "\n";
  }
  if (!drawnPlain_.empty()) {
    err << "kapdf: drawn without dashes, which are too fine or have no length: " << drawnPlain_.Tell() << "\n";
  }
  if (!refused_.empty()) err << "kapdf: the module does not draw: " << refused_.Tell() << "\n";
}

}  // namespace kapdf::tool
