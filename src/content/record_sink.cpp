#include "content/record_sink.h"

namespace kapdf {

void CopyName(char16_t (&field)[256], std::u16string_view name) {
  const size_t length = name.copy(field, 255);
  field[length] = 0;
}

void InitializeRecord(ElementRecord &record) {
  std::memset(&record, 0, sizeof record);
  record.color = KAPDF_COLOR_BY_LAYER;
}

void FillLayerBlock(LayerDefPayload &layer, char16_t *name, uint32_t color) {
  static char16_t continuous[] = u"Continuous";
  layer = {};
  layer.name = name;
  layer.lineType = continuous;
  layer.color = color;
  layer.width = -2.0;
}

void RecordSink::Begin(ElementRecord &record) {
  record_ = &record;
  last_ = nullptr;
  record.section = KAPDF_SECTION_DRAWING;
}

void RecordSink::Chain(ElementRecord &spare) {
  if (!last_) return;
  InitializeRecord(spare);
  last_->next = &spare;
  record_ = &spare;
}

void RecordSink::Start(uint32_t kind, uint32_t color, void *payload, size_t bytes) {
  ElementRecord &record = *record_;
  record.kind = kind;
  record.flags = 0;
  record.color = color;
  record.payload = payload;
  record.payloadBytes = static_cast<uint32_t>(bytes);
  record.reserved2 = 0;
  record.section = KAPDF_SECTION_DRAWING;
  record.next = nullptr;
  CopyName(record.layerName, layer);
  CopyName(record.styleName, lineStyle);
  last_ = record_;
}

void RecordSink::StartDefinition(uint32_t kind, void *payload, size_t bytes) {
  Start(kind, KAPDF_COLOR_BY_LAYER, payload, bytes);
  record_->section = KAPDF_SECTION_TABLES;
  record_->layerName[0] = 0;
  record_->styleName[0] = 0;
}

void RecordSink::DefineLayer(std::u16string_view name, uint32_t color) {
  blocks_.layerName = name;
  FillLayerBlock(blocks_.layer, blocks_.layerName.data(), color);
  StartDefinition(ElemLayerDef, &blocks_.layer, sizeof blocks_.layer);
  record_->color = color;
  CopyName(record_->layerName, name);
}

LineTypeDefPayload &RecordSink::DefineLineType(std::u16string_view name) {
  blocks_.lineTypeName = name;
  blocks_.lineType = {};
  blocks_.lineType.name = blocks_.lineTypeName.data();
  StartDefinition(ElemLineTypeDef, &blocks_.lineType, sizeof blocks_.lineType);
  CopyName(record_->styleName, name);
  return blocks_.lineType;
}

}  // namespace kapdf
