// Reading: the open operations and the driver of the import.
#include "content/page_setup.h"
#include "filter/filter.h"
#include "platform/message.h"
#include "platform/settings.h"
#include "platform/text.h"
#include "renderer/render_page.h"

namespace kapdf {
namespace {

// True when the host's sink, if there is one, asks to stop.
bool AsksToStop(ProgressObject *progress, const Interpreter &interpreter) {
  return progress && progress->table->Report(progress, interpreter.Fraction()) != 0;
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
    if (CountRenderedPages(path, *info, result)) return result;
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
  const platform::SettingsAt<SettingKey::kPdf> settings(registryPath_);
  interpreterSettings_.imageFrame = static_cast<uint32_t>(settings.Integer("ImageFrame"));
  interpreterSettings_.codePage = settings.Integer("CodePage");
  interpreterSettings_.defaultTextWidth = settings.Real("DefaultTextW2H");
  interpreterSettings_.clipping = settings.Switch("Clipping");
  interpreter_ = std::make_unique<Interpreter>(std::move(*page), interpreterSettings_);
  return FilterOk;
}

uint32_t CPDFFilter::OpenInterpretedPage(const char16_t *path, FileInfo &info, FilterContext *context) {
  if (const uint32_t result = OpenDocument(path, info); result != FilterOk) return result;
  document_->SetParentWindow(platform::WindowOf(context));
  return OpenPage(info);
}

uint32_t CPDFFilter::OpenRead(const char16_t *path, FileInfo *info, ProgressObject *progress, const char16_t *options,
                              FilterContext *context, FilterCreateFunction create) {
  uint32_t result = FilterDamaged;
  try {
    Close();
    DropRenderedPage();
    sourcePath_ = path ? path : u"";
    ParseImportOptions(options ? options : u"", importOptions_);
    hostContext_ = progress;
    result = importOptions_.asImage != 0 && CanRenderPages()
                 ? OpenRenderedPage(*info, progress, options, context, create)
                 : OpenInterpretedPage(path, *info, context);
  } catch (...) {
    result = FilterDamaged;
  }
  if (result != FilterOk) {
    DropRenderedPage();
    DropDocument();
    stream_.reset();
  }
  return result;
}

uint32_t CPDFFilter::ReadElement(ElementRecord *record) {
  uint32_t result = FilterEndOfElements;
  try {
    if (subFilter_ && ReadRenderedPage(*record, result)) return result;
    if (!hiddenText_.hiddenTextRuns.empty()) return ReadHiddenText(*record);
    if (!interpreter_) return FilterNotOpen;
    if (record->kind == ElemRasterHeader) return ReadRasterHeader(*record);
    if (record->kind == ElemRasterRows) return ReadRasterRow(*record);
    if (document_->properties().Next(*record)) return FilterOk;  // the sink is not asked
    result = interpreter_->InterpretNext(*record);
  } catch (...) {  // memory is out: the page, or the raster, ends here
    const bool raster = record->kind == ElemRasterHeader || record->kind == ElemRasterRows;
    return raster ? FilterNotAvailable : FilterEndOfElements;
  }
  if (result == FilterOk && record->kind == ElemRasterPlacement) rasterAnnounced_ = true;
  return AsksToStop(record->progress, *interpreter_) ? FilterCancelled : result;
}

uint32_t CPDFFilter::ReadRasterHeader(ElementRecord &record) {
  rasterHeader_.reset();
  rasterPalette_.reset();
  if (!rasterAnnounced_) interpreter_->CountRaster();
  record.styleName[255] = 0;
  const bool named = record.styleName[0] != 0;
  std::string name = platform::ToNarrow(record.styleName, platform::kSystemCodePage);
  ImageDescription image;
  if (!interpreter_->PrepareRaster(name, image)) return FilterNotAvailable;
  if (!named) CopyName(record.styleName, platform::ToWide(name, platform::kSystemCodePage));
  rasterPalette_ = std::move(image.palette);
  rasterHeader_ = std::make_unique<RasterHeaderPayload>();
  rasterHeader_->width = image.width;
  rasterHeader_->height = image.height;
  rasterHeader_->dpi = image.dpi;
  rasterHeader_->depthHint = image.invert ? 1 : 0;
  rasterHeader_->pixelType = static_cast<uint32_t>(image.kind);
  rasterHeader_->palette = rasterPalette_.get();
  if (image.dpi == 0) {
    const platform::SettingsAt<SettingKey::kFilter> settings(registryPath_);
    rasterHeader_->dpi = static_cast<uint32_t>(settings.Integer("DefaultResolution"));
  }
  record.payload = rasterHeader_.get();
  record.payloadBytes = sizeof(RasterHeaderPayload);
  return FilterOk;
}

// The sink is asked by the height of the raster and not by the row: after every row, or never.
uint32_t CPDFFilter::ReadRasterRow(ElementRecord &record) {
  uint8_t *row = nullptr;
  size_t bytes = 0;
  const uint32_t result = interpreter_->ReadRasterRow(row, bytes);
  if (result == FilterOk) {
    record.payload = row;
    record.payloadBytes = static_cast<uint32_t>(bytes);
  }
  if (!record.progress || !rasterHeader_ || rasterHeader_->height % 100 != 0) return result;
  return AsksToStop(record.progress, *interpreter_) ? FilterCancelled : result;
}

}  // namespace kapdf
