#include "io/jp2_bounds.h"

#include <algorithm>

#include "base/limits.h"

namespace kapdf {
namespace {

using Bytes = std::span<const uint8_t>;

constexpr uint8_t kStart[] = {0xFF, 0x4F, 0xFF, 0x51};  // SOC and SIZ
constexpr uint32_t kMarkerCod = 0xFF52, kMarkerCoc = 0xFF53, kMarkerSot = 0xFF90, kMarkerSod = 0xFF93;
constexpr uint32_t kBands = 32;
// Each beside what the coded bytes earn. A tile takes 14 bytes at least and a packet one, unless the end is missing.
constexpr uint64_t kTileBands = 16384, kPackets = 1 << 20, kBlocks = 4 << 20, kPositions = 16 << 20,
                   kPartBytes = 1 << 20;

uint64_t Up(uint64_t value, uint64_t unit) { return (value + unit - 1) / unit; }
uint64_t UpShift(uint64_t value, uint32_t shift) { return shift > 40 ? 1 : Up(value, uint64_t{1} << shift); }

class CodeStream {
 public:
  explicit CodeStream(Bytes bytes) : bytes_(bytes) {}

  bool WithinBounds(uint64_t mostSamples) {
    if (!SizeWithinBounds(mostSamples)) return false;
    size_t part = 0;  // where the present part of a tile began, and what it says of its length
    uint64_t partBytes = 0;
    for (uint64_t at = 4 + Get(4, 2); at + 4 <= bytes_.size();) {
      const uint32_t marker = Get(at, 2);
      if (marker < 0xFF00) break;
      if (marker == kMarkerSot) {
        part = static_cast<size_t>(at);
        partBytes = Get(at + 6, 4);
        if (partBytes > kPartBytes + 16 * bytes_.size()) return false;  // the library allocates it at once
      } else if (marker == kMarkerCod) {
        layers_ = std::max<uint64_t>(layers_, Get(at + 6, 2));
        if (!CodingWithinBounds(at + 9, (Get(at + 4, 1) & 1) != 0)) return false;
      } else if (marker == kMarkerCoc) {
        if (!CodingWithinBounds(at + 6, (Get(at + 5, 1) & 1) != 0)) return false;
      }
      const uint64_t next = marker == kMarkerSod ? part + partBytes : at + 2 + Get(at + 2, 2);
      if (next <= at) break;
      at = next;
    }
    return true;
  }

 private:
  uint32_t Get(uint64_t at, size_t count) const {
    uint32_t value = 0;
    for (uint64_t i = at; i < at + count; ++i)
      value = value << 8 | (i < bytes_.size() ? bytes_[static_cast<size_t>(i)] : 0);
    return value;
  }

  bool SizeWithinBounds(uint64_t mostSamples) {
    const uint64_t right = Get(8, 4), bottom = Get(12, 4), left = Get(16, 4), top = Get(20, 4);
    const uint64_t tileWidth = Get(24, 4), tileHeight = Get(28, 4), tileLeft = Get(32, 4), tileTop = Get(36, 4);
    bands_ = Get(40, 2);
    if (right <= left || bottom <= top || tileWidth == 0 || tileHeight == 0 || bands_ == 0) return true;  // no image
    if (tileLeft > left || tileTop > top) return true;
    width_ = right - left;
    height_ = bottom - top;
    if (bands_ > kBands || width_ > limits::kImageSide || height_ > limits::kImageSide) return false;
    uint64_t samples = 0;
    for (uint32_t i = 0; i < bands_; ++i) {
      const uint64_t xStep = std::max(1u, Get(43 + 3 * i, 1)), yStep = std::max(1u, Get(44 + 3 * i, 1));
      samples += Up(width_, xStep) * Up(height_, yStep);
    }
    tiles_ = Up(right - tileLeft, tileWidth) * Up(bottom - tileTop, tileHeight);
    return samples <= mostSamples && tiles_ * bands_ <= kTileBands + bytes_.size() / 4;
  }

  // `at`: the number of levels, followed by the sizes of code blocks and, when `precincts`, those of each resolution.
  bool CodingWithinBounds(uint64_t at, bool precincts) const {
    const uint32_t levels = std::min(Get(at, 1), 32u);
    uint64_t packets = 0;
    uint32_t xStep = 40, yStep = 40;  // exponents of the raster on which packets may begin
    for (uint32_t resolution = 0; resolution <= levels; ++resolution) {
      const uint32_t sizes = precincts ? Get(at + 5 + resolution, 1) : 0xFF;
      const uint32_t x = levels - resolution + (sizes & 15), y = levels - resolution + (sizes >> 4);
      packets += UpShift(width_, x) * UpShift(height_, y) + tiles_;
      xStep = std::min(xStep, x);
      yStep = std::min(yStep, y);
    }
    packets *= bands_ * layers_;
    const uint64_t blocks = UpShift(width_ * height_, Get(at + 1, 1) % 16 + Get(at + 2, 1) % 16 + 4) * bands_;
    const uint64_t positions = UpShift(width_, xStep) * UpShift(height_, yStep) * (levels + 1) * bands_;
    return packets <= kPackets + 4 * bytes_.size() && blocks <= kBlocks + bytes_.size() && positions <= kPositions;
  }

  Bytes bytes_;
  uint32_t bands_ = 0;
  uint64_t width_ = 0, height_ = 0, tiles_ = 0, layers_ = 1;
};

}  // namespace

bool Jp2WithinBounds(Bytes bytes, uint64_t mostSamples) {
  // Wherever one could begin: which of them the library takes is for its boxes to tell.
  for (auto start = bytes.begin();; start += sizeof kStart) {
    start = std::search(start, bytes.end(), std::begin(kStart), std::end(kStart));
    if (start == bytes.end()) return true;
    if (!CodeStream(bytes.subspan(static_cast<size_t>(start - bytes.begin()))).WithinBounds(mostSamples)) return false;
  }
}

}  // namespace kapdf
