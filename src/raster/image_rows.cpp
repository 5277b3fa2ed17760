#include "raster/image_rows.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "base/bytes.h"
#include "base/color.h"

namespace kapdf {
namespace {

// 64 bits of a packed row from a byte on, the first pixel highest; what lies behind the row is 0.
uint64_t BitsAt(const uint8_t *bits, size_t byte, size_t bytes) {
  uint64_t word = 0;
  const size_t count = std::min<size_t>(8, bytes - byte);
  std::memcpy(&word, bits + byte, count);
  return std::endian::native == std::endian::little ? __builtin_bswap64(word) : word;
}

}  // namespace

void RunList::SetFromBits(const uint8_t *bits, uint32_t width) {
  Clear();
  const size_t bytes = (static_cast<size_t>(width) + 7) / 8;
  bool inside = false;
  uint32_t first = 0;
  for (size_t byte = 0; byte < bytes; byte += 8) {
    // A set bit of `changes` is a pixel that differs from the one before it.
    const uint64_t word = BitsAt(bits, byte, bytes);
    uint64_t changes = word ^ (word >> 1 | (inside ? uint64_t{1} << 63 : 0));
    while (changes != 0) {
      const int at = std::countl_zero(changes);
      const auto pixel = static_cast<uint32_t>(byte * 8) + static_cast<uint32_t>(at);
      if (pixel >= width) break;
      if (inside) Append(first, pixel - 1);
      first = pixel;
      inside = !inside;
      changes &= ~(uint64_t{1} << (63 - at));
    }
  }
  if (inside) Append(first, width - 1);
}

void RunList::SetFromBytes(const uint8_t *bytes, uint32_t width) {
  Clear();
  for (uint32_t x = 0; x < width;) {
    if (bytes[x] == 0) {
      ++x;
      continue;
    }
    const uint32_t first = x;
    while (x < width && bytes[x] != 0) ++x;
    Append(first, x - 1);
  }
}

void RunList::Invert(uint32_t width) {
  uint32_t next = 0, kept = 0;
  const uint32_t old = count();
  for (uint32_t i = 0; i < old; ++i) {
    const uint32_t first = words_[1 + 2 * i], last = words_[2 + 2 * i];
    if (first > next) {
      words_[1 + 2 * kept] = next;
      words_[2 + 2 * kept] = first - 1;
      ++kept;
    }
    next = last + 1;
  }
  words_[0] = kept;
  if (next < width) Append(next, width - 1);
}

RowReader::RowReader(const RowLayout &layout) : layout_(layout) {
  if (layout_.codedWidth == 0) layout_.codedWidth = layout_.width;
  const uint64_t bits = uint64_t{layout_.codedWidth} * layout_.components * layout_.bitsPerComponent;
  codedBytes_ = static_cast<size_t>((bits + 7) / 8);
}

// A whole coded row; at least as many bytes as the row of the image takes are set.
void RowReader::Fetch(CCompressionClass &codec, uint8_t *to) {
  const size_t got = codec.Read(to, codedBytes_);
  std::memset(to + got, 0, codedBytes_ - got);
}

size_t RowReader::Read(CCompressionClass &codec, uint8_t *row) {
  const uint32_t width = layout_.width;
  RunList runs(row);
  if (layout_.runs) {
    if (codec.Read(row, width) == 0) runs.Clear();
    return runs.bytes();
  }
  const size_t pixelBytes = layout_.PixelBytes();
  const bool direct = layout_.kind != RasterKind::kBilevel && layout_.bitsPerComponent == 8 &&
                      layout_.components == pixelBytes && layout_.codedWidth == width &&
                      layout_.kind != RasterKind::kTrueColorMasked;
  if (direct) {
    Fetch(codec, row);
    return width * pixelBytes;
  }
  if (coded_.empty()) {
    const uint64_t wanted = (uint64_t{width} * layout_.components * layout_.bitsPerComponent + 7) / 8;
    coded_.resize(std::max<size_t>(codedBytes_, static_cast<size_t>(wanted)));
  }
  Fetch(codec, coded_.data());
  switch (layout_.kind) {
    case RasterKind::kBilevel:
      if (layout_.bitsPerComponent == 1)
        runs.SetFromBits(coded_.data(), width);
      else
        runs.SetFromBytes(coded_.data(), width);
      return runs.bytes();
    case RasterKind::kTrueColor:
    case RasterKind::kTrueColorMasked:
      ToTrueColor(coded_.data(), row);
      break;
    default:
      UnpackSamples(coded_.data(), row);
  }
  return width * pixelBytes;
}

// One byte a pixel. Of several components those of a grey that would look the same.
void RowReader::UnpackSamples(const uint8_t *packed, uint8_t *row) const {
  const uint32_t bits = layout_.bitsPerComponent;
  if (bits < 8) {
    const uint32_t mask = (1u << bits) - 1;
    const uint32_t scale = layout_.kind == RasterKind::kGrey ? 255 / mask : 1;
    for (uint32_t x = 0; x < layout_.width; ++x) {
      const uint32_t bit = x * bits;
      row[x] = static_cast<uint8_t>((packed[bit / 8] >> (8 - bits - bit % 8) & mask) * scale);
    }
  } else if (layout_.components >= 3) {
    for (uint32_t x = 0; x < layout_.width; ++x, packed += layout_.components) {
      row[x] = static_cast<uint8_t>((packed[0] * 77 + packed[1] * 150 + packed[2] * 29) >> 8);
    }
  } else {
    std::memcpy(row, packed, layout_.width);
  }
}

void RowReader::ToTrueColor(const uint8_t *samples, uint8_t *row) const {
  const size_t step = layout_.PixelBytes();
  for (uint32_t x = 0; x < layout_.width; ++x, samples += layout_.components, row += step) {
    if (layout_.components == 4) {
      const uint32_t packed = PackFromCmykBytes(samples[0], samples[1], samples[2], samples[3]);
      row[0] = static_cast<uint8_t>(RedOf(packed));
      row[1] = static_cast<uint8_t>(GreenOf(packed));
      row[2] = static_cast<uint8_t>(BlueOf(packed));
    } else {
      row[0] = samples[0];
      row[1] = samples[layout_.components >= 3 ? 1 : 0];
      row[2] = samples[layout_.components >= 3 ? 2 : 0];
    }
    if (step == 4) row[3] = 0;
  }
}

}  // namespace kapdf
