#include "content/inline_raster.h"

#include <algorithm>
#include <cstring>

#include "base/limits.h"
#include "base/scan.h"
#include "content/scanner.h"
#include "io/codec_ascii.h"
#include "io/codec_ccitt.h"
#include "io/codec_dct.h"
#include "io/codec_flate.h"
#include "io/codec_lzw.h"
#include "io/codec_packbits.h"

namespace kapdf {
namespace {

bool StartsWith(const char *text, std::string_view prefix) {
  return std::strncmp(text, prefix.data(), prefix.size()) == 0;
}

bool IsLineEnd(int c) { return c == '\n' || c == '\r'; }

bool IsBlankOrLineEnd(int c) { return c == ' ' || IsLineEnd(c); }

// Keys need no blank between them.
void SkipWord(char *&at) {
  if (*at) ++at;
  while (*at && !IsBlank(*at) && *at != '/' && *at != '[' && *at != '(' && *at != '<') ++at;
}

void SkipBlanks(char *&at) {
  while (IsBlank(*at)) ++at;
}

// The whole number behind a key, wherever in the text that is.
void Scan(const char *text, const char *key, int32_t &value) {
  const char *at = std::strstr(text, key);
  if (!at) return;
  at += std::strlen(key);
  ScanAnyInteger(at, value);
}

}  // namespace

char *InlineImageReader::TakeKey(char *text) {
  char *at = text;
  SkipWord(at);
  SkipBlanks(at);
  char *value = at;
  const char *number = value;
  const auto is = [&](std::string_view prefix) { return StartsWith(text, prefix); };
  bool decode = false;
  if (is("/CS") || is("/ColorSpace")) {
    if (*value == '[' && TakeColorSpaceArray(value)) return nullptr;
    char *end = value;
    SkipWord(end);
    TakeColorSpace(text, {value, static_cast<size_t>(end - value)});
  } else if (is("/W")) {
    ScanAnyInteger(number, width_);
  } else if (is("/H")) {
    ScanAnyInteger(number, height_);
  } else if (is("/BPC") || is("/BitsPerComponent")) {
    ScanAnyInteger(number, bitsPerComponent_);
  } else if (is("/DP") || is("/DecodeParms")) {
    TakeParameters(text);
  } else if (is("/D")) {
    decode = true;
  } else if (is("/F")) {
    TakeFilters(text);
  }
  if (*at == '[') {
    char *close = std::strchr(at, ']');
    if (!close) {  // goes on behind the line
      std::string whole(at);
      for (int c = 0; c >= 0 && c != ']' && whole.size() < StatementReader::kStatementBytes;) {
        c = context_.bytes.NextByte();
        whole += IsLineEnd(c) || c < 0 ? ' ' : static_cast<char>(c);
      }
      if (decode) TakeDecode(whole.data());
      return nullptr;
    }
    at = close + 1;
  } else if (*at == '(') {
    SkipLiteralString(at);
  } else if (*at == '<') {
    if (at[1] == '<')
      SkipDictionary(at);
    else
      SkipHexString(at);
  } else {
    SkipWord(at);
  }
  if (decode) TakeDecode(value);
  SkipBlanks(at);
  return *at ? at : nullptr;
}

void InlineImageReader::TakeFilters(const char *text) {
  static constexpr struct {
    const char *name, *abbreviation;
    Filter bit;
  } kNames[] = {{"/ASCIIHexDecode", "/AHx", kAsciiHex},
                {"/ASCII85Decode", "/A85", kAscii85},
                {"/LZWDecode", "/LZW", kLzw},
                {"/FlateDecode", "/Fl", kFlate},
                {"/RunLengthDecode", "/RL", kRunLength},
                {"/CCITTFaxDecode", "/CCF", kCcitt},
                {"/DCTDecode", "/DCT", kDct}};
  for (const auto &known : kNames) {
    if (std::strstr(text, known.name) || std::strstr(text, known.abbreviation)) filters_ |= known.bit;
  }
}

// Which parameters are read is decided by the filters, which must have come before. CCITT rows are as wide as their own
// columns tell, and BlackIs1 may be a word, as in an image of its own.
void InlineImageReader::TakeParameters(const char *text) {
  if (filters_ & (kLzw | kFlate)) {
    Scan(text, "/Predictor", predictor_);
    Scan(text, "/Colors", colors_);
    Scan(text, "/BitsPerComponent", predictorBits_);
    Scan(text, "/Columns", columns_);
    Scan(text, "/EarlyChange", earlyChange_);
  } else if (filters_ & kCcitt) {
    Scan(text, "/K", k_);
    Scan(text, "/EncodeByteAlign", encodeByteAlign_);
    Scan(text, "/Columns", columns_);
    int32_t black = blackIs1_ ? 1 : 0;
    Scan(text, "/BlackIs1", black);
    if (std::strstr(text, "/BlackIs1 true")) black = 1;
    blackIs1_ = black != 0;
  }
}

void InlineImageReader::TakeDecode(char *value) {
  const char *at = value;
  while (*at == '[' || *at == ' ') ++at;
  double first, second;
  if (ScanReal(at, first) && ScanReal(at, second) && first > 0.5 && second < 0.5) blackIs1_ = true;
}

// Looked for in the whole text, in this order.
void InlineImageReader::TakeColorSpace(const char *text, std::string_view name) {
  const auto has = [&](const char *word, const char *longWord) {
    return std::strstr(text, word) || std::strstr(text, longWord);
  };
  components_ = 1;
  if (has("/RGB", "/DeviceRGB")) {
    color_ = Color::kRgb;
    components_ = 3;
  } else if (has("/G", "/DeviceGray")) {
    color_ = Color::kGrey;
  } else if (has("/I", "/Indexed")) {
    color_ = Color::kIndexed;
    palette_ = DefaultPalette();
  } else if (has("/CMYK", "/DeviceCMYK")) {
    color_ = Color::kCmyk;
    components_ = 4;
  } else if (!name.empty()) {
    if (const ColorSpace *space = context_.resources.FindColorSpace(name.substr(1))) UseColorSpace(*space);
  }
}

void InlineImageReader::UseColorSpace(const ColorSpace &space) {
  components_ = 1;
  switch (space.components()) {
    case ColorSpace::kTwoColors:
    case 1:
    case ColorSpace::kGrey:
      color_ = Color::kIndexed;
      palette_ = Copy(space.palette());
      break;
    case 3:
      color_ = Color::kRgb;
      components_ = 3;
      break;
    case 4:
      color_ = Color::kCmyk;
      components_ = 4;
      break;
    default:
      break;
  }
}

// The family may be Indexed or, as inline images abbreviate it, I. False leaves everything as it was.
bool InlineImageReader::UseColorSpaceArray(CZVBaseIO &source) {
  CPDFArray array(source);
  ColorSpace space(context_.bytes.objects());
  if (!array.Parse(255) || !space.Load(&array)) return false;
  color_ = Color::kIndexed;
  components_ = 1;
  palette_ = Copy(space.palette());
  return true;
}

// Parsed where it stands in the content, since strings in it may hold any byte, unless they are hexadecimal.
bool InlineImageReader::TakeColorSpaceArray(const char *value) {
  if (lexed_) {
    MemorySource source({reinterpret_cast<const uint8_t *>(value), std::strlen(value)});
    return UseColorSpaceArray(source);
  }
  const auto content = context_.bytes.content();
  const size_t start = context_.statements.PositionOf(value);
  if (start >= content.size() || content[start] != '[') return false;
  MemorySource source(content.subspan(start));
  if (!UseColorSpaceArray(source)) return false;
  context_.SetPosition(start + static_cast<size_t>(source.Tell()) - (source.AtEnd() ? 0 : 1));
  return true;
}

size_t InlineImageReader::RowBytes() const {
  const uint64_t bits =
      color_ == Color::kNone ? 1 : static_cast<uint64_t>(std::max(bitsPerComponent_, 1)) * components_;
  return static_cast<size_t>((static_cast<uint64_t>(std::max(width_, 0)) * bits + 7) / 8);
}

// Of unfiltered data.
uint64_t InlineImageReader::DataBytes() const {
  return static_cast<uint64_t>(RowBytes()) * static_cast<uint64_t>(std::max(height_, 0));
}

// The white space that "EI" follows. On a line that "ID" starts it is a line end, where one stands within the length of
// a statement. Where there is none up to the end of the content, unfiltered data end by their size, if "EI" stands
// there.
size_t InlineImageReader::DataEnd(size_t from, bool onOwnLine, bool escaped) const {
  const auto content = context_.bytes.content();
  const auto beforeEnd = [&](size_t at) { return content[at + 1] == 'E' && content[at + 2] == 'I'; };
  const size_t line = onOwnLine ? std::min(content.size(), from + StatementReader::kStatementBytes) : 0;
  for (size_t at = from; at + 2 < line; ++at) {
    if (IsLineEnd(content[at]) && beforeEnd(at)) return at;
  }
  size_t &none = context_.bytes.noImageEnd[escaped];
  for (size_t at = from; at < none && at + 2 < content.size(); ++at) {
    if (IsBlankOrLineEnd(content[at])) {
      if (beforeEnd(at)) return at;
    } else if (escaped && content[at] == '\\' && IsLineEnd(content[at + 1])) {
      ++at;
    }
  }
  none = std::min(none, from);
  const uint64_t left = content.size() - from, size = DataBytes();
  if (filters_ == 0 && size <= left && left - size >= 2 && content[from + size] == 'E' &&
      content[from + size + 1] == 'I') {
    return from + static_cast<size_t>(size);
  }
  return content.size();
}

void InlineImageReader::TakeLexedKey(char *text) {
  lexed_ = true;
  TakeKey(text);
}

// "EI" stands there, and what follows it looks like content and not like data.
bool InlineImageReader::EndsImage(size_t at) const {
  constexpr size_t kLookedAt = 12;
  const auto content = context_.bytes.content();
  if (at + 2 > content.size() || content[at] != 'E' || content[at + 1] != 'I') return false;
  if (at + 2 < content.size() && !IsSpace(content[at + 2])) return false;
  for (size_t i = at + 2; i < std::min(content.size(), at + 2 + kLookedAt); ++i) {
    const uint8_t c = content[i];
    if (c != 0 && ((c < ' ' && !IsSpace(c)) || c > 126)) return false;
  }
  return true;
}

// Unfiltered data end by their size where "EI" stands there, ASCII85 behind its mark, others at the first white space
// with "EI" that content follows.
size_t InlineImageReader::LexedDataEnd(size_t from) const {
  const auto content = context_.bytes.content();
  if (const uint64_t size = DataBytes(); filters_ == 0 && size <= content.size() - from) {
    size_t at = from + static_cast<size_t>(size);
    while (at < content.size() && IsSpace(content[at])) ++at;
    if (EndsImage(at)) return from + static_cast<size_t>(size);
  }
  size_t at = from;
  if ((filters_ & kAscii85) && !content.empty()) {
    const std::string_view text(reinterpret_cast<const char *>(content.data()), content.size());
    at = std::min(text.find("~>", from), content.size() - 1) + 1;  // at the bracket
  }
  for (; at + 2 < content.size(); ++at) {
    if ((IsSpace(content[at]) || content[at] == '>') && EndsImage(at + 1)) return content[at] == '>' ? at + 1 : at;
  }
  return content.size();
}

// One white space stands between "ID" and the data.
void InlineImageReader::TakeLexedData() {
  const auto content = context_.bytes.content();
  size_t from = context_.bytes.position;
  if (from < content.size() && content[from] == '\r' && from + 1 < content.size() && content[from + 1] == '\n') ++from;
  from = std::min(from + 1, content.size());
  size_t end = LexedDataEnd(from);
  data_.assign(content.begin() + static_cast<std::ptrdiff_t>(from), content.begin() + static_cast<std::ptrdiff_t>(end));
  while (end < content.size() && IsSpace(content[end])) ++end;
  context_.SetPosition(EndsImage(end) ? end + 2 : end);
}

// Data on the line of "ID" start one blank behind it. Of those behind the line all white space ahead is passed over,
// and each backslash together with a line end behind it. All are taken from the content's own bytes: those of the
// statement end at its 8,191st, and images may be larger.
void InlineImageReader::TakeData(size_t position, bool startsLine) {
  const auto content = context_.bytes.content();
  const auto endsLine = [&](size_t at) { return at >= content.size() || IsLineEnd(content[at]); };
  const bool blank = position < content.size() && content[position] == ' ';
  const bool behindLine = !blank || (!startsLine && endsLine(position + 1));
  if (!behindLine) ++position;
  while (behindLine && position < content.size() && IsBlankOrLineEnd(content[position])) ++position;
  position = std::min(position, content.size());
  const size_t end = DataEnd(position, !behindLine && startsLine, behindLine);
  data_.assign(content.begin() + static_cast<std::ptrdiff_t>(position),
               content.begin() + static_cast<std::ptrdiff_t>(end));
  if (behindLine) {
    size_t kept = 0;
    for (size_t i = 0; i < data_.size(); ++i) {
      if (data_[i] == '\\' && i + 1 < data_.size() && IsLineEnd(data_[i + 1]))
        ++i;
      else
        data_[kept++] = data_[i];
    }
    data_.resize(kept);
  }
  context_.SetPosition(end);
}

// The codec of a combination of filters; none for any other one.
bool InlineImageReader::MakeCodec(InlineRaster &image, uint32_t length, RowLayout &layout) {
  CZVBaseIO &io = *image.data;
  const auto width = static_cast<uint32_t>(width_);
  const auto atLeast1 = [](int32_t value) { return static_cast<uint32_t>(std::max(value, 1)); };
  const SampleShape predicted = {atLeast1(columns_), atLeast1(colors_), atLeast1(predictorBits_)};
  ImageFilter filter = ImageFilter::kUncompressed;
  switch (filters_) {
    case 0:
      break;
    case kAscii85:
      filter = ImageFilter::kAscii85;
      break;
    case kAsciiHex:
      filter = ImageFilter::kAsciiHex;
      break;
    case kRunLength:
      filter = ImageFilter::kPackBits;
      break;
    case kLzw: {
      auto codec = std::make_unique<CZVLzw>(io, length);
      codec->SetEarlyChange(earlyChange_ != 0);
      UsePredictor(*codec, predictor_, predicted);
      image.codec = std::move(codec);
      return true;
    }
    case kFlate:
    case kFlate | kAscii85: {
      std::unique_ptr<CCompressionClass> inner;
      if (filters_ & kAscii85) inner = std::make_unique<CZVASCII85>(io, length);
      image.codec = std::make_unique<CZVFlate>(io, length, std::move(inner));
      UsePredictor(*image.codec, predictor_, predicted);
      return true;
    }
    case kCcitt:
      if (!ChooseCcitt(k_, encodeByteAlign_ == 1, filter)) return false;
      layout.runs = layout.kind == RasterKind::kBilevel;
      break;
    case kDct: {
      auto codec = std::make_unique<CZVDCT>(io, length);
      if (!codec->Open()) return false;
      layout.components = codec->components();
      layout.codedWidth = codec->width();
      layout.bitsPerComponent = 8;
      image.codec = std::move(codec);
      return true;
    }
    default:
      return false;
  }
  const uint32_t told = std::min(static_cast<uint32_t>(std::max(columns_, 0)), limits::kImageSide);
  const uint32_t columns = filters_ == kCcitt && told > 0 ? told : width;
  image.codec = MakeImageCodec(io, length, filter, {columns, components_, 8});
  image.codec->SetBitlineOutput(layout.runs && columns == width);
  layout.runs = layout.runs && columns == width;
  if (filters_ == kCcitt) layout.codedWidth = columns;
  return true;
}

// What the host is told of the samples. One bit a pixel is bilevel whatever its colours are.
bool InlineImageReader::ChooseLayout(InlineRaster &image, RowLayout &layout) const {
  ImageDescription &told = image.description;
  const bool oneBit = color_ == Color::kNone || (bitsPerComponent_ == 1 && components_ == 1);
  layout.width = told.width;
  layout.components = components_;
  layout.bitsPerComponent = oneBit ? 1 : static_cast<uint32_t>(std::clamp(bitsPerComponent_, 0, 16));
  told.invert = blackIs1_;
  if (oneBit) {
    told.kind = RasterKind::kBilevel;
    if (color_ != Color::kIndexed) told.invert = !told.invert;
    if (color_ == Color::kIndexed && palette_ && FirstIsBrighter(*palette_)) told.invert = !told.invert;
    // As an image of its own, also without a colour space: its runs are the black pixels, which are 0 in plain bits.
    if (filters_ == kCcitt) told.invert = !told.invert;
  } else if (color_ == Color::kGrey) {
    told.kind = RasterKind::kGrey;
    told.palette = GreyRamp();
  } else if (color_ == Color::kIndexed) {
    told.kind = RasterKind::kIndexed;
    told.palette = palette_ ? Copy(palette_) : DefaultPalette();
  } else {
    told.kind = color_ == Color::kRgb ? RasterKind::kTrueColor : RasterKind::kTrueColorMasked;
  }
  layout.kind = told.kind;
  const uint32_t bits = layout.bitsPerComponent;
  return bits == 8 || (components_ == 1 && (bits == 1 || bits == 2 || bits == 4));
}

std::unique_ptr<InlineRaster> InlineImageReader::Finish(const Affine &matrix) {
  const auto inBounds = [](int32_t side) { return side >= 1 && static_cast<uint32_t>(side) <= limits::kImageSide; };
  if (!inBounds(width_) || !inBounds(height_)) return nullptr;
  auto image = std::make_unique<InlineRaster>();
  image->description.width = static_cast<uint32_t>(width_);
  image->description.height = static_cast<uint32_t>(height_);
  image->placement = PlaceInlineImage(matrix, image->description.width, image->description.height);
  image->description.dpi = image->placement.dpi;
  const auto length = static_cast<uint32_t>(data_.size());
  image->data = std::make_unique<CZVMemoryFile>(std::move(data_));
  RowLayout layout;
  if (!ChooseLayout(*image, layout) || !MakeCodec(*image, length, layout)) {
    image->codec.reset();
    return image;
  }
  image->reader = std::make_unique<RowReader>(layout);
  return image;
}

}  // namespace kapdf
