#include "support/host.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "base/bytes.h"
#include "support/temp_file.h"

namespace kapdf::fuzz {
namespace {

// Keeps the reads below from being optimised away.
volatile uint64_t seen;

template <class Payload>
Payload PayloadOf(const ElementRecord &record, size_t extra = 0) {
  Require(record.payload != nullptr, "no payload");
  Require(record.payloadBytes == sizeof(Payload) + extra, "payload size");
  return LoadAs<Payload>(record.payload);
}

void RequireFinite(const double *values, size_t count) {
  for (size_t i = 0; i < count; ++i) Require(std::isfinite(values[i]), "a value that is not finite");
}

// Payloads that begin with numbers and point to nothing.
struct Shape {
  uint32_t kind;
  size_t bytes, reals;
};
constexpr Shape kShapes[] = {{ElemLine, sizeof(LinePayload), 5},
                             {ElemCircle, sizeof(CirclePayload), 4},
                             {ElemArc, sizeof(ArcPayload), 6},
                             {ElemEllipseArc, sizeof(EllipseArcPayload), 8},
                             {ElemRasterPlacement, sizeof(RasterPlacementPayload), 6}};

void LookAtShape(const ElementRecord &record) {
  for (const Shape &shape : kShapes) {
    if (shape.kind != record.kind) continue;
    Require(record.payload != nullptr && record.payloadBytes == shape.bytes, "payload size");
    double values[8];
    std::memcpy(values, record.payload, shape.reals * sizeof(double));
    RequireFinite(values, shape.reals);
  }
}

void RequireText(const char16_t *text, size_t most) {
  Require(text != nullptr, "no text");
  size_t length = 0;
  while (length < most && text[length]) ++length;
  Require(length < most, "a text without its zero");
}

void LookAtPolyline(const ElementRecord &record) {
  Require(record.payloadBytes >= sizeof(PolylinePayload), "payload size");
  const auto line = LoadAs<PolylinePayload>(record.payload);
  Require(line.vertexCount >= 1 && line.extraPerVertex == 0 && line.curved == 0, "polyline");
  const auto vertices = static_cast<size_t>(line.vertexCount);
  PayloadOf<PolylinePayload>(record, 16 * vertices);
  RequireFinite(&line.width, 1);
  RequireFinite(line.vertices, 2 * vertices);
}

void LookAtPolygon(const ElementRecord &record) {
  Require(record.payloadBytes >= sizeof(FilledPolygonPayload), "payload size");
  const auto area = LoadAs<FilledPolygonPayload>(record.payload);
  Require(area.vertexCount >= 2 && area.contourCount >= 1, "polygon");  // a contour may be a point and its end
  const auto vertices = static_cast<size_t>(area.vertexCount), contours = static_cast<size_t>(area.contourCount);
  PayloadOf<FilledPolygonPayload>(record, 16 * vertices + 4 * (contours + 1));
  const double scalars[] = {area.width, area.opacity};
  RequireFinite(scalars, 2);
  RequireFinite(area.vertices, 2 * vertices);
  uint32_t before = LoadAs<uint32_t>(area.contourStarts);
  Require(before == 0, "first contour");
  for (size_t i = 1; i <= contours; ++i) {
    const auto start = LoadAs<uint32_t>(area.contourStarts + i);
    Require(start > before, "contours ascend");
    before = start;
  }
  Require(before == vertices, "end of the contours");
}

void LookAtLineType(const ElementRecord &record) {
  const auto type = PayloadOf<LineTypeDefPayload>(record);
  RequireText(type.name, 256);
  for (const LineTypeSegment &segment : type.segments) {
    const double length = segment.length;
    RequireFinite(&length, 1);
  }
}

void LookAtLayer(const ElementRecord &record) {
  const auto layer = PayloadOf<LayerDefPayload>(record);
  RequireText(layer.name, 256);
  RequireText(layer.lineType, 256);
}

void LookAt(const ElementRecord &record) {
  RequireText(record.layerName, 256);
  RequireText(record.styleName, 256);
  size_t bytes = record.payloadBytes;
  if (record.kind == ElemFontDef && (bytes & KAPDF_FONT_MAPPED))
    bytes = (bytes & ~size_t{KAPDF_FONT_MAPPED}) + KAPDF_FONT_MAPPING_BYTES;
  for (size_t i = 0; i < bytes; ++i) seen = seen + static_cast<const uint8_t *>(record.payload)[i];
  if (record.kind == ElemLayerDef) LookAtLayer(record);
  if (record.kind == ElemLineTypeDef) LookAtLineType(record);
  if (record.kind == ElemPolyline) LookAtPolyline(record);
  if (record.kind == ElemFilledPolygon) LookAtPolygon(record);
  LookAtShape(record);
}

struct Sink {
  static uint32_t Report(ProgressObject *, double fraction) {
    Require(fraction >= 0.0 && fraction <= 1.0, "fraction");
    return 0;
  }
  ProgressTable table{nullptr, nullptr, Report, nullptr, nullptr, nullptr, nullptr};
  ProgressObject object{&table};
};

constexpr uint32_t kMostRows = 4000;
constexpr size_t kMostRowBytes = size_t{64} << 20;

// What is left to ask for on a page.
struct RowsLeft {
  uint32_t rows = kMostRows, rasters = 200;
  size_t bytes = kMostRowBytes;
};

void LookAtRow(const ElementRecord &record, const RasterHeaderPayload &header) {
  const auto *row = static_cast<const uint8_t *>(record.payload);
  for (size_t i = 0; i < record.payloadBytes; ++i) seen = seen + row[i];
  if (header.pixelType != 0) return Require(record.payloadBytes >= size_t{4} * header.width + 12, "bytes of a row");
  const auto count = LoadAs<uint32_t>(row);
  Require(record.payloadBytes == size_t{8} * count + 4, "bytes of a run list");
  uint32_t next = 0;
  for (uint32_t i = 0; i < count; ++i) {
    const auto first = LoadAs<uint32_t>(row + 4 + 8 * i), last = LoadAs<uint32_t>(row + 8 + 8 * i);
    Require(first >= next && first <= last && last < header.width, "runs");
    next = last + 1;
  }
}

// The rows of a raster, which is asked for by its name or by none.
void TakeRaster(CPDFFilter &filter, ElementRecord record, RowsLeft &left) {
  if (--left.rasters % 2) record.styleName[0] = 0;
  record.kind = ElemRasterHeader;
  uint32_t result = filter.ReadElement(&record);
  Require(result == FilterOk || result == FilterNotAvailable, "result of a header");
  if (result != FilterOk) return;
  RequireText(record.styleName, 256);
  const auto header = PayloadOf<RasterHeaderPayload>(record);
  Require(header.width > 0 && header.height > 0 && header.dpi > 0 && header.depthHint <= 1, "header");
  Require(header.pixelType <= 5 && header.pixelType != 3, "pixel type");
  for (size_t i = 0; header.palette && i < 1028; ++i) seen = seen + static_cast<const uint8_t *>(header.palette)[i];
  uint32_t row = 0;
  for (; left.rows > 0 && left.bytes > 0; ++row, --left.rows) {
    record.kind = ElemRasterRows;
    result = filter.ReadElement(&record);
    if (result != FilterOk) break;
    LookAtRow(record, header);
    left.bytes -= std::min<size_t>(left.bytes, size_t{4} * header.width);
  }
  Require(result == FilterOk || (result == FilterNoMoreRows && row == header.height), "end of the rows");
}

void TakePage(CPDFFilter &filter) {
  Sink sink;
  RowsLeft left;
  for (;;) {
    ElementRecord record{};
    record.progress = &sink.object;
    const uint32_t result = filter.ReadElement(&record);
    if (result == FilterEndOfElements) break;
    Require(result == FilterOk, "result of ReadElement");
    for (const ElementRecord *one = &record; one; one = one->next) LookAt(*one);
    if (record.kind == ElemRasterPlacement && left.rasters > 0) TakeRaster(filter, record, left);
  }
  ElementRecord record{};
  Require(filter.ReadElement(&record) == FilterEndOfElements, "the end stays");
}

}  // namespace

void Require(bool condition, const char *text) {
  if (condition) return;
  std::fprintf(stderr, "a promise is broken: %s\n", text);
  std::abort();
}

uint32_t ImportPages(const char16_t *path, int most, const char16_t *options) {
  const FilterPointer filter(new CPDFFilter(kSettingsPath));
  FileInfo info{};
  const uint32_t first = filter->OpenRead(path, &info, nullptr, options, nullptr, nullptr);
  uint32_t result = first;
  for (;;) {
    if (result == FilterOk) TakePage(*filter);
    if (++info.pageIndex >= info.pageCount || info.pageIndex >= most) break;
    result = filter->OpenRead(path, &info, nullptr, options, nullptr, nullptr);
  }
  return first;
}

uint32_t ImportBytes(std::string_view bytes, const char16_t *options) {
  const test::TempFile file(bytes);
  const size_t pages = (size_t{256} << 10) / std::max<size_t>(bytes.size(), 1);
  return ImportPages(file.path16().c_str(), static_cast<int>(std::clamp<size_t>(pages, 1, 20)), options);
}

}  // namespace kapdf::fuzz
