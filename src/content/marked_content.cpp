// Optional content as layers of the host.
#include "base/ascii.h"
#include "base/limits.h"
#include "content/interpreter.h"

namespace kapdf {
namespace {

constexpr size_t kNameText = 255;

// The name behind "/OC", without its slash; empty for any other marked content.
std::string_view LayerKey(const char *text) {
  const std::string_view statement(text);
  if (!statement.starts_with("/OC")) return {};
  size_t at = 3;
  while (at < statement.size() && IsSpace(static_cast<unsigned char>(statement[at]))) ++at;
  if (at == statement.size() || statement[at] != '/') return {};
  const std::string_view rest = statement.substr(at + 1);
  size_t length = 0;
  while (length < rest.size() && !IsSpace(static_cast<unsigned char>(rest[length]))) ++length;
  return rest.substr(0, std::min(length, kNameText));
}

}  // namespace

// The host gets a layer's definition when something first goes to it, in the colour of strokes at that moment.
Flow Interpreter::BeginMarkedContent(const Statement &statement) {
  EnterMarkedContent();
  const std::string_view key = LayerKey(statement.text);
  if (key.empty()) return Flow::kNext;
  LayerUse *layer = drawing_.content->resources.FindLayer(key);
  sink_.layer = layer ? std::u16string_view(layer->name) : kDefaultLayer;
  if (!layer || layer->announced) return Flow::kNext;
  layer->announced = true;
  const uint32_t color =
      drawing_.state.strokeColor == KAPDF_COLOR_BY_LAYER ? KAPDF_COLOR_BLACK : drawing_.state.strokeColor;
  sink_.DefineLayer(layer->name, color);
  return Flow::kRecord;
}

Flow Interpreter::BeginUnnamedContent(const Statement &) {
  EnterMarkedContent();
  return Flow::kNext;
}

void Interpreter::EnterMarkedContent() {
  if (drawing_.settings.rules.nestedLayers && outerLayers_.size() < limits::kMarkedContent)
    outerLayers_.push_back(sink_.layer);
}

// Where marked content does not nest, whatever ends puts elements back on the default layer.
Flow Interpreter::EndMarkedContent(const Statement &) {
  if (!drawing_.settings.rules.nestedLayers) {
    sink_.layer = kDefaultLayer;
  } else if (outerLayers_.size() > drawing_.content->markedContent) {
    sink_.layer = std::move(outerLayers_.back());
    outerLayers_.pop_back();
  }
  return Flow::kNext;
}

// A form closes what it left open.
void Interpreter::EndLayersOf(const CPDFContentStream &content) {
  if (outerLayers_.size() <= content.markedContent) return;
  sink_.layer = std::move(outerLayers_[content.markedContent]);
  outerLayers_.resize(content.markedContent);
}

}  // namespace kapdf
