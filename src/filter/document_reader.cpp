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

// What a host may show of the document: "warnings 2; encryption AES 256; permissions -1084".
std::string Tell(const IntakeFacts &facts) {
  std::string text;
  if (facts.warnings > 0) text = "warnings " + std::to_string(facts.warnings);
  if (facts.encryption.empty()) return text;
  if (!text.empty()) text += "; ";
  return text + "encryption " + facts.encryption + "; permissions " + std::to_string(facts.permissions);
}

}  // namespace

uint32_t DocumentReader::Open(const ImportOptions &options, FileInfo &info) {
  const platform::SettingsAt<SettingKey::kPdf> settings(registryPath_);
  if (options.extended.value_or(settings.Integer("ExtendedReading")) != 0) return OpenIntake(options.password, info);
  document_ = std::make_unique<CPDFFile>(stream_, registryPath_);
  return document_->Open(info);
}

uint32_t DocumentReader::OpenIntake(std::u16string_view password, FileInfo &info) {
  intake_ = std::make_unique<Intake>();
  const uint32_t result = intake_->Open(stream_, platform::ToUtf8(password));
  if (result != FilterOk) return result;
  info.pageCount = intake_->pageCount();
  SetFormatName(info);
  return FilterOk;
}

// The page as a document of its own, in place of the file.
bool DocumentReader::TakePage(int32_t index) {
  const platform::SettingsAt<SettingKey::kPdf> settings(registryPath_);
  ByteBuffer bytes;
  if (!intake_->TakePage(index, settings.Switch("ReadAnnotations"), bytes)) return false;
  document_ = std::make_unique<CPDFFile>(std::move(bytes), registryPath_);
  FileInfo own{};
  if (document_->Open(own) != FilterOk) return false;
  const std::string facts = Tell(intake_->facts());
  if (!facts.empty()) document_->properties().AddText(KAPDF_PROPERTY_SOURCE, facts);
  return true;
}

uint32_t DocumentReader::OpenPage(int32_t index, const FilterSettings &settings, void *window) {
  if (intake_ && !TakePage(index)) return FilterDamaged;
  document_->SetParentWindow(window);
  PagePosition position;
  if (!document_->GetPage(intake_ ? 0 : index, position)) return FilterDamaged;
  auto page = SetupPage(*document_, position);
  if (!page) return FilterDamaged;
  const platform::SettingsAt<SettingKey::kPdf> pageSettings(registryPath_);
  InterpreterSettings how;
  how.convertPoly = settings.convertPoly;
  how.fitTolerance = settings.fitTolerance;
  how.imageFrame = static_cast<uint32_t>(pageSettings.Integer("ImageFrame"));
  how.codePage = pageSettings.Integer("CodePage");
  how.defaultTextWidth = pageSettings.Real("DefaultTextW2H");
  how.clipping = pageSettings.Switch("Clipping");
  how.rules = intake_ ? kExtendedReading : kClassicReading;
  interpreter_ = std::make_unique<Interpreter>(std::move(*page), how);
  return FilterOk;
}

uint32_t DocumentReader::Read(ElementRecord &record) {
  if (!interpreter_) return FilterNotOpen;
  if (record.kind == ElemRasterHeader) return ReadRasterHeader(record);
  if (record.kind == ElemRasterRows) return ReadRasterRow(record);
  if (document_->properties().Next(record)) return FilterOk;  // the sink is not asked
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
