#include "pictures/raster_for_export.h"

#include <algorithm>

#include "records/kinds.h"

namespace kapdf::tool {
namespace {

constexpr uint32_t kTypeBits = 0xFFFF;  // above them stand hints
constexpr uint32_t kBilevel = 0, kGrey = 1, kIndexed = 2, kRgb = 4, kMasked = 5;
constexpr size_t kPaletteBytes = 1028, kPaletteHead = 4;
constexpr uint8_t kHidden = 255;  // flags of a palette entry, mask byte of a pixel
constexpr uint8_t kWhite = 255;

}  // namespace

bool IsBilevel(const RasterHeaderPayload &header) { return (header.pixelType & kTypeBits) == kBilevel; }

bool RasterForExport::Open(ElementRecord &header) {
  if (!CopyPayload(header, header_)) return false;
  const uint32_t type = header_.pixelType & kTypeBits;
  masked_ = type == kMasked;
  inverted_ = IsBilevel(header_) && header_.depthHint != 0;
  if (masked_) header_.pixelType = (header_.pixelType & ~kTypeBits) | kRgb;
  if (inverted_) header_.depthHint = 0;
  if ((type == kGrey || type == kIndexed) && header_.palette != nullptr) {
    const auto *given = static_cast<const uint8_t *>(header_.palette);
    palette_.assign(given, given + kPaletteBytes);
    for (size_t at = kPaletteHead; at < kPaletteBytes; at += 4) {
      if (palette_[at + 3] == kHidden) std::fill_n(palette_.begin() + static_cast<std::ptrdiff_t>(at), 3, kWhite);
    }
    header_.palette = palette_.data();
  }
  header.payload = &header_;
  return true;
}

void RasterForExport::Convert(ElementRecord &row) {
  if (row.payload == nullptr) return;
  if (masked_) Flatten(row);
  if (inverted_) InvertRuns(row);
}

void RasterForExport::Flatten(ElementRecord &row) {
  const auto *from = static_cast<const uint8_t *>(row.payload);
  const size_t pixels = std::min<size_t>(header_.width, row.payloadBytes / 4);
  bytes_.assign(size_t{header_.width} * 3, kWhite);
  uint8_t *to = bytes_.data();
  for (size_t i = 0; i < pixels; ++i, from += 4, to += 3) {
    if (from[3] != kHidden) std::copy_n(from, 3, to);
  }
  row.payload = bytes_.data();
  row.payloadBytes = static_cast<uint32_t>(bytes_.size());
}

// The gaps of the list, whose runs stand in order.
void RasterForExport::InvertRuns(ElementRecord &row) {
  const uint32_t given = row.payloadBytes < 4 ? 0 : ReadAt<uint32_t>(row.payload, 0);
  const uint32_t count = std::min(given, row.payloadBytes < 4 ? 0 : (row.payloadBytes - 4) / 8);
  uint32_t next = 0;  // first pixel that may be ink
  runs_.assign(1, 0);
  const auto add = [&](uint32_t end) {
    if (end <= next) return;
    runs_.push_back(next);
    runs_.push_back(end - 1);
  };
  for (size_t i = 0; i < count && next < header_.width; ++i) {
    const auto first = ReadAt<uint32_t>(row.payload, 4 + 8 * i), last = ReadAt<uint32_t>(row.payload, 8 + 8 * i);
    add(std::min(first, header_.width));
    if (last >= next) next = std::min(last, header_.width - 1) + 1;
  }
  add(header_.width);
  runs_[0] = static_cast<uint32_t>(runs_.size() / 2);
  row.payload = runs_.data();
  row.payloadBytes = static_cast<uint32_t>(runs_.size() * sizeof(uint32_t));
}

}  // namespace kapdf::tool
