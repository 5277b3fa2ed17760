// Rows of images in the forms in which hosts get them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "io/codec.h"

namespace kapdf {

// What a host is told of the pixels.
enum class RasterKind : int32_t {
  kInvalid = -1,
  kBilevel = 0,          // a run list a row
  kGrey = 1,             // a byte a pixel
  kIndexed = 2,          // a byte a pixel, an index
  kTrueColor = 4,        // three bytes a pixel
  kTrueColorMasked = 5,  // four bytes a pixel, the fourth 255 where nothing is painted and 0 elsewhere
};

// A run list: a count and as many pairs of first and last pixel, all u32. Those of a row never touch.
struct Run {
  uint32_t first, last;
};

class RunList {
 public:
  // `row`: aligned for u32, with room for 4 * width + 12 bytes.
  explicit RunList(uint8_t *row) : words_(reinterpret_cast<uint32_t *>(row)) {}

  uint32_t count() const { return words_[0]; }
  std::span<const Run> runs() const { return {reinterpret_cast<const Run *>(words_ + 1), count()}; }
  size_t bytes() const { return sizeof(uint32_t) + sizeof(Run) * count(); }
  bool CoversRow(uint32_t width) const { return count() == 1 && words_[1] == 0 && words_[2] == width - 1; }

  void Clear() { words_[0] = 0; }
  void Append(uint32_t first, uint32_t last) {
    words_[1 + 2 * words_[0]] = first;
    words_[2 + 2 * words_[0]] = last;
    ++words_[0];
  }
  // The set bits of a packed row, high bit first.
  void SetFromBits(const uint8_t *bits, uint32_t width);
  // The bytes that are not 0.
  void SetFromBytes(const uint8_t *bytes, uint32_t width);
  // What was not in a run is in one now.
  void Invert(uint32_t width);

 private:
  uint32_t *words_;
};

// How the rows of a codec are laid out and what is made of them.
struct RowLayout {
  uint32_t width = 0;
  RasterKind kind = RasterKind::kInvalid;
  uint32_t bitsPerComponent = 8;
  uint32_t components = 1;  // in the coded rows
  uint32_t codedWidth = 0;  // pixels of a coded row, where the data say so themselves; 0 for `width`
  bool runs = false;        // the codec delivers run lists

  uint32_t PixelBytes() const {
    return kind == RasterKind::kTrueColorMasked ? 4 : kind == RasterKind::kTrueColor ? 3 : 1;
  }
};

// Reads rows one after the other. What is short of data is zero.
class RowReader {
 public:
  explicit RowReader(const RowLayout &layout);

  // Fills a row of 4 * width + 12 bytes, aligned for u32, and gives how many bytes of it are used.
  size_t Read(CCompressionClass &codec, uint8_t *row);

 private:
  void Fetch(CCompressionClass &codec, uint8_t *to);
  void UnpackSamples(const uint8_t *packed, uint8_t *row) const;
  void ToTrueColor(const uint8_t *samples, uint8_t *row) const;

  RowLayout layout_;
  size_t codedBytes_;
  std::vector<uint8_t> coded_;
};

}  // namespace kapdf
