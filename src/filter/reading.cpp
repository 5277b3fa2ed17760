// Reading: the open operations and the driver of the import.
#include "base/catch_all.h"
#include "filter/document_reader.h"
#include "filter/filter.h"
#include "platform/message.h"
#include "renderer/render_page.h"

namespace kapdf {

uint32_t CPDFFilter::OpenDocument(const char16_t *path, FileInfo &info) {
  stream_ = platform::OpenFile(path ? path : u"", "rb", platform::Share::kRead);
  if (!stream_) return FilterCannotRead;
  reader_ = std::make_unique<DocumentReader>(stream_.get(), registryPath_);
  return reader_->Open(settings_.import, info);
}

uint32_t CPDFFilter::Identify(const char16_t *path, FileInfo *info) {
  const uint32_t result = CatchAll(FilterDamaged, [&] {
    Close();
    settings_.import.extended.reset();
    uint32_t counted;
    return CountRenderedPages(path ? path : u"", *info, counted) ? counted : OpenDocument(path, *info);
  });
  Close();
  return result;
}

uint32_t CPDFFilter::OpenInterpretedPage(const char16_t *path, FileInfo &info, FilterContext *context) {
  if (const uint32_t result = OpenDocument(path, info); result != FilterOk) return result;
  return reader_->OpenPage(info.pageIndex, settings_, platform::WindowOf(context));
}

uint32_t CPDFFilter::OpenRead(const char16_t *path, FileInfo *info, ProgressObject *progress, const char16_t *options,
                              FilterContext *context, FilterCreateFunction create) {
  const uint32_t result = CatchAll(FilterDamaged, [&] {
    Close();
    rendered_.Drop();
    settings_.import.extended.reset();
    settings_.import.password.clear();
    ParseImportOptions(options ? options : u"", settings_.import);
    if (settings_.import.asImage == 0 || !CanRenderPages()) return OpenInterpretedPage(path, *info, context);
    return rendered_.Open(path ? path : u"", *info, settings_.import,
                          {progress, options, context, create, GivenRegistryPath()});
  });
  if (result != FilterOk) {
    rendered_.Drop();
    reader_.reset();
    stream_.reset();
  }
  return result;
}

uint32_t CPDFFilter::ReadElement(ElementRecord *record) {
  // When memory is out, the page, or the raster, ends here.
  const bool raster = record->kind == ElemRasterHeader || record->kind == ElemRasterRows;
  return CatchAll(raster ? FilterNotAvailable : FilterEndOfElements, [&]() -> uint32_t {
    uint32_t result = FilterEndOfElements;
    if (rendered_.Read(*record, result)) return result;
    return reader_ ? reader_->Read(*record) : FilterNotOpen;
  });
}

}  // namespace kapdf
