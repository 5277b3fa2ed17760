#include "pdfmodel/stream.h"

#include <algorithm>
#include <new>
#include <vector>

#include "base/ascii.h"
#include "base/limits.h"
#include "io/codec_ascii.h"
#include "io/codec_ccitt.h"
#include "io/codec_flate.h"
#include "io/codec_lzw.h"
#include "io/inflate_whole.h"

namespace kapdf {
namespace {

constexpr double kFirstRatio = 2.0;
constexpr double kGrowth = 1.05;
constexpr size_t kGrowthFloor = 65536;
constexpr size_t kInflatedWhole = 16384;  // from so many coded bytes on

bool IsEither(std::string_view name, std::string_view full, std::string_view abbreviation) {
  return name == full || name == abbreviation;
}

// The name that decides the codec, empty for none. Two filters are followed only as ASCII85 in front of another one.
std::string_view ChooseFilter(const CPDFDictionary &dictionary, bool &ascii85First) {
  const auto nameOf = [](const CPDFObject *object) -> std::string_view {
    const auto *name = dynamic_cast<const CPDFNameObject *>(object);
    return name ? std::string_view(name->name) : std::string_view();
  };
  const CPDFObject *filter = dictionary.Get("Filter");
  const auto *list = dynamic_cast<const CPDFArray *>(filter);
  if (!list) return nameOf(filter);
  if (list->Count() == 1) return nameOf(list->GetAt(0));
  if (list->Count() != 2 || !IsEither(nameOf(list->GetAt(0)), "ASCII85Decode", "A85")) return {};
  ascii85First = true;
  return nameOf(list->GetAt(1));
}

}  // namespace

CPDFStream::CPDFStream(ObjectLocator &objects) : CPDFObject(objects.source()), objects_(objects) {}

bool CPDFStream::ReadLength(const char *key, int32_t &value) {
  if (const auto *number = dictionary_->GetAs<CPDFNumeric>(key)) {
    value = number->intValue;
    return true;
  }
  const auto *reference = dictionary_->GetAs<CPDFIndirectObject>(key);
  if (!reference) return false;
  const auto mark = objects_.source().GetMark();
  if (!ReadIndirectInteger(*reference, objects_, value)) value = 0;
  if (!objects_.source().Restore(mark)) value = 0;
  return true;
}

bool CPDFStream::Parse(uint8_t firstChar) {
  dictionary_ = std::make_unique<CPDFDictionary>(*source_);
  const bool parsed = dictionary_->Parse(firstChar);
  lastChar = dictionary_->lastChar;
  if (!parsed) return false;
  if (!ReadLength("Length", length_)) return false;
  ReadLength("Length1", length1_);
  if (dictionary_->Get("Length2")) length1_ = 0;
  if (length_ <= 0) return false;
  const bool made = MakeCodec();
  hasData_ = SkipKeyword();
  dataStart_ = source_->Tell();
  return hasData_ && made;
}

bool CPDFStream::MakeCodec() {
  bool ascii85First = false;
  const std::string_view filter = ChooseFilter(*dictionary_, ascii85First);
  const auto length = static_cast<uint32_t>(length_);
  if (filter.empty()) {
    codec_ = std::make_unique<CZVUncompressed>(*source_, length);
    passThrough_ = true;
    return true;
  }
  if (IsEither(filter, "FlateDecode", "Fl")) {
    std::unique_ptr<CCompressionClass> inner;
    if (ascii85First) inner = std::make_unique<CZVASCII85>(*source_, length);
    plainFlate_ = !inner;
    codec_ = std::make_unique<CZVFlate>(*source_, length, std::move(inner));
    return ReadFlateParameters();
  }
  if (IsEither(filter, "ASCII85Decode", "A85")) {
    codec_ = std::make_unique<CZVASCII85>(*source_, length);
    return true;
  }
  if (IsEither(filter, "ASCIIHexDecode", "AHx")) {
    codec_ = std::make_unique<CZVASCIIHex>(*source_, length);
    return true;
  }
  if (IsEither(filter, "LZWDecode", "LZW")) {
    codec_ = std::make_unique<CZVLzw>(*source_, length);
    return true;
  }
  return IsEither(filter, "CCITTFaxDecode", "CCF") && MakeFacsimileCodec();
}

// Here a reference in place of the parameters is followed. A number of bits makes good for too many parameters.
bool CPDFStream::MakeFacsimileCodec() {
  const auto mark = objects_.source().GetMark();
  const CPDFObject *value = dictionary_->Get("DecodeParms");
  std::unique_ptr<CPDFDictionary> fetched;
  bool result = true;
  if (const auto *list = dynamic_cast<const CPDFArray *>(value)) {
    result = list->Count() < 2;
    value = result ? list->GetAt(0) : nullptr;
  } else if (const auto *reference = dynamic_cast<const CPDFIndirectObject *>(value)) {
    fetched = FetchDictionary(objects_, *reference);
    value = fetched.get();
  }
  int32_t k = 0;
  bool byteAligned = false;
  if (const auto *parameters = dynamic_cast<const CPDFDictionary *>(value)) {
    if (const auto *number = parameters->GetAs<CPDFNumeric>("Predictor")) predictor_ = number->intValue;
    if (const auto *number = parameters->GetAs<CPDFNumeric>("Columns")) columns_ = number->intValue;
    if (const auto *number = parameters->GetAs<CPDFNumeric>("K")) k = number->intValue;
    if (const auto *flag = parameters->GetAs<CPDFBool>("EncodedByteAlign")) byteAligned = flag->value;
  }
  if (int32_t bits; !result && ReadLength("BitsPerComponent", bits)) result = true;
  const bool back = objects_.source().Restore(mark);
  if (k > 0 || !back) return false;
  const auto length = static_cast<uint32_t>(length_);
  std::unique_ptr<CZVCCITT> codec;
  if (k < 0)
    codec = std::make_unique<CZVCCITT4>(*source_, length);
  else if (byteAligned)
    codec = std::make_unique<CZVCCITT3>(*source_, length);
  else
    codec = std::make_unique<CZVCCITT3Fax>(*source_, length);
  if (byteAligned) codec->SetOptions(CZVCCITT::kRowsStartAtBytes);
  if (columns_ > 0) codec->SetColumns(static_cast<uint32_t>(columns_));
  codec_ = std::move(codec);
  return result;
}

// A reference in place of the parameters is not followed.
bool CPDFStream::ReadFlateParameters() {
  const CPDFObject *value = dictionary_->Get("DecodeParms");
  if (const auto *list = dynamic_cast<const CPDFArray *>(value)) {
    if (list->Count() >= 2) return false;
    value = list->GetAt(0);
  }
  const auto *parameters = dynamic_cast<const CPDFDictionary *>(value);
  if (!parameters) return true;
  if (const auto *number = parameters->GetAs<CPDFNumeric>("Predictor")) predictor_ = number->intValue;
  if (const auto *number = parameters->GetAs<CPDFNumeric>("Columns")) columns_ = number->intValue;
  return true;
}

// Behind "stream" one byte counts as the line end, whatever it is, and a line feed behind a carriage return goes with
// it.
bool CPDFStream::SkipKeyword() {
  if (lastChar != 's' || !Expect("tream")) return false;
  if (source_->GetByte() == '\r' && source_->GetByte() != '\n' && !source_->AtEnd())
    source_->Seek(-1, SeekOrigin::kCurrent);
  return true;
}

uint32_t CPDFStream::ReadDecoded(uint8_t *buffer, uint32_t size) {
  if (!codec_) return 1;
  const size_t got = codec_->Read(buffer, size);
  if (got < size) return static_cast<uint32_t>(got);
  return codec_->error() == kCodecFinished ? size : 0;
}

uint8_t CPDFStream::ReadByte() {
  if (!codec_) {
    status_ = 5;
    return 255;
  }
  const uint8_t byte = codec_->getByte();
  status_ = codec_->error() == kCodecFinished ? 5 : codec_->error();
  return byte;
}

bool CPDFStream::ReadAll(ByteBuffer &decoded) try {
  decoded.Clear();
  if (!codec_) return false;
  const int64_t left =
      std::max<int64_t>(objects_.source().blockActive() ? 0 : objects_.source().length() - dataStart_, 0);
  const auto coded = static_cast<size_t>(std::min<int64_t>(length_, left));
  if (coded == 0) return true;
  if (plainFlate_ && coded >= kInflatedWhole) {
    ByteBuffer bytes;
    bytes.Resize(coded);
    const size_t got = source_->Read(bytes.data(), coded);
    if (InflateWhole({bytes.data(), got}, limits::kDecodedStream, decoded)) return true;
    if (!source_->Seek(dataStart_, SeekOrigin::kStart)) return false;
  }
  // The coded size is all that is known: a pass-through stream has just that many bytes, others are read into a buffer
  // that grows by what the codec has made of its input so far.
  decoded.Resize(passThrough_ ? coded : std::min(coded * 2, limits::kDecodedStream));
  double ratio = kFirstRatio;
  size_t filled = 0;
  for (;;) {
    const size_t got = codec_->Read(decoded.data() + filled, decoded.size() - filled);
    filled += got;
    if (passThrough_ || got == 0 || filled < decoded.size() || codec_->error() != kCodecOk) break;
    if (filled >= limits::kDecodedStream) break;
    const int64_t gone = source_->Tell() - dataStart_;
    const auto consumed = static_cast<double>(std::clamp<int64_t>(gone, 1, static_cast<int64_t>(coded)));
    ratio = kGrowth * std::max(ratio, static_cast<double>(filled) / consumed);
    const auto grown = static_cast<size_t>(std::min(ratio * static_cast<double>(coded), 1e12)) + kGrowthFloor;
    decoded.Resize(std::min(std::max(grown, filled + kGrowthFloor), limits::kDecodedStream));
  }
  decoded.Resize(filled);
  return true;
} catch (const std::bad_alloc &) {
  decoded.Clear();
  return false;
}

size_t UndoRows(std::span<uint8_t> bytes, int32_t predictor, int32_t columns) {
  if (bytes.empty() || columns < 1 || (predictor != 2 && predictor < 10)) return bytes.size();
  const auto width = static_cast<size_t>(columns);
  const size_t rows = bytes.size() / (width + 1);
  if (rows == 0) return 0;
  std::vector<uint8_t> previous(width);
  size_t write = 0;
  for (size_t row = 0; row < rows; ++row) {
    const uint8_t *in = bytes.data() + row * (width + 1);
    const uint8_t tag = in[0];
    uint8_t *out = bytes.data() + write;
    if (tag == 0) {
      // Nothing is written; the row buffer is filled from the start of the rows that were.
      if (write >= row * width) std::copy_n(bytes.data() + (write - row * width), width, previous.begin());
      continue;
    }
    if (tag != 1 && tag != 2) continue;
    uint8_t left = 0;
    for (size_t i = 0; i < width; ++i) {
      const uint8_t base = tag == 1 ? left : previous[i];
      left = out[i] = static_cast<uint8_t>(in[i + 1] + base);
    }
    std::copy_n(out, width, previous.begin());
    write += width;
  }
  return write;
}

}  // namespace kapdf
