#include "writer/raster_out.h"

#include <algorithm>
#include <cstring>

#include "base/bytes.h"
#include "base/color.h"
#include "base/limits.h"
#include "io/codec_ccitt.h"
#include "io/codec_dct.h"
#include "io/codec_lzw.h"

namespace kapdf {
namespace {

constexpr uint32_t kTypeBits = 0xFFFF;
constexpr uint32_t kUsualDpi = 300;
constexpr size_t kPaletteHead = 4;  // bytes ahead of the entries

constexpr uint32_t kDctSide = 65500;  // pixels that libjpeg takes

bool IsSide(uint32_t pixels) { return pixels >= 1 && pixels <= limits::kImageSide; }

std::optional<RasterMode> ModeOf(uint32_t pixelType) {
  switch (pixelType & kTypeBits) {
    case 0:
      return RasterMode::kBilevel;
    case 1:
    case 2:
      return RasterMode::kPalette;
    case 4:
      return RasterMode::kRgb;
    case 5:
      return RasterMode::kCmyk;
    default:
      return std::nullopt;
  }
}

std::vector<uint8_t> PaletteOf(const void *block) {
  std::vector<uint8_t> colors;
  if (!block) return colors;
  const auto *bytes = static_cast<const uint8_t *>(block);
  const size_t entries = std::min<size_t>(LoadAs<uint16_t>(bytes + 2), limits::kPaletteEntries);
  for (size_t i = 0; i < entries; ++i) {
    const uint8_t *entry = bytes + kPaletteHead + 4 * i;
    colors.insert(colors.end(), entry, entry + 3);
  }
  return colors;
}

std::unique_ptr<CCompressionClass> MakeCodec(CZVBaseIO &file, const RasterShape &shape, RasterCoding coding,
                                             int32_t quality) {
  switch (coding) {
    case RasterCoding::kCcitt: {
      auto codec = std::make_unique<CZVCCITT4>(file, 0);
      codec->SetColumns(shape.width);
      return codec;
    }
    case RasterCoding::kLzw:
      return std::make_unique<CZVLzw>(file, 0, CodecMode::kEncode);
    case RasterCoding::kDct: {
      auto codec = std::make_unique<CZVDCT>(file, JpegShape{24, shape.width, quality});
      codec->SetHeight(shape.height);
      return codec;
    }
    case RasterCoding::kNone:
      break;
  }
  return std::make_unique<CZVUncompressed>(file, 0);
}

// Sets the bits from `first` to `last` of a packed row.
void SetBits(uint8_t *row, size_t first, size_t last) {
  const auto head = static_cast<uint8_t>(0xFFu >> first % 8), tail = static_cast<uint8_t>(0xFF00u >> (last % 8 + 1));
  if (first / 8 == last / 8) {
    row[first / 8] |= head & tail;
    return;
  }
  row[first / 8] |= head;
  std::memset(row + first / 8 + 1, 0xFF, last / 8 - first / 8 - 1);
  row[last / 8] |= tail;
}

}  // namespace

std::optional<RasterShape> RasterShape::Of(const ElementRecord &header) {
  if (!header.payload) return std::nullopt;
  const auto payload = LoadAs<RasterHeaderPayload>(header.payload);
  const std::optional<RasterMode> mode = ModeOf(payload.pixelType);
  if (!mode || !IsSide(payload.width) || !IsSide(payload.height)) return std::nullopt;
  RasterShape shape{*mode, payload.width, payload.height, payload.dpi ? payload.dpi : kUsualDpi, {}};
  if (*mode == RasterMode::kPalette) shape.palette = PaletteOf(payload.palette);
  return shape;
}

bool Carries(RasterCoding coding, const RasterShape &shape) {
  return coding != RasterCoding::kDct || std::max(shape.width, shape.height) <= kDctSide;
}

uint32_t RasterShape::samplesPerPixel() const {
  return mode == RasterMode::kRgb ? 3 : mode == RasterMode::kCmyk ? 4 : 1;
}

RasterCoding CodingOf(RasterMode mode, const WriteSettings &settings) {
  if (mode == RasterMode::kBilevel) return settings.bwCompression == 1 ? RasterCoding::kNone : RasterCoding::kCcitt;
  return settings.colorCompression == 2   ? RasterCoding::kNone
         : settings.colorCompression == 1 ? RasterCoding::kDct
                                          : RasterCoding::kLzw;
}

RasterOut::RasterOut(CZVBaseIO &file, RasterShape shape, RasterCoding coding, int32_t quality)
    : shape_(std::move(shape)),
      expand_(coding == RasterCoding::kDct && shape_.mode != RasterMode::kRgb),
      codec_(MakeCodec(file, shape_, coding, quality)) {
  if (shape_.mode == RasterMode::kBilevel) row_.resize((size_t{shape_.width} + 7) / 8);
  if (!expand_) return;
  row_.resize(size_t{shape_.width} * 3);
  if (shape_.mode != RasterMode::kPalette) return;
  std::vector<uint8_t> &colors = shape_.palette;
  if (colors.empty()) {
    for (size_t i = 0; i < limits::kPaletteEntries; ++i) colors.insert(colors.end(), 3, static_cast<uint8_t>(i));
  }
  colors.resize(limits::kPaletteEntries * 3);  // black where there is no entry
}

uint32_t RasterOut::AddRow(const ElementRecord &record) {
  const auto *row = static_cast<const uint8_t *>(record.payload);
  size_t bytes = size_t{shape_.width} * shape_.samplesPerPixel();
  if (!row) return FilterBadRaster;
  if (shape_.mode == RasterMode::kBilevel) {
    if (!PackRow(row, record.payloadBytes)) return FilterBadRaster;
  } else if (record.payloadBytes < bytes) {
    return FilterBadRaster;
  } else if (expand_) {
    shape_.mode == RasterMode::kCmyk ? ConvertCmyk(row) : ExpandPalette(row);
  }
  if (!row_.empty()) {
    row = row_.data();
    bytes = row_.size();
  }
  ++rows_;
  return codec_->Write(row, bytes) == bytes ? FilterOk : FilterBadRaster;
}

bool RasterOut::PackRow(const uint8_t *row, size_t bytes) {
  std::fill(row_.begin(), row_.end(), uint8_t{0});
  if (PackRuns(row, bytes)) return true;
  if (bytes != shape_.width) return false;
  for (size_t i = 0; i < bytes; ++i) {
    if (row[i]) row_[i / 8] = static_cast<uint8_t>(row_[i / 8] | 0x80u >> i % 8);
  }
  return true;
}

bool RasterOut::PackRuns(const uint8_t *row, size_t bytes) {
  if (bytes < 4 || bytes != 4 + 8 * size_t{LoadAs<uint32_t>(row)}) return false;
  for (size_t at = 4; at < bytes; at += 8) {
    const auto first = LoadAs<uint32_t>(row + at);
    const uint32_t last = std::min(LoadAs<uint32_t>(row + at + 4), shape_.width - 1);
    if (first <= last) SetBits(row_.data(), first, last);
  }
  return true;
}

void RasterOut::ExpandPalette(const uint8_t *row) {
  uint8_t *to = row_.data();
  for (size_t i = 0; i < shape_.width; ++i, to += 3) std::memcpy(to, shape_.palette.data() + size_t{row[i]} * 3, 3);
}

void RasterOut::ConvertCmyk(const uint8_t *row) {
  uint8_t *to = row_.data();
  for (size_t i = 0; i < shape_.width; ++i, row += 4) {
    const uint32_t packed = PackFromCmykBytes(row[0], row[1], row[2], row[3]);
    *to++ = static_cast<uint8_t>(RedOf(packed));
    *to++ = static_cast<uint8_t>(GreenOf(packed));
    *to++ = static_cast<uint8_t>(BlueOf(packed));
  }
}

}  // namespace kapdf
