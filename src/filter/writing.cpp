// Writing: the output, and its document.
#include "base/catch_all.h"
#include "filter/filter.h"
#include "platform/environment.h"
#include "platform/settings.h"
#include "writer/write_file.h"

namespace kapdf {
namespace {

constexpr uint32_t kRetryMilliseconds = 500;

}  // namespace

// A file that is extended may still be held by another process, so it gets several attempts. A folder is there, too,
// and never becomes a file.
platform::FileHandle CPDFFilter::OpenOutput(std::u16string_view path, FileInfo &info) const {
  using platform::Share;
  if (!platform::FileExists(path)) {
    info.pageIndex = kNewDocument;
    return platform::OpenFile(path, "w+b", Share::kExclusive);
  }
  if (platform::IsFolder(path)) return nullptr;
  if (info.pageIndex == kNewDocument) return platform::OpenFile(path, "w+b", Share::kExclusive);
  const platform::SettingsAt<SettingKey::kFilterPdf> settings(registryPath_);
  const int32_t attempts = settings.Integer("WriteRetries");
  for (int32_t attempt = 1;; ++attempt) {
    if (auto stream = platform::OpenFile(path, "r+b", Share::kExclusive)) return stream;
    if (attempt >= attempts) return nullptr;
    platform::SleepMilliseconds(kRetryMilliseconds);
  }
}

uint32_t CPDFFilter::StartWriter(const char16_t *path, FileInfo &info) {
  stream_ = OpenOutput(path ? path : u"", info);
  if (!stream_) return FilterCannotWrite;
  writer_ = std::make_unique<CPDFWriteFile>(stream_.get(), registryPath_, path);
  sections_.StartDocument();
  if (!optionString_.empty()) {
    if (!ParseExportOptions(optionString_, settings_.write)) return FilterBadOption;
    writer_->Override(settings_.write);
  }
  return writer_->Start(info);
}

// A writer whose start did not run is never finished; the file stays as it was opened.
uint32_t CPDFFilter::OpenWrite(const char16_t *path, FileInfo *info, ProgressObject *, const char16_t *options) {
  const uint32_t result = CatchAll(FilterCannotWrite, [&] {
    Close();
    rendered_.Drop();  // sections go to a sub-filter as long as there is one
    if (options) optionString_ = options;
    return StartWriter(path, *info);
  });
  if (result != FilterOk) {
    writer_.reset();
    stream_.reset();
  }
  return result;
}

uint32_t CPDFFilter::WriteElement(ElementRecord *record) {
  if (!writer_) return FilterNotOpen;
  return CatchAll(FilterNotAvailable, [&] { return writer_->WriteElement(*record, sections_); });
}

}  // namespace kapdf
