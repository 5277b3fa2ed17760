#include "io/row_predictor.h"

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <cstring>

#include "base/limits.h"

namespace kapdf {
namespace {

constexpr size_t kPieceBytes = 65536;  // decoded at a time, unless a row is longer
constexpr uint32_t kMostColors = 256;

enum Tag : uint8_t { kNone, kSub, kUp, kAverage, kPaeth };

uint8_t Left(uint8_t left, uint8_t, uint8_t) { return left; }

uint8_t Average(uint8_t left, uint8_t up, uint8_t) { return static_cast<uint8_t>((left + up) >> 1); }

// Whichever of the three is nearest to left + up - corner.
uint8_t Paeth(uint8_t left, uint8_t up, uint8_t corner) {
  const int toLeft = std::abs(up - corner), toUp = std::abs(left - corner);
  const int toCorner = std::abs(left + up - 2 * corner);
  const uint8_t other = toUp <= toCorner ? up : corner;
  return toLeft <= std::min(toUp, toCorner) ? left : other;
}

using Rule = uint8_t (*)(uint8_t left, uint8_t up, uint8_t corner);

// From byte `i` to the end of the row; for the pixels that the faster ways leave.
template <Rule rule>
void WalkRest(const uint8_t *in, size_t i, size_t count, uint8_t *out, const uint8_t *above, size_t pixelBytes) {
  for (; i < std::min(pixelBytes, count); ++i) out[i] = static_cast<uint8_t>(in[i] + rule(0, above[i], 0));
  for (; i < count; ++i)
    out[i] = static_cast<uint8_t>(in[i] + rule(out[i - pixelBytes], above[i], above[i - pixelBytes]));
}

// The neighbours of a pixel stay in registers.
template <Rule rule, size_t pixelBytes>
void Walk(const uint8_t *in, size_t count, uint8_t *out, const uint8_t *above) {
  uint8_t left[pixelBytes] = {}, corner[pixelBytes] = {};
  size_t i = 0;
  for (; i + pixelBytes <= count; i += pixelBytes) {
    for (size_t k = 0; k < pixelBytes; ++k) {
      const uint8_t up = above[i + k];
      left[k] = out[i + k] = static_cast<uint8_t>(in[i + k] + rule(left[k], up, corner[k]));
      corner[k] = up;
    }
  }
  WalkRest<rule>(in, i, count, out, above, pixelBytes);
}

// The samples of a pixel side by side, which spares the branches that noise makes hard to foresee. So many bytes are
// loaded and stored at once that the last ones may belong to the next pixel, which then follows.
using Bytes8 = uint8_t __attribute__((vector_size(8)));
using Words8 = int16_t __attribute__((vector_size(16)));

template <size_t count>
Words8 LoadWords(const uint8_t *at) {
  Bytes8 bytes{};
  std::memcpy(&bytes, at, count);
  return __builtin_convertvector(bytes, Words8);
}

template <size_t pixelBytes>
void WalkPaeth(const uint8_t *in, size_t count, uint8_t *out, const uint8_t *above) {
  constexpr size_t kAtOnce = std::bit_ceil(pixelBytes);
  Words8 left{}, corner{};
  size_t i = 0;
  for (; i + kAtOnce <= count; i += pixelBytes) {
    const Words8 up = LoadWords<kAtOnce>(above + i);
    Words8 toLeft = up - corner, toUp = left - corner, toCorner = toLeft + toUp;
    toLeft = toLeft < 0 ? -toLeft : toLeft;
    toUp = toUp < 0 ? -toUp : toUp;
    toCorner = toCorner < 0 ? -toCorner : toCorner;
    const Words8 other = toUp <= toCorner ? up : corner, least = toUp <= toCorner ? toUp : toCorner;
    left = (LoadWords<kAtOnce>(in + i) + (toLeft <= least ? left : other)) & 255;
    corner = up;
    const Bytes8 bytes = __builtin_convertvector(left, Bytes8);
    std::memcpy(out + i, &bytes, kAtOnce);
  }
  WalkRest<Paeth>(in, i, count, out, above, pixelBytes);
}

template <Rule rule, size_t pixelBytes>
void WalkBy(const uint8_t *in, size_t count, uint8_t *out, const uint8_t *above) {
  if constexpr (rule == Paeth && pixelBytes > 2) {
    WalkPaeth<pixelBytes>(in, count, out, above);
  } else {
    Walk<rule, pixelBytes>(in, count, out, above);
  }
}

template <Rule rule>
void Walk(const uint8_t *in, size_t count, uint8_t *out, const uint8_t *above, size_t pixelBytes) {
  switch (pixelBytes) {
    case 1:
      return WalkBy<rule, 1>(in, count, out, above);
    case 2:
      return WalkBy<rule, 2>(in, count, out, above);
    case 3:
      return WalkBy<rule, 3>(in, count, out, above);
    case 4:
      return WalkBy<rule, 4>(in, count, out, above);
    case 6:
      return WalkBy<rule, 6>(in, count, out, above);
    default:
      WalkRest<rule>(in, 0, count, out, above, pixelBytes);
  }
}

void AddAbove(const uint8_t *__restrict in, size_t count, uint8_t *__restrict out, const uint8_t *__restrict above) {
  for (size_t i = 0; i < count; ++i) out[i] = static_cast<uint8_t>(in[i] + above[i]);
}

// Samples of two bytes, the high one first; `distance` bytes from pixel to pixel.
void AddLeft16(const uint8_t *in, size_t count, uint8_t *out, size_t distance) {
  std::copy_n(in, std::min(distance, count), out);
  for (size_t i = distance; i < count; i += 2) {
    const unsigned left = out[i - distance] << 8 | out[i - distance + 1];
    const unsigned sum = (in[i] << 8 | (i + 1 < count ? in[i + 1] : 0)) + left;
    out[i] = static_cast<uint8_t>(sum >> 8);
    if (i + 1 < count) out[i + 1] = static_cast<uint8_t>(sum);
  }
}

// Several samples to a byte. What stands behind the last column comes out changed, and nobody looks at it.
void AddLeftPacked(const uint8_t *in, size_t count, uint8_t *out, const SampleShape &shape) {
  uint8_t left[kMostColors] = {};
  const unsigned bits = shape.bitsPerComponent, mask = (1u << bits) - 1;
  size_t color = 0;
  for (size_t i = 0; i < count; ++i) {
    unsigned byte = 0;
    for (unsigned at = 0; at < 8; at += bits) {
      const unsigned sample = (in[i] >> (8 - bits - at)) + left[color];
      left[color] = static_cast<uint8_t>(sample & mask);
      byte = byte << bits | left[color];
      if (++color == shape.colors) color = 0;
    }
    out[i] = static_cast<uint8_t>(byte);
  }
}

}  // namespace

void RowPredictedCodec::UsePredictor(uint8_t predictor) {
  predictor_ = predictor;
  Configure();
}

void RowPredictedCodec::SetSampleShape(const SampleShape &shape) {
  shape_ = shape;
  Configure();
}

void RowPredictedCodec::reset() {
  CCompressionClass::reset();
  next_ = end_ = 0;
  hasAbove_ = false;
  ended_ = kCodecOk;
}

void RowPredictedCodec::Configure() {
  rowBytes_ = 0;
  const uint32_t bits = shape_.bitsPerComponent;
  if (predictor_ != 2 && predictor_ < 10) return;
  if (shape_.colors > kMostColors || bits > 16 || !std::has_single_bit(bits)) return;
  const uint64_t bytes = (uint64_t{shape_.columns} * shape_.colors * bits + 7) / 8;
  if (bytes > limits::kDecodedStream) return;
  rowBytes_ = static_cast<size_t>(bytes);
  pixelBytes_ = (shape_.colors * bits + 7) / 8;
}

size_t RowPredictedCodec::decompress(uint8_t *buffer, size_t count) {
  if (rowBytes_ == 0) return DecodePlain(buffer, count);
  size_t done = 0;
  while (done < count) {
    if (next_ == end_ && !FillRows()) break;
    const size_t part = std::min(count - done, end_ - next_);
    std::memcpy(buffer + done, rows_.data() + next_, part);
    next_ += part;
    done += part;
  }
  return done;
}

size_t RowPredictedCodec::FetchRows() {
  const size_t coded = rowBytes_ + (predictor_ >= 10);
  const size_t wanted = std::max<size_t>(kPieceBytes / coded, 1) * coded;
  size_t filled = 0;
  while (filled < wanted && ended_ == kCodecOk) {
    const size_t step = std::min(wanted - filled, std::max(kPieceBytes, filled));
    predicted_.Resize(filled + step);
    const size_t got = DecodePlain(predicted_.data() + filled, step);
    filled += got;
    if (got < step) ended_ = state_ == kCodecOk ? unsigned{kCodecFinished} : state_;
  }
  state_ = kCodecOk;
  return filled;
}

bool RowPredictedCodec::FillRows() {
  if (state_ != kCodecOk) return false;
  const size_t tagBytes = predictor_ >= 10;
  const size_t filled = FetchRows(), coded = rowBytes_ + tagBytes;
  if (filled <= tagBytes) {
    state_ = ended_;
    return false;
  }
  // Only a row that nothing follows may be shorter than the others, and only then is the room for one not used up.
  const size_t stride = hasAbove_ ? rowBytes_ : std::min(rowBytes_, filled - tagBytes);
  const size_t rows = (filled + coded - 1) / coded;
  const size_t last = end_ - std::min(end_, rowBytes_);
  if (hasAbove_) std::memmove(rows_.data(), rows_.data() + last, rowBytes_);
  rows_.Resize(stride * (rows + 1));
  if (!hasAbove_) std::memset(rows_.data(), 0, stride);
  hasAbove_ = true;
  next_ = end_ = stride;
  for (size_t at = 0; at + tagBytes < filled; at += coded) {
    const size_t count = std::min(rowBytes_, filled - at - tagBytes);
    RestoreRow(predicted_.data() + at, count, rows_.data() + end_, rows_.data() + end_ - stride);
    end_ += count;
  }
  return true;
}

void RowPredictedCodec::RestoreRow(const uint8_t *in, size_t count, uint8_t *out, const uint8_t *above) const {
  if (predictor_ == 2) {
    if (shape_.bitsPerComponent == 16) return AddLeft16(in, count, out, pixelBytes_);
    if (shape_.bitsPerComponent < 8) return AddLeftPacked(in, count, out, shape_);
    return Walk<Left>(in, count, out, above, pixelBytes_);
  }
  const uint8_t tag = *in++;
  switch (tag) {
    case kSub:
      return Walk<Left>(in, count, out, above, pixelBytes_);
    case kUp:
      return AddAbove(in, count, out, above);
    case kAverage:
      return Walk<Average>(in, count, out, above, pixelBytes_);
    case kPaeth:
      return Walk<Paeth>(in, count, out, above, pixelBytes_);
    default:
      std::memcpy(out, in, count);
  }
}

}  // namespace kapdf
