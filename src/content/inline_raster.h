// Images that stand in the content between BI and EI.
#pragma once

#include <memory>
#include <string_view>
#include <vector>

#include "content/content_stream.h"
#include "io/memory_file.h"
#include "raster/raster_object.h"

namespace kapdf {

// One that waits for its rows. Without a codec they cannot be read.
struct InlineRaster {
  ImageDescription description;
  Placement placement;
  std::unique_ptr<CZVMemoryFile> data;
  std::unique_ptr<CCompressionClass> codec;
  std::unique_ptr<RowReader> reader;
};

// White space between a key and its value.
inline bool IsBlank(char c) { return c == ' ' || c == '\t'; }

// Takes the keys and the data of one image from its content, piece by piece.
class InlineImageReader {
 public:
  explicit InlineImageReader(CPDFContentStream &context) : context_(context) {}

  // A key and its value at the start of the text, which is the end of what was read last. Gives what follows them in
  // the text, or null when reading goes on in the content.
  char *TakeKey(char *text);
  // The data behind an "ID" that ends at that position. `startsLine`: no key stands ahead of it on its line. Reading
  // goes on at the white space before "EI".
  void TakeData(size_t position, bool startsLine);
  // The same in extended reading: an entry in the lexer's form, and the data after "ID", up to and with "EI".
  void TakeLexedKey(char *text);
  void TakeLexedData();
  // Null when the sides are out of bounds. Without a codec for the filters there is none in the image.
  std::unique_ptr<InlineRaster> Finish(const Affine &matrix);

 private:
  // The names of filters are looked for in the whole text; several may come together.
  enum Filter : unsigned { kAscii85 = 1, kAsciiHex = 2, kLzw = 4, kFlate = 8, kRunLength = 16, kCcitt = 32, kDct = 64 };
  // What the samples are, by the numbers that hosts know.
  enum class Color { kNone, kGrey, kIndexed, kRgb, kCmyk };

  void TakeFilters(const char *text);
  void TakeParameters(const char *text);
  void TakeDecode(char *value);
  void TakeColorSpace(const char *text, std::string_view name);
  bool TakeColorSpaceArray(const char *value);
  bool UseColorSpaceArray(CZVBaseIO &source);
  void UseColorSpace(const ColorSpace &space);
  size_t RowBytes() const;
  uint64_t DataBytes() const;
  bool EndsImage(size_t at) const;
  size_t LexedDataEnd(size_t from) const;
  size_t DataEnd(size_t from, bool onOwnLine, bool escaped) const;
  bool MakeCodec(InlineRaster &image, uint32_t length, RowLayout &layout);
  bool ChooseLayout(InlineRaster &image, RowLayout &layout) const;

  CPDFContentStream &context_;
  bool lexed_ = false;
  int32_t width_ = 0, height_ = 0, bitsPerComponent_ = 1;
  unsigned filters_ = 0;
  int32_t predictor_ = 1, colors_ = 1, predictorBits_ = 8, columns_ = 0, earlyChange_ = 1;
  int32_t k_ = 1, encodeByteAlign_ = 0;
  bool blackIs1_ = false;
  Color color_ = Color::kNone;
  uint32_t components_ = 1;
  PaletteHandle palette_;
  std::vector<uint8_t> data_;
};

}  // namespace kapdf
