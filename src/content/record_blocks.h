// The memory behind the records that the interpreter hands out. Each kind has storage of its own, so that chained
// records never share any; a block stays as it is until the next record of its kind.
#pragma once

#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "base/bytes.h"
#include "kapdf/kapdf.h"

namespace kapdf {

// A structure of 68 bytes and the arrays it points into, in one block, so that a host may copy `payloadBytes` from
// `payload`. The block starts 4 bytes behind an 8-aligned address: the doubles behind the structure are then aligned.
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

// Copies a name into a record's field, cut to 255 characters.
void CopyName(char16_t (&field)[256], std::u16string_view name);

// Clears a record as a host would before its first use.
void InitializeRecord(ElementRecord &record);

}  // namespace kapdf
