#include "module/page_writer.h"

#include "records/kinds.h"
#include "records/record.h"

namespace kapdf::tool {
namespace {

constexpr uint32_t kTypeBits = 0xFFFF;  // above them stand hints

bool Taken(uint32_t result) { return result == FilterOk || result == FilterConsumed; }

std::u16string TextAt(const ElementRecord &record, size_t offset) {
  const auto *text = ReadAt<const char16_t *>(record.payload, offset);
  return text != nullptr ? text : u"";
}

}  // namespace

bool IsTable(uint32_t kind) { return kind == ElemLayerDef || kind == ElemLineTypeDef || kind == ElemFontDef; }

bool IsRaster(uint32_t kind) { return kind == ElemRasterHeader || kind == ElemRasterRows; }

void Tables::Note(const ElementRecord &definition) {
  LineTypeDefPayload lineType;
  if (definition.kind == ElemLayerDef && definition.payloadBytes >= sizeof(LayerDefPayload)) {
    layerWidths.try_emplace(TextAt(definition, offsetof(LayerDefPayload, name)),
                            ReadAt<double>(definition.payload, offsetof(LayerDefPayload, width)));
  } else if (definition.kind == ElemLineTypeDef && CopyPayload(definition, lineType)) {
    patterns.try_emplace(TextAt(definition, offsetof(LineTypeDefPayload, name)), PatternOf(lineType));
  }
}

double Tables::StrokeWidth(const ElementRecord &element) const {
  const auto layer = layerWidths.find(element.layerName);
  const bool byLayer = layer != layerWidths.end() && layer->second >= 0;
  return byLayer ? layer->second : WidthOf(element);
}

Box SheetFor(Box drawn) {
  if (drawn.empty()) return {0, 0, 210, 297};
  if (drawn.width() <= 0 || drawn.height() <= 0) drawn.Grow(1);
  return drawn;
}

void PageWriter::Enter(int32_t section) {
  if (section == section_) return;
  if (section_ != 0) filter_.table().EndSection(filter_.get(), section_, 0, 0);
  section_ = section;
  if (section_ != 0) filter_.table().BeginSection(filter_.get(), section_, 0, 0);
}

uint32_t PageWriter::Send(ElementRecord &record) { return filter_.table().WriteElement(filter_.get(), &record); }

Outcome PageWriter::Write(ElementRecord &record) {
  const uint32_t kind = record.kind;
  const uint32_t result = Send(record);
  if (result == FilterUnsupported) return WriteInPieces(record);
  if (result == FilterCancelled) return Interrupted();
  // Tables are always taken so, and a property or a raster may be.
  (Taken(result) ? written_ : refused_).Count(kind);
  return {};
}

// A line type with a pattern is the one reason for a refusal that can be mended here.
Outcome PageWriter::WriteInPieces(ElementRecord &record) {
  const uint32_t kind = record.kind;
  const auto pattern = tables_.patterns.find(record.styleName);
  DashResult result = DashResult::kNotMine;
  bool accepted = true;
  if (pattern != tables_.patterns.end()) {
    result = BreakIntoDashes(record, pattern->second, [&](ElementRecord &piece) {
      accepted = accepted && Send(piece) == FilterOk;
      return !InterruptGuard::Requested();
    });
  }
  if (result == DashResult::kStopped) return Interrupted();
  const bool drawn = accepted && result != DashResult::kNotMine;
  (drawn ? written_ : refused_).Count(kind);
  if (drawn && result == DashResult::kPlain) drawnPlain_.Count(kind);
  return {};
}

void PageWriter::DefineLayer(std::u16string name) {
  std::u16string lineType = u"Continuous";
  LayerDefPayload layer{};
  layer.name = name.data();
  layer.lineType = lineType.data();
  layer.color = KAPDF_COLOR_BLACK;
  layer.width = -2;
  ElementRecord definition{};
  InitElement(definition);
  definition.kind = ElemLayerDef;
  definition.section = KAPDF_SECTION_TABLES;
  definition.payload = &layer;
  definition.payloadBytes = sizeof layer;
  SetName(definition.layerName, name);
  Send(definition);
}

bool PageWriter::OpenRaster(ElementRecord &header) {
  raster_ = {};
  const bool taken = CopyPayload(header, raster_) && Taken(Send(header));
  rowsLeft_ = taken ? raster_.height : 0;
  (taken ? written_ : refused_).Count(ElemRasterHeader);
  return taken;
}

bool PageWriter::WriteRow(ElementRecord &row) {
  const bool taken = Taken(Send(row));
  if (taken && rowsLeft_ > 0) --rowsLeft_;
  return taken;
}

void PageWriter::FillRaster() {
  if (rowsLeft_ == 0) return;
  const bool bilevel = (raster_.pixelType & kTypeBits) == 0;
  std::vector<uint8_t> zeros(bilevel ? 4 : size_t{raster_.width} * 4);
  ElementRecord row{};
  InitElement(row);
  row.kind = ElemRasterRows;
  row.payload = zeros.data();
  row.payloadBytes = static_cast<uint32_t>(zeros.size());
  while (rowsLeft_ > 0 && !InterruptGuard::Requested() && WriteRow(row)) {
  }
  rowsLeft_ = 0;
}

void PageWriter::EndPage() {
  ElementRecord end{};
  InitElement(end);
  end.kind = ElemEndOfPage;
  Send(end);
  Enter(0);
}

}  // namespace kapdf::tool
