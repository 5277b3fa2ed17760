#include "filter/document_reader.h"

#include <utility>

#include "content/page_setup.h"
#include "platform/settings.h"
#include "platform/text.h"

namespace kapdf {
namespace {

// True when the host's sink, if there is one, asks to stop.
bool AsksToStop(ProgressObject *progress, const Interpreter &interpreter) {
  return progress && progress->table->Report(progress, interpreter.Fraction()) != 0;
}

}  // namespace

uint32_t DocumentReader::OpenPage(int32_t index, const FilterSettings &settings, void *window) {
  document_.SetParentWindow(window);
  PagePosition position;
  if (!document_.GetPage(index, position)) return FilterDamaged;
  auto page = SetupPage(document_, position);
  if (!page) return FilterDamaged;
  const platform::SettingsAt<SettingKey::kPdf> pageSettings(registryPath_);
  InterpreterSettings how;
  how.convertPoly = settings.convertPoly;
  how.fitTolerance = settings.fitTolerance;
  how.imageFrame = static_cast<uint32_t>(pageSettings.Integer("ImageFrame"));
  how.codePage = pageSettings.Integer("CodePage");
  how.defaultTextWidth = pageSettings.Real("DefaultTextW2H");
  how.clipping = pageSettings.Switch("Clipping");
  interpreter_ = std::make_unique<Interpreter>(std::move(*page), how);
  return FilterOk;
}

uint32_t DocumentReader::Read(ElementRecord &record) {
  if (!interpreter_) return FilterNotOpen;
  if (record.kind == ElemRasterHeader) return ReadRasterHeader(record);
  if (record.kind == ElemRasterRows) return ReadRasterRow(record);
  if (document_.properties().Next(record)) return FilterOk;  // the sink is not asked
  const uint32_t result = interpreter_->InterpretNext(record);
  if (result == FilterOk && record.kind == ElemRasterPlacement) rasterAnnounced_ = true;
  return AsksToStop(record.progress, *interpreter_) ? FilterCancelled : result;
}

uint32_t DocumentReader::ReadRasterHeader(ElementRecord &record) {
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
uint32_t DocumentReader::ReadRasterRow(ElementRecord &record) {
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
