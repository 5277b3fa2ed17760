// Where the parts of the interpreter put what they found: the host's record of the call under way, and those that are
// chained behind it.
#pragma once

#include <cstring>
#include <memory>
#include <string>
#include <string_view>

#include "base/bytes.h"
#include "kapdf/kapdf.h"

namespace kapdf {

// A structure of 68 bytes and the arrays it points into, in one block, so that a host may copy `payloadBytes` from
// `payload`. The block starts 4 bytes after an 8-aligned address: the doubles after the structure are then aligned.
class GrowingBlock {
 public:
  // At least `bytes` bytes; the content is not kept.
  uint8_t *Prepare(size_t bytes) {
    const size_t needed = bytes + kShift;
    if (needed > capacity_) {
      memory_.reset(new uint8_t[needed + needed / 4]);
      capacity_ = needed + needed / 4;
    }
    return memory_.get() + kShift;
  }

 private:
  static constexpr size_t kShift = 4;
  std::unique_ptr<uint8_t[]> memory_;
  size_t capacity_ = 0;
};

// The memory behind the records. Each kind has storage of its own, so that chained records never share any; a block
// stays as it is until the next record of its kind.
struct RecordBlocks {
  LinePayload line;
  CirclePayload circle;
  ArcPayload arc;
  EllipseArcPayload ellipse;
  GrowingBlock polyline;
  GrowingBlock polygon;
  RasterPlacementPayload raster;
  LayerDefPayload layer;
  std::u16string layerName;
  LineTypeDefPayload lineType;
  std::u16string lineTypeName;
  ElementRecord spare;  // chained behind the first record
};

// What an element is drawn on until something else is named.
inline constexpr std::u16string_view kDefaultLayer = u"PDF";
inline constexpr std::u16string_view kContinuous = u"Continuous";

class RecordSink {
 public:
  // A call of the host begins, with its record.
  void Begin(ElementRecord &record);
  // True once the call has a record filled.
  bool filled() const { return last_ != nullptr; }
  // The next record to start is the host's own, or, once that is filled, `spare`, which is chained behind the last one.
  void Chain(ElementRecord &spare);

  // Fills the record for an element on the layer and in the line style at hand.
  void Start(uint32_t kind, uint32_t color, void *payload, size_t bytes);
  // Fills the record for an entry of the host's tables.
  void StartDefinition(uint32_t kind, void *payload, size_t bytes);
  // The same with the block of a layer or a line type, which gets that name.
  void DefineLayer(std::u16string_view name, uint32_t color);
  LineTypeDefPayload &DefineLineType(std::u16string_view name);

  // The record that was started last, to complete it.
  ElementRecord &record() { return *record_; }
  RecordBlocks &blocks() { return blocks_; }

  // The names that elements carry; the line style is no part of the saved state.
  std::u16string layer{kDefaultLayer};
  std::u16string lineStyle{kContinuous};

 private:
  ElementRecord *record_ = nullptr;
  ElementRecord *last_ = nullptr;  // that was filled in this call
  RecordBlocks blocks_;
};

// A layer's definition as hosts get it. The name must outlive the block.
void FillLayerBlock(LayerDefPayload &layer, char16_t *name, uint32_t color);

// Copies a name into a record's field, cut to 255 characters.
void CopyName(char16_t (&field)[256], std::u16string_view name);

// Clears a record as a host would before its first use.
void InitializeRecord(ElementRecord &record);

}  // namespace kapdf
