// Element records on their way to the page's content.
#include <algorithm>
#include <array>

#include "base/ascii.h"
#include "base/bytes.h"
#include "pdfmodel/georeference.h"
#include "writer/write_file.h"

namespace kapdf {
namespace {

constexpr uint32_t kCompositeSeen = 0x40;  // set in the flags of a composite that goes back to the host
constexpr uint32_t kPropertyBinary = 32;

bool EqualsIgnoringCase(const char16_t *text, std::u16string_view upper) {
  const auto toUpper = [](char16_t c) { return c >= u'a' && c <= u'z' ? static_cast<char16_t>(c - 32) : c; };
  return std::ranges::equal(NameText(text), upper, {}, toUpper);
}

// False unless the text is exactly two hexadecimal digits for every byte.
bool DecodeHex(std::u16string_view text, std::span<uint8_t> bytes) {
  if (text.size() != bytes.size() * 2) return false;
  for (size_t i = 0; i < bytes.size(); ++i) {
    const int high = HexValue(text[2 * i]), low = HexValue(text[2 * i + 1]);
    if (high < 0 || low < 0) return false;
    bytes[i] = static_cast<uint8_t>(high << 4 | low);
  }
  return true;
}

// A drawing in coordinates of its own.
bool TellsNothing(const CoordinateSystemBlock &block) {
  return block.scale == 1.0 && block.systemClass == 1 && block.epsgCode == -1 && block.methodCode == -1;
}

// Leading contours that ascend within the vertices.
int32_t ValidContours(const FilledPolygonPayload &polygon) {
  if (!polygon.contourStarts || !polygon.vertices) return 0;
  int32_t valid = 0;
  while (valid < polygon.contourCount) {
    const auto first = LoadAs<uint32_t>(polygon.contourStarts + valid);
    const auto end = LoadAs<uint32_t>(polygon.contourStarts + valid + 1);
    if (first >= end || end > static_cast<uint32_t>(polygon.vertexCount)) break;
    ++valid;
  }
  return valid;
}

}  // namespace

uint32_t CPDFWriteFile::Define(const ElementRecord &record) {
  if (!record.payload) return FilterConsumed;
  if (record.kind == ElemLayerDef) layers_.Add(LoadAs<LayerDefPayload>(record.payload));
  if (record.kind == ElemLineTypeDef) lineTypes_.Add(LoadAs<LineTypeDefPayload>(record.payload));
  if (record.kind == ElemFontDef) fonts_.DefineFont(LoadAs<FontDefPayload>(record.payload));
  return FilterConsumed;
}

uint32_t CPDFWriteFile::WriteElement(ElementRecord &record) {
  switch (record.kind) {
    case ElemEndOfPage:
      return EndPage();
    case ElemNamedProperty:
      return WriteProperty(record);
    case ElemRasterPlacement:
      return PlaceRaster(record);
    case ElemComposite:
      BeginElement(record);
      record.flags |= kCompositeSeen;
      return FilterUnsupported;
    default:
      if (!lineTypes_.IsPlain(FieldText(record.styleName))) return FilterUnsupported;
      return DrawElement(record);
  }
}

// What the host cannot mean, or should send otherwise, is decided before anything is written.
uint32_t CPDFWriteFile::DrawElement(const ElementRecord &record) {
  switch (record.kind) {
    case ElemPoint:
      if (record.payload && LoadAs<PointPayload>(record.payload).pointStyle == 1) return FilterUnsupported;
      return DrawPayload<PointPayload>(record);
    case ElemPolyline: {
      if (!record.payload) return FilterOk;
      const auto polyline = LoadAs<PolylinePayload>(record.payload);
      if (polyline.vertexCount < 2) return FilterOk;
      if (polyline.curved != 0) return FilterUnsupported;
      return polyline.vertices ? DrawPayload<PolylinePayload>(record) : FilterOk;
    }
    case ElemLine:
      return DrawPayload<LinePayload>(record);
    case ElemCircle:
      return DrawPayload<CirclePayload>(record, false);
    case ElemArc:
      return DrawPayload<ArcPayload>(record);
    case ElemSolid:
      return DrawPayload<SolidPayload>(record);
    case ElemText:
      return WriteText(record);
    case ElemEllipseArc:
      return DrawPayload<EllipseArcPayload>(record);
    case ElemFilledPolygon: {
      if (!record.payload) return FilterOk;
      const auto polygon = LoadAs<FilledPolygonPayload>(record.payload);
      const int32_t contours = polygon.vertexCount < 3 ? 0 : ValidContours(polygon);
      return contours > 0 ? DrawPayload<FilledPolygonPayload>(record, contours) : FilterOk;
    }
    default:
      return FilterUnsupported;
  }
}

template <class Payload, class... Rest>
uint32_t CPDFWriteFile::DrawPayload(const ElementRecord &record, Rest... rest) {
  if (record.payload && BeginElement(record)) content_.Draw(LoadAs<Payload>(record.payload), rest...);
  return FilterOk;
}

// Text of no font that is known shows nothing.
uint32_t CPDFWriteFile::WriteText(const ElementRecord &record) {
  if (!record.payload || !BeginElement(record)) return FilterOk;
  const auto text = LoadAs<TextPayload>(record.payload);
  FontOut *const font = fonts_.FindFont(FieldText(record.styleName));
  const std::u16string_view characters = NameText(text.text);
  if (!font || characters.empty()) return FilterOk;
  font->MarkGlyphs(characters);
  content_.Draw(text, *font);
  return FilterOk;
}

// False when the element is to be dropped without a word: there are no layers, or the page has ended.
bool CPDFWriteFile::BeginElement(const ElementRecord &record) {
  if (layers_.empty() || pageEnded_ || !started_) return false;
  CutRasterShort();
  if (contentStart_ == 0) OpenContent();
  content_.Select(record);
  return true;
}

void CPDFWriteFile::OpenContent() {
  BeginReserved(contentsObject_).Text("<<\r/Length ");
  contentLengthObject_ = ReserveHere();
  out_.Reference(contentLengthObject_).Text("/Filter /FlateDecode\r>>\rstream\r\n");
  contentStart_ = out_.Position();
  contentCompressor_ = std::make_unique<CZVFlate>(*this, 0);
  out_.SetCodec(contentCompressor_.get());
  content_.Begin();
}

void CPDFWriteFile::CloseContent() {
  content_.End();
  out_.SetCodec(nullptr);
  if (contentCompressor_) contentCompressor_->flush();
  contentCompressor_.reset();
  const int64_t length = out_.Position() - contentStart_;
  out_.Text("\nendstream\rendobj\r");
  WriteLength(contentLengthObject_, std::to_string(length) + "\r");
}

// The length counts q, LF and Q; the LF behind belongs to the keyword.
void CPDFWriteFile::WriteEmptyContent() {
  BeginReserved(contentsObject_).Text("<<\r/Length ");
  contentLengthObject_ = ReserveHere();
  out_.Reference(contentLengthObject_).Text("\r>>\rstream\r\nq\nQ\nendstream\rendobj\r");
  WriteLength(contentLengthObject_, "3 ");
}

uint32_t CPDFWriteFile::EndPage() {
  if (pageEnded_ || !started_) return FilterOk;
  pageEnded_ = true;
  CutRasterShort();
  if (contentStart_ != 0)
    CloseContent();
  else if (!placements_.waiting().empty())
    WriteImagesContent();
  else
    WriteEmptyContent();
  return FilterOk;
}

uint32_t CPDFWriteFile::WriteProperty(const ElementRecord &record) {
  if (!record.payload) return FilterOk;
  const auto property = LoadAs<NamedPropertyPayload>(record.payload);
  if (!EqualsIgnoringCase(property.name, u"COORDSYS")) return FilterUnsupported;
  std::array<uint8_t, KAPDF_COORDSYS_BYTES> block;
  if (property.type != kPropertyBinary || !DecodeHex(NameText(property.value), block)) return FilterConsumed;
  return WriteCoordinateSystem(block);
}

// Belongs into the page's dictionary, so it can be taken only while that is open.
uint32_t CPDFWriteFile::WriteCoordinateSystem(std::span<const uint8_t> bytes) {
  if (!pageDictionaryOpen_ || CodecOpen()) return FilterConsumed;
  const auto block = LoadAs<CoordinateSystemBlock>(bytes.data());
  if (options_.geoTiff == 0 || TellsNothing(block)) return FilterOk;
  out_.Drain();
  WriteGeoreference(*this, block, {page_.scale, page_.originX, page_.originY});
  return FilterOk;
}

}  // namespace kapdf
