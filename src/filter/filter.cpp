// The filter base, and what reading and writing have in common.
#include "filter/filter.h"

#include <algorithm>

#include "base/catch_all.h"
#include "filter/document_reader.h"
#include "filter/option_form.h"
#include "platform/narrow_path.h"
#include "renderer/preview.h"
#include "renderer/renderer.h"
#include "writer/write_file.h"

namespace kapdf {

uint32_t CZVFilter::Identify(const char16_t *, FileInfo *) { return FilterOk; }
void *CZVFilter::GetPreview(const char16_t *, ProgressObject *) { return previewBitmap_.get(); }
uint32_t CZVFilter::OpenRead(const char16_t *, FileInfo *, ProgressObject *, const char16_t *, FilterContext *,
                             FilterCreateFunction) {
  return FilterOk;
}
uint32_t CZVFilter::ReadElement(ElementRecord *) { return FilterOk; }
uint32_t CZVFilter::OpenWrite(const char16_t *, FileInfo *, ProgressObject *, const char16_t *) { return FilterOk; }
uint32_t CZVFilter::Reserved6(void *) { return FilterOk; }

uint32_t CZVFilter::BeginSection(int32_t, uintptr_t, uintptr_t) { return FilterOk; }
uint32_t CZVFilter::EndSection(int32_t, uintptr_t, uintptr_t) { return FilterOk; }
uint32_t CZVFilter::WriteElement(ElementRecord *) { return FilterNotAvailable; }

uint32_t CZVFilter::WriteBlock(const void *buffer, uint32_t size, uint32_t count, std::FILE *stream, uint32_t reset) {
  if (reset != 0) ioFailed_ = 0;
  if (!stream || std::fwrite(buffer, size, count, stream) < count) ioFailed_ = 1;
  return ioFailed_;
}

uint32_t CZVFilter::Close() { return FilterOk; }
uint32_t CZVFilter::ShowOptions(int32_t, void *, void *) { return FilterNotAvailable; }
uint32_t CZVFilter::Extended(void *, int32_t, void *) { return FilterNotExtended; }

CPDFFilter::CPDFFilter(const char16_t *registryPath) : CZVFilter(registryPath) { ReadSettings(); }

CPDFFilter::~CPDFFilter() = default;

void CPDFFilter::ReadSettings() {
  settings_ = FilterSettings::Of(registryPath_);
  if (!settings_.log) return;
  const std::string log = platform::ToNarrowPath(platform::DiagnosticPath("sdklog.txt"));
  CallIfThere(Renderer().VgPsSetMessageFile, log.c_str());
}

// A writer that nobody closed is not finished: its file stays as it is.
void CPDFFilter::Destroy(uint32_t deleteFlag) {
  if (deleteFlag & 1)
    delete this;
  else
    this->~CPDFFilter();
}

uint32_t CPDFFilter::Close() {
  reader_.reset();
  CatchAll(false, [&] {  // a full memory leaves the file as far as it got
    if (writer_ && stream_) writer_->Finish();
    return true;
  });
  writer_.reset();
  stream_.reset();
  return FilterOk;
}

// The next document is opened with what the person chose, whether the host hands the string on or not.
uint32_t CPDFFilter::ShowOptions(int32_t which, void *parent, void *options) {
  if (which != KAPDF_OPTIONS_IMPORT && which != KAPDF_OPTIONS_EXPORT) return FilterNotAvailable;
  return CatchAll(FilterNotAvailable, [&]() -> uint32_t {
    auto *const units = static_cast<char16_t *>(options);
    const std::u16string given(units, units ? std::find(units, units + KAPDF_OPTION_UNITS, u'\0') : units);
    OptionForm form(which == KAPDF_OPTIONS_IMPORT ? OptionForm::Direction::kImport : OptionForm::Direction::kExport,
                    registryPath_, given);
    const auto answer = platform::ShowForm(parent, form.dialog(), form.fields());
    if (answer == platform::FormAnswer::kCancelled) return FilterCancelled;
    if (answer == platform::FormAnswer::kUnavailable) return FilterNotAvailable;
    form.Save();
    ReadSettings();
    if (units) units[form.Options().copy(units, KAPDF_OPTION_UNITS - 1)] = 0;
    return FilterOk;
  });
}

void *CPDFFilter::GetPreview(const char16_t *path, ProgressObject *progress) {
  if (RendererIsBusy()) return nullptr;
  return CatchAll(nullptr, [&]() -> void * {
    if (CanPreview()) {
      previewBitmap_.reset();
      previewBitmap_ = MakePreview(platform::ToNarrowPath(path ? path : u""), progress);
    }
    return previewBitmap_.get();
  });
}

// The number is kept whatever it is, so that the sections stay balanced.
uint32_t CPDFFilter::BeginSection(int32_t section, uintptr_t a, uintptr_t b) {
  if (FilterObject *sub = rendered_.subFilter()) return sub->table->BeginSection(sub, section, a, b);
  return CatchAll(FilterNotAvailable, [&]() -> uint32_t {
    sections_.Begin(section);
    return section < 2 || section == 7 || section > 8 ? FilterNotAvailable : FilterOk;
  });
}

uint32_t CPDFFilter::EndSection(int32_t section, uintptr_t a, uintptr_t b) {
  if (FilterObject *sub = rendered_.subFilter()) return sub->table->EndSection(sub, section, a, b);
  sections_.End();
  return CatchAll(FilterNotAvailable, [&]() -> uint32_t {
    if (writer_) writer_->EndSection(section);
    return FilterOk;
  });
}

}  // namespace kapdf
