#include "pictures/raster_picture.h"

#include <algorithm>
#include <cstring>

#include "base/color.h"
#include "records/kinds.h"

namespace kapdf::tool {
namespace {

constexpr uint32_t kMostPixels = 1'000'000;  // of a side
constexpr uint32_t kTypeBits = 0xFFFF;       // above them stand hints
constexpr size_t kPaletteEntries = 256;
constexpr uint8_t kHidden = 255;  // flags of a palette entry, mask byte of a pixel

enum PixelType : uint32_t { kBilevel = 0, kGrey = 1, kIndexed = 2, kRgb = 4, kMasked = 5 };

// All 256 entries, so that no pixel can point behind them.
std::vector<PngColor> PaletteOf(const void *block) {
  std::vector<PngColor> colors(kPaletteEntries);
  const auto *bytes = static_cast<const uint8_t *>(block);
  const size_t entries = std::min<size_t>(ReadAt<uint16_t>(bytes, 2), kPaletteEntries);
  for (size_t i = 0; i < entries; ++i) {
    const uint8_t *entry = bytes + 4 + 4 * i;
    colors[i] = {entry[0], entry[1], entry[2], static_cast<uint8_t>(entry[3] == kHidden ? 0 : 255)};
  }
  return colors;
}

bool IsGreyRamp(const std::vector<PngColor> &colors) {
  for (size_t i = 0; i < colors.size(); ++i) {
    const PngColor &c = colors[i];
    if (c.red != i || c.green != i || c.blue != i || c.opacity != 255) return false;
  }
  return true;
}

bool ShapeOf(const RasterHeaderPayload &header, std::optional<uint32_t> ink, PngShape &shape) {
  shape.width = header.width;
  shape.height = header.height;
  shape.dpi = header.dpi;
  if (std::min(shape.width, shape.height) < 1 || std::max(shape.width, shape.height) > kMostPixels) return false;
  switch (header.pixelType & kTypeBits) {
    case kBilevel:
      shape.bits = 1;
      if (ink) {
        const auto byte = [](uint32_t value) { return static_cast<uint8_t>(value); };
        shape.palette = {{255, 255, 255, 0}, {byte(RedOf(*ink)), byte(GreenOf(*ink)), byte(BlueOf(*ink)), 255}};
      }
      return true;
    case kGrey:
    case kIndexed:
      if (header.palette != nullptr) shape.palette = PaletteOf(header.palette);
      if (IsGreyRamp(shape.palette)) shape.palette.clear();
      return true;
    case kRgb:
      shape.channels = 3;
      return true;
    case kMasked:
      shape.channels = 4;
      return true;
    default:
      return false;
  }
}

// Bits `first` to `last` of a row become `value`.
void SetBits(uint8_t *row, size_t first, size_t last, bool value) {
  const auto set = [&](size_t byte, unsigned mask) {
    row[byte] = static_cast<uint8_t>(value ? row[byte] | mask : row[byte] & ~mask);
  };
  const unsigned head = 0xFFu >> first % 8, tail = 0xFF00u >> (last % 8 + 1) & 0xFF;
  if (first / 8 == last / 8) return set(first / 8, head & tail);
  set(first / 8, head);
  std::memset(row + first / 8 + 1, value ? 0xFF : 0, last / 8 - first / 8 - 1);
  set(last / 8, tail);
}

}  // namespace

bool RasterPicture::Suits(const ElementRecord &header) {
  RasterHeaderPayload payload;
  PngShape shape;
  return CopyPayload(header, payload) && ShapeOf(payload, {}, shape);
}

std::unique_ptr<RasterPicture> RasterPicture::Begin(const ElementRecord &header, std::optional<uint32_t> ink,
                                                    PngWriter::Sink sink) {
  RasterHeaderPayload payload;
  std::unique_ptr<RasterPicture> picture(new RasterPicture(std::move(sink)));
  PngShape &shape = picture->shape_;
  if (!CopyPayload(header, payload) || !ShapeOf(payload, ink, shape)) return nullptr;
  picture->inkBit_ = ink.has_value();
  picture->inverted_ = payload.depthHint != 0;
  picture->row_.resize((size_t{shape.width} * static_cast<size_t>(shape.bits * shape.channels) + 7) / 8);
  return picture->png_.Begin(shape) ? std::move(picture) : nullptr;
}

void RasterPicture::SetRuns(const ElementRecord &record) {
  const bool runBit = inkBit_ != inverted_;
  std::fill(row_.begin(), row_.end(), static_cast<uint8_t>(runBit ? 0 : 0xFF));
  if (record.payloadBytes < 4) return;
  const uint32_t count = std::min(ReadAt<uint32_t>(record.payload, 0), (record.payloadBytes - 4) / 8);
  for (uint32_t i = 0; i < count; ++i) {
    const auto first = ReadAt<uint32_t>(record.payload, 4 + 8 * size_t{i});
    const auto last = std::min(ReadAt<uint32_t>(record.payload, 8 + 8 * size_t{i}), shape_.width - 1);
    if (first <= last) SetBits(row_.data(), first, last, runBit);
  }
}

bool RasterPicture::AddRow(const ElementRecord &record) {
  if (rows_ == shape_.height) return true;
  const uint32_t there = record.payload != nullptr ? record.payloadBytes : 0;
  if (shape_.bits == 1) {
    SetRuns(record);
  } else {
    const size_t count = std::min<size_t>(there, row_.size());
    if (count > 0) std::memcpy(row_.data(), record.payload, count);
    std::fill(row_.begin() + static_cast<ptrdiff_t>(count), row_.end(), uint8_t{0});
    if (shape_.channels == 4) {
      for (size_t i = 3; i < row_.size(); i += 4) row_[i] = static_cast<uint8_t>(~row_[i]);
    }
  }
  return Put();
}

bool RasterPicture::Put() {
  ++rows_;
  return png_.AddRow(row_.data());
}

bool RasterPicture::Finish() {
  const bool ground = shape_.bits == 1 && !inkBit_;
  if (rows_ < shape_.height) std::fill(row_.begin(), row_.end(), static_cast<uint8_t>(ground ? 0xFF : 0));
  while (rows_ < shape_.height) {
    if (!Put()) return false;
  }
  return png_.Finish();
}

}  // namespace kapdf::tool
