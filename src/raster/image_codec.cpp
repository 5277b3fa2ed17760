#include "raster/image_codec.h"

#include <algorithm>
#include <vector>

#include "base/limits.h"
#include "io/codec_ascii.h"
#include "io/codec_ccitt.h"
#include "io/codec_dct.h"
#include "io/codec_flate.h"
#include "io/codec_jbig2.h"
#include "io/codec_jp2.h"
#include "io/codec_lzw.h"
#include "io/codec_packbits.h"
#include "pdfmodel/stream.h"
#include "raster/raster_file.h"
#include "raster/stream_data.h"

namespace kapdf {
namespace {

constexpr size_t kFirstFilterPiece = 4048;

struct FilterName {
  std::string_view name, abbreviation;
  ImageFilter filter;
};

// "RL" stands for no filter here.
constexpr FilterName kFilters[] = {
    {"CCITTFaxDecode", "CCF", ImageFilter::kCcitt4}, {"FlateDecode", "Fl", ImageFilter::kFlate},
    {"LZWDecode", "LZW", ImageFilter::kLzw},         {"RunLengthDecode", "RunLengthDecode", ImageFilter::kPackBits},
    {"ASCII85Decode", "A85", ImageFilter::kAscii85}, {"DCTDecode", "DCT", ImageFilter::kDct},
    {"JPXDecode", "JPXDecode", ImageFilter::kJp2},   {"JBIG2Decode", "JBIG2Decode", ImageFilter::kJBig2}};

std::string NameOf(const CPDFObject *object) {
  const auto *name = dynamic_cast<const CPDFNameObject *>(object);
  return name ? name->name : std::string();
}

int32_t Integer(const CPDFDictionary &dictionary, std::string_view key, int32_t otherwise) {
  const auto *number = dictionary.GetAs<CPDFNumeric>(key);
  return number ? number->intValue : otherwise;
}

bool IsTrue(const CPDFDictionary &dictionary, std::string_view key) {
  const auto *value = dictionary.GetAs<CPDFBool>(key);
  return value && value->value;
}

// `Predictor` of parameters that stand there or behind a reference.
int32_t PredictorOf(ObjectLocator &objects, const CPDFObject *parameters) {
  std::unique_ptr<CPDFObject> fetched;
  const auto *dictionary = dynamic_cast<const CPDFDictionary *>(Follow(objects, parameters, fetched));
  return dictionary ? Integer(*dictionary, "Predictor", 1) : 1;
}

}  // namespace

void UsePredictor(CCompressionClass &codec, int32_t predictor, const SampleShape &shape) {
  if (predictor < 2) return;
  codec.UsePredictor(static_cast<uint8_t>(std::min(predictor, 255)));
  codec.SetSampleShape(shape);
}

bool ChooseCcitt(int32_t k, bool rowsStartAtBytes, ImageFilter &filter) {
  filter = k < 0 ? ImageFilter::kCcitt4 : rowsStartAtBytes ? ImageFilter::kCcitt3 : ImageFilter::kCcitt3Fax;
  return k <= 0;
}

bool ImageCoding::ReadFilter(const std::string &name, bool jbig2) {
  for (const FilterName &known : kFilters) {
    if (name != known.name && name != known.abbreviation) continue;
    filter = known.filter;
    return filter != ImageFilter::kJBig2 || jbig2;
  }
  return false;
}

// Parameters may stand there, alone in an array, or behind a reference. A longer array is refused for facsimile data.
bool ImageCoding::ReadParameters(ObjectLocator &objects, const CPDFObject *parameters) {
  std::unique_ptr<CPDFObject> fetched, fetchedItem;
  parameters = Follow(objects, parameters, fetched);
  if (const auto *list = dynamic_cast<const CPDFArray *>(parameters)) {
    if (list->Count() >= 2 && IsCcitt(filter)) return false;
    parameters = Follow(objects, list->GetAt(0), fetchedItem);
  }
  const auto *values = dynamic_cast<const CPDFDictionary *>(parameters);
  if (IsCcitt(filter)) {
    if (values) blackIs1 = IsTrue(*values, "BlackIs1");
    if (values) bytesAligned = IsTrue(*values, "EncodedByteAlign");
    return ChooseCcitt(values ? Integer(*values, "K", 0) : 0, bytesAligned, filter);
  }
  if (!values) return true;
  if (filter == ImageFilter::kFlate) predictor = Integer(*values, "Predictor", 1);
  // Without it, data that say 0 come out as rubbish.
  if (filter == ImageFilter::kLzw) earlyChange = Integer(*values, "EarlyChange", 1) != 0;
  if (filter == ImageFilter::kJBig2) {
    const auto *globals = values->GetAs<CPDFIndirectObject>("JBIG2Globals");
    uint8_t firstChar;
    if (globals && OpenObject(objects, globals->objectNumber, firstChar)) {
      CPDFStream stream(objects);
      stream.Parse(firstChar);
      if (stream.hasData()) {  // whatever their filter
        globalsStart = stream.dataStart();
        globalsLength = static_cast<uint32_t>(stream.length());
      }
    }
  }
  return true;
}

bool ImageCoding::Read(ObjectLocator &objects, const CPDFDictionary &dictionary, bool jbig2) {
  std::unique_ptr<CPDFObject> fetched;
  const CPDFObject *filters = Follow(objects, dictionary.Get("Filter"), fetched);
  std::unique_ptr<CPDFObject> fetchedParameters;
  const CPDFObject *parameters = Follow(objects, dictionary.Get("DecodeParms"), fetchedParameters);
  if (!dictionary.Get("Filter")) return true;
  const auto *list = dynamic_cast<const CPDFArray *>(filters);
  if (!list) return ReadFilter(NameOf(filters), jbig2) && ReadParameters(objects, parameters);
  if (list->Count() == 1) {
    return ReadFilter(NameOf(list->GetAt(0)), jbig2) && ReadParameters(objects, parameters);
  }
  if (list->Count() != 2) return false;
  const std::string name = NameOf(list->GetAt(0));
  const auto *both = dynamic_cast<const CPDFArray *>(parameters);
  const bool each = both && both->Count() == 2;
  if (name == "ASCII85Decode" || name == "A85") {
    first = First::kAscii85;
  } else if (name == "FlateDecode" || name == "Fl") {
    first = First::kFlate;
    if (each) firstPredictor = PredictorOf(objects, both->GetAt(0));
  } else {
    first = First::kSkipped;  // the second filter reads what was meant for it
  }
  return ReadFilter(NameOf(list->GetAt(1)), jbig2) && ReadParameters(objects, each ? both->GetAt(1) : nullptr);
}

std::unique_ptr<CCompressionClass> MakeImageCodec(CZVBaseIO &io, uint32_t length, ImageFilter filter,
                                                  const SampleShape &shape) {
  const auto facsimile = [&](std::unique_ptr<CZVCCITT> codec) {
    codec->SetColumns(shape.columns);
    codec->SetBitlineOutput(true);
    return codec;
  };
  switch (filter) {
    case ImageFilter::kUncompressed:
      return std::make_unique<CZVUncompressed>(io, length);
    case ImageFilter::kAscii85:
      return std::make_unique<CZVASCII85>(io, length);
    case ImageFilter::kAsciiHex:
      return std::make_unique<CZVASCIIHex>(io, length);
    case ImageFilter::kFlate:
      return std::make_unique<CZVFlate>(io, length);
    case ImageFilter::kLzw:
      return std::make_unique<CZVLzw>(io, length);
    case ImageFilter::kPackBits:
      return std::make_unique<CZVPackBits>(io, length);
    case ImageFilter::kCcitt3:
      return facsimile(std::make_unique<CZVCCITT3>(io, length));
    case ImageFilter::kCcitt3Fax:
      return facsimile(std::make_unique<CZVCCITT3Fax>(io, length));
    case ImageFilter::kCcitt4:
      return facsimile(std::make_unique<CZVCCITT4>(io, length));
    case ImageFilter::kDct:
      return std::make_unique<CZVDCT>(io, length);
    case ImageFilter::kJp2:
      return std::make_unique<CZVJP2000>(io, length);
    case ImageFilter::kJBig2:
      return std::make_unique<CZVJBig2>(io, length);
  }
  return nullptr;
}

std::unique_ptr<ImageSource> ImageSource::Open(ObjectLocator &objects, const ImageCoding &coding,
                                               const SampleShape &shape) {
  std::unique_ptr<ImageSource> opened(new ImageSource);
  auto data = std::make_unique<StreamData>(objects.source(), coding.dataStart);
  uint32_t length = coding.length;
  const bool stored = coding.first == ImageCoding::First::kAscii85 || coding.first == ImageCoding::First::kFlate;
  if (stored) {
    const bool flate = coding.first == ImageCoding::First::kFlate;
    const auto stage = MakeImageCodec(*data, length, flate ? ImageFilter::kFlate : ImageFilter::kAscii85, shape);
    UsePredictor(*stage, coding.firstPredictor, shape);
    auto store = CRasterFile::Create();
    if (!store) return nullptr;
    std::vector<uint8_t> piece(kFirstFilterPiece);
    size_t size = 0;
    for (size_t got = piece.size(); got == piece.size() && size < limits::kDecodedStream; size += got) {
      got = stage->Read(piece.data(), piece.size());
      if (store->Write(piece.data(), got) != got || !objects.source().Charge(static_cast<int64_t>(got))) return nullptr;
    }
    store->Seek(0, SeekOrigin::kStart);
    length = static_cast<uint32_t>(size);
    opened->data_ = std::move(store);
  } else {
    opened->data_ = std::move(data);
  }
  opened->codec_ = MakeImageCodec(*opened->data_, length, coding.filter, shape);
  UsePredictor(*opened->codec_, coding.predictor, shape);
  if (auto *lzw = dynamic_cast<CZVLzw *>(opened->codec_.get())) lzw->SetEarlyChange(coding.earlyChange);
  if (auto *fax = dynamic_cast<CZVCCITT *>(opened->codec_.get()); fax && coding.bytesAligned)
    fax->SetOptions(CZVCCITT::kRowsStartAtBytes);
  if (auto *jbig2 = dynamic_cast<CZVJBig2 *>(opened->codec_.get()); jbig2 && !stored) {
    jbig2->SetGlobals(coding.globalsStart, coding.globalsLength);
  }
  return opened;
}

}  // namespace kapdf
