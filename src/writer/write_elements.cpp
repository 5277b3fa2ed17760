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

struct CPDFWriteFile::ElementKind {
  uint32_t kind;
  Where where;
  uint32_t (CPDFWriteFile::*write)(ElementRecord &record, const Sections &sections);
};

const CPDFWriteFile::ElementKind CPDFWriteFile::kElementKinds[] = {
    {ElemLine, Where::kPlainLines, &CPDFWriteFile::WritePlain<LinePayload>},
    {ElemPolyline, Where::kPlainLines, &CPDFWriteFile::WritePolyline},
    {ElemText, Where::kPlainLines, &CPDFWriteFile::WriteText},
    {ElemFilledPolygon, Where::kPlainLines, &CPDFWriteFile::WriteFilledPolygon},
    {ElemArc, Where::kPlainLines, &CPDFWriteFile::WritePlain<ArcPayload>},
    {ElemCircle, Where::kPlainLines, &CPDFWriteFile::WriteCircle},
    {ElemEllipseArc, Where::kPlainLines, &CPDFWriteFile::WritePlain<EllipseArcPayload>},
    {ElemPoint, Where::kPlainLines, &CPDFWriteFile::WritePoint},
    {ElemSolid, Where::kPlainLines, &CPDFWriteFile::WritePlain<SolidPayload>},
    {ElemComposite, Where::kDrawing, &CPDFWriteFile::WriteComposite},
    {ElemRasterPlacement, Where::kDrawing, &CPDFWriteFile::PlaceRaster},
    {ElemNamedProperty, Where::kDrawing, &CPDFWriteFile::WriteProperty},
    {ElemRasterRows, Where::kAnywhere, &CPDFWriteFile::WriteRow},
    {ElemRasterHeader, Where::kAnywhere, &CPDFWriteFile::OpenRaster},
    {ElemEndOfPage, Where::kAnywhere, &CPDFWriteFile::EndPage},
    {ElemLayerDef, Where::kTables, &CPDFWriteFile::DefineLayer},
    {ElemLineTypeDef, Where::kTables, &CPDFWriteFile::DefineLineType},
    {ElemFontDef, Where::kTables, &CPDFWriteFile::DefineFont},
};

uint32_t CPDFWriteFile::WriteElement(ElementRecord &record, const Sections &sections) {
  if (record.kind == ElemNone) return FilterOk;
  const auto *kind = std::ranges::find(kElementKinds, record.kind, &ElementKind::kind);
  if (kind == std::end(kElementKinds)) kind = nullptr;
  if (kind && kind->where == Where::kAnywhere) return (this->*kind->write)(record, sections);
  return WriteInSection(kind, record, sections);
}

// `kind` is null for one that is unknown.
uint32_t CPDFWriteFile::WriteInSection(const ElementKind *kind, ElementRecord &record, const Sections &sections) {
  if (sections.InTables()) {
    if (kind && kind->where == Where::kTables && record.payload) (this->*kind->write)(record, sections);
    return FilterConsumed;
  }
  if (!sections.InDrawing()) return FilterOk;
  const bool drawn = kind && (kind->where == Where::kDrawing ||
                              (kind->where == Where::kPlainLines && lineTypes_.IsPlain(FieldText(record.styleName))));
  return drawn ? (this->*kind->write)(record, sections) : FilterUnsupported;
}

uint32_t CPDFWriteFile::DefineLayer(ElementRecord &record, const Sections &) {
  layers_.Add(LoadAs<LayerDefPayload>(record.payload));
  return FilterConsumed;
}

uint32_t CPDFWriteFile::DefineLineType(ElementRecord &record, const Sections &) {
  lineTypes_.Add(LoadAs<LineTypeDefPayload>(record.payload));
  return FilterConsumed;
}

uint32_t CPDFWriteFile::DefineFont(ElementRecord &record, const Sections &) {
  fonts_.DefineFont(LoadAs<FontDefPayload>(record.payload));
  return FilterConsumed;
}

// False when the element is to be dropped without a word: there are no layers, or the page has ended.
bool CPDFWriteFile::BeginElement(const ElementRecord &record) {
  if (layers_.empty() || page_.ended() || state_ == State::kNew) return false;
  images_.CutShort();
  page_.Select(record);
  return true;
}

template <class Payload, class... Rest>
uint32_t CPDFWriteFile::Draw(const ElementRecord &record, Rest... rest) {
  if (record.payload && BeginElement(record)) page_.content().Draw(LoadAs<Payload>(record.payload), rest...);
  return FilterOk;
}

template <class Payload>
uint32_t CPDFWriteFile::WritePlain(ElementRecord &record, const Sections &) {
  return Draw<Payload>(record);
}

// What the host cannot mean, or should send otherwise, is decided before anything is written.
uint32_t CPDFWriteFile::WritePoint(ElementRecord &record, const Sections &) {
  if (record.payload && LoadAs<PointPayload>(record.payload).pointStyle == 1) return FilterUnsupported;
  return Draw<PointPayload>(record);
}

uint32_t CPDFWriteFile::WritePolyline(ElementRecord &record, const Sections &) {
  if (!record.payload) return FilterOk;
  const auto polyline = LoadAs<PolylinePayload>(record.payload);
  if (polyline.vertexCount < 2) return FilterOk;
  if (polyline.curved != 0) return FilterUnsupported;
  return polyline.vertices ? Draw<PolylinePayload>(record) : FilterOk;
}

uint32_t CPDFWriteFile::WriteCircle(ElementRecord &record, const Sections &) {
  return Draw<CirclePayload>(record, false);
}

uint32_t CPDFWriteFile::WriteFilledPolygon(ElementRecord &record, const Sections &) {
  if (!record.payload) return FilterOk;
  const auto polygon = LoadAs<FilledPolygonPayload>(record.payload);
  const int32_t contours = polygon.vertexCount < 3 ? 0 : ValidContours(polygon);
  return contours > 0 ? Draw<FilledPolygonPayload>(record, contours) : FilterOk;
}

uint32_t CPDFWriteFile::WriteComposite(ElementRecord &record, const Sections &) {
  BeginElement(record);
  record.flags |= kCompositeSeen;
  return FilterUnsupported;
}

// Text of no font that is known shows nothing.
uint32_t CPDFWriteFile::WriteText(ElementRecord &record, const Sections &) {
  if (!record.payload || !BeginElement(record)) return FilterOk;
  const auto text = LoadAs<TextPayload>(record.payload);
  FontOut *const font = fonts_.FindFont(FieldText(record.styleName));
  const std::u16string_view characters = NameText(text.text);
  if (!font || characters.empty()) return FilterOk;
  font->MarkGlyphs(characters);
  page_.content().Draw(text, *font);
  return FilterOk;
}

// A raster belongs ahead of the first drawn element. Where content is open already its compressor goes away unfinished,
// and what follows of the content stands in the file as plain text.
uint32_t CPDFWriteFile::OpenRaster(ElementRecord &record, const Sections &) {
  if (state_ != State::kStarted) return FilterNotOpen;
  std::optional<ImagesOut::Plan> plan = images_.PlanOf(record);
  if (!plan) return FilterBadRaster;
  page_.StopCompressing();
  return images_.Open(*std::move(plan)) ? FilterOk : FilterBadRaster;
}

// A stop does not end the call: what the section makes of the record takes its place.
uint32_t CPDFWriteFile::WriteRow(ElementRecord &record, const Sections &sections) {
  const uint32_t result = images_.AddRow(record);
  ProgressObject *progress = record.progress;
  if (!progress || progress->table->Report(progress, images_.fraction()) == 0) return result;
  if (sections.InTables()) return FilterConsumed;
  return sections.InDrawing() ? FilterUnsupported : FilterCancelled;
}

// Only these two sections know placements. In the first the image is drawn at once, in the second with the end of a
// page that has nothing else.
uint32_t CPDFWriteFile::PlaceRaster(ElementRecord &record, const Sections &sections) {
  const int32_t section = sections.ForPlacements();
  if (section != KAPDF_SECTION_DRAWING && section != KAPDF_SECTION_RASTERS) return FilterNotAvailable;
  if (!record.payload || page_.ended() || state_ == State::kNew) return FilterConsumed;
  const auto place = LoadAs<RasterPlacementPayload>(record.payload);
  PlacementTable &placements = images_.placements();
  if (section == KAPDF_SECTION_RASTERS) {
    placements.Add(record.imageKey, place, page_.content().ColorOf(record));
    return FilterConsumed;
  }
  const size_t image = placements.Find(record.imageKey);
  if (BeginElement(record)) page_.content().Draw(place, placements.Image(image), image);
  return FilterConsumed;
}

uint32_t CPDFWriteFile::WriteProperty(ElementRecord &record, const Sections &) {
  if (!record.payload) return FilterOk;
  const auto property = LoadAs<NamedPropertyPayload>(record.payload);
  if (!EqualsIgnoringCase(property.name, u"COORDSYS")) return FilterUnsupported;
  std::array<uint8_t, KAPDF_COORDSYS_BYTES> block;
  if (property.type != kPropertyBinary || !DecodeHex(NameText(property.value), block)) return FilterConsumed;
  return WriteCoordinateSystem(block);
}

// Belongs into the page's dictionary, so it can be taken only while that is open.
uint32_t CPDFWriteFile::WriteCoordinateSystem(std::span<const uint8_t> bytes) {
  if (!page_.dictionaryOpen() || CodecOpen()) return FilterConsumed;
  const auto block = LoadAs<CoordinateSystemBlock>(bytes.data());
  if (options_.geoTiff == 0 || TellsNothing(block)) return FilterOk;
  objects_.text().Drain();
  WriteGeoreference(*this, block, {page_.layout().scale, page_.layout().originX, page_.layout().originY});
  return FilterOk;
}

uint32_t CPDFWriteFile::EndPage(ElementRecord &, const Sections &) {
  FinishPage();
  return FilterOk;
}

}  // namespace kapdf
