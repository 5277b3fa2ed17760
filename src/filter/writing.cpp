// Writing: opening the output and routing elements to the writer.
#include "filter/filter.h"
#include "platform/environment.h"
#include "platform/settings.h"

namespace kapdf {
namespace {

constexpr uint32_t kRetryMilliseconds = 500;

bool IsDrawingSection(int32_t section) { return section == 2 || section == 4 || section == 6 || section == 8; }

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
  writer_->SetPage(info.pageIndex, info.pageCount);
  if (!optionString_.empty()) {
    if (!ParseExportOptions(optionString_, writeSettings_)) return FilterBadOption;
    writer_->Override(writeSettings_);
  }
  return writer_->Start(info);
}

// A writer whose start did not run is never finished; the file stays as it was opened.
uint32_t CPDFFilter::OpenWrite(const char16_t *path, FileInfo *info, ProgressObject *progress,
                               const char16_t *options) {
  uint32_t result = FilterCannotWrite;
  try {
    Close();
    DropRenderedPage();  // sections go to a sub-filter as long as there is one
    hostContext_ = progress;
    if (options) optionString_ = options;
    result = StartWriter(path, *info);
  } catch (...) {
    result = FilterCannotWrite;
  }
  if (result != FilterOk) {
    writer_.reset();
    stream_.reset();
  }
  return result;
}

uint32_t CPDFFilter::WriteElement(ElementRecord *record) {
  if (!writer_) return FilterNotOpen;
  try {
    switch (record->kind) {
      case ElemNone:
        return FilterOk;
      case ElemEndOfPage:
        return writer_->EndPage();
      case ElemRasterHeader:
        return writer_->OpenRaster(*record);
      case ElemRasterRows: {
        const uint32_t result = writer_->WriteRow(*record);
        ProgressObject *progress = record->progress;
        if (!progress || progress->table->Report(progress, writer_->Fraction()) == 0) return result;
        // A stop does not end the call here: what the section makes of the record replaces it.
        return sectionStack_.back() == 3 || IsDrawingSection(sectionStack_.back()) ? DispatchElement(*record)
                                                                                   : FilterCancelled;
      }
      default:
        return DispatchElement(*record);
    }
  } catch (...) {
    return FilterNotAvailable;
  }
}

uint32_t CPDFFilter::DispatchElement(ElementRecord &record) {
  const int32_t section = sectionStack_.back();
  if (section == 3) return writer_->Define(record);
  return IsDrawingSection(section) ? writer_->WriteElement(record) : FilterOk;
}

}  // namespace kapdf
