// Reading: the open operations and the driver of the import.
#include "content/page_setup.h"
#include "filter/filter.h"
#include "platform/settings.h"

namespace kapdf {
namespace {

// True when the host's sink asks to stop.
bool AsksToStop(ProgressObject *progress, double fraction) {
  return progress && progress->table->Report(progress, fraction) != 0;
}

}  // namespace

uint32_t CPDFFilter::OpenDocument(const char16_t *path, FileInfo &info) {
  stream_ = platform::OpenFile(path ? path : u"", "rb", platform::Share::kRead);
  if (!stream_) return FilterCannotRead;
  document_ = std::make_unique<CPDFFile>(stream_.get(), registryPath_);
  return document_->Open(info);
}

uint32_t CPDFFilter::Identify(const char16_t *path, FileInfo *info) {
  uint32_t result = FilterDamaged;
  try {
    Close();
    result = OpenDocument(path, *info);
  } catch (...) {
    result = FilterDamaged;
  }
  Close();
  return result;
}

uint32_t CPDFFilter::OpenPage(const FileInfo &info) {
  PagePosition position;
  if (!document_->GetPage(info.pageIndex, position)) return FilterDamaged;
  auto page = SetupPage(*document_, position);
  if (!page) return FilterDamaged;
  const platform::Settings settings(registryPath_, u"\\PDF");
  interpreterSettings_.clipping = settings.ReadInteger(u"Clipping", 1) != 0;
  interpreter_ = std::make_unique<Interpreter>(std::move(*page), interpreterSettings_);
  return FilterOk;
}

uint32_t CPDFFilter::OpenRead(const char16_t *path, FileInfo *info, ProgressObject *progress, const char16_t *options,
                              FilterContext *, FilterCreateFunction) {
  uint32_t result = FilterDamaged;
  try {
    Close();
    ParseImportOptions(options ? options : u"", importOptions_);
    hostContext_ = progress;
    result = OpenDocument(path, *info);
    if (result == FilterOk) result = OpenPage(*info);
  } catch (...) {
    result = FilterDamaged;
  }
  if (result != FilterOk) {
    DropDocument();
    stream_.reset();
  }
  return result;
}

uint32_t CPDFFilter::ReadElement(ElementRecord *record) {
  if (!interpreter_) return FilterNotOpen;
  if (record->kind == ElemRasterHeader || record->kind == ElemRasterRows) return FilterNotAvailable;
  uint32_t result = FilterEndOfElements;
  try {
    result = interpreter_->InterpretNext(*record);
  } catch (...) {  // memory is out: the page ends here
    return FilterEndOfElements;
  }
  return AsksToStop(record->progress, interpreter_->Fraction()) ? FilterCancelled : result;
}

}  // namespace kapdf
