// How the samples of an image are coded, and the codec that reads them.
#pragma once

#include <cstdint>
#include <memory>

#include "io/codec.h"
#include "pdfmodel/locator.h"

namespace kapdf {

enum class ImageFilter {
  kUncompressed,
  kAscii85,
  kAsciiHex,
  kFlate,
  kLzw,
  kPackBits,
  kCcitt3,
  kCcitt3Fax,
  kCcitt4,
  kDct,
  kJp2,
  kJBig2
};

constexpr bool IsCcitt(ImageFilter filter) {
  return filter == ImageFilter::kCcitt3 || filter == ImageFilter::kCcitt3Fax || filter == ImageFilter::kCcitt4;
}

// The facsimile codec for a `K`; false for a positive one, which none reads.
bool ChooseCcitt(int32_t k, bool rowsStartAtBytes, ImageFilter &filter);

// One filter, or two of which the first is decoded into a temporary store.
struct ImageCoding {
  enum class First { kNone, kSkipped, kAscii85, kFlate };

  ImageFilter filter = ImageFilter::kUncompressed;
  First first = First::kNone;
  int32_t firstPredictor = 1;
  int32_t predictor = 1;
  bool blackIs1 = false;
  bool bytesAligned = false;
  bool earlyChange = true;   // of LZW
  int64_t globalsStart = 0;  // of JBIG2, in the document
  uint32_t globalsLength = 0;
  int64_t dataStart = 0;  // of the coded bytes, in the document
  uint32_t length = 0;    // as the dictionary says

  // Takes the filters and their parameters from an image's dictionary. False for a filter or a number of filters that
  // is not read; `jbig2`: whether that filter is.
  bool Read(ObjectLocator &objects, const CPDFDictionary &dictionary, bool jbig2);

 private:
  bool ReadFilter(const std::string &name, bool jbig2);
  bool ReadParameters(ObjectLocator &objects, const CPDFObject *parameters);
};

// A codec with what it stands on. Its source stands at the coded bytes.
class ImageSource {
 public:
  // Null when a first filter has no place for its output. `shape`: of the image's rows.
  static std::unique_ptr<ImageSource> Open(ObjectLocator &objects, const ImageCoding &coding, const SampleShape &shape);

  CCompressionClass &codec() { return *codec_; }

 private:
  ImageSource() = default;
  std::unique_ptr<CZVBaseIO> data_;
  std::unique_ptr<CCompressionClass> codec_;
};

// A codec over a source, for rows of a shape. Facsimile rows come as run lists. No prediction is undone.
std::unique_ptr<CCompressionClass> MakeImageCodec(CZVBaseIO &io, uint32_t length, ImageFilter filter,
                                                  const SampleShape &shape);
// Row prediction of `predictor`, where it is any.
void UsePredictor(CCompressionClass &codec, int32_t predictor, const SampleShape &shape);

}  // namespace kapdf
