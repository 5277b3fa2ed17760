// The input is read as a series of a host's calls: records of all kinds in any section with any values. What was
// written in good order must open again, and what is read from it must hold.
#include <string>
#include <vector>

#include "support/host.h"
#include "support/input.h"
#include "support/temp_file.h"

namespace kapdf {
namespace {

using fuzz::Input;

constexpr int kCallsPerInput = 2000;
constexpr uint32_t kKinds[] = {ElemLine,
                               ElemPolyline,
                               ElemFilledPolygon,
                               ElemCircle,
                               ElemArc,
                               ElemEllipseArc,
                               ElemSolid,
                               ElemPoint,
                               ElemText,
                               ElemComposite,
                               ElemNamedProperty,
                               ElemNone,
                               ElemRasterRows,
                               ElemFontDef,
                               ElemRasterHeader,
                               ElemRasterPlacement,
                               ElemLineTypeDef,
                               ElemLayerDef,
                               25,
                               99};

// A host's record with everything that it points to.
struct HostRecord {
  ElementRecord record{};
  std::vector<double> reals;
  std::vector<uint32_t> starts;
  std::u16string name, other;
  std::vector<uint8_t> payload;

  template <class Payload>
  void Hold(const Payload &value) {
    payload.resize(sizeof value);
    std::memcpy(payload.data(), &value, sizeof value);
  }
};

void TakeReals(HostRecord &host, Input &in, size_t count) {
  for (size_t i = 0; i < count; ++i) host.reals.push_back(in.Real());
}

// Payloads that are nothing but doubles.
void TakePlain(HostRecord &host, Input &in, size_t count) {
  TakeReals(host, in, count);
  host.payload.resize(count * sizeof(double));
  std::memcpy(host.payload.data(), host.reals.data(), host.payload.size());
}

void TakePolyline(HostRecord &host, Input &in) {
  PolylinePayload line{};
  line.width = in.Real();
  line.vertexCount = static_cast<int32_t>(in.Below(9)) - 1;
  line.extraPerVertex = in.Below(2);
  line.curved = in.Below(15) == 15;
  if (line.vertexCount > 0) TakeReals(host, in, static_cast<size_t>(line.vertexCount) * (line.extraPerVertex + 2));
  line.vertices = host.reals.data();
  host.Hold(line);
}

// The table has as many places as it says; what stands in them is anything.
void TakePolygon(HostRecord &host, Input &in) {
  FilledPolygonPayload area{};
  area.width = in.Real();
  area.opacity = in.Real();
  area.strokeToo = in.Below(1);
  area.contourCount = static_cast<int32_t>(in.Below(4)) - 1;
  area.vertexCount = static_cast<int32_t>(in.Below(13)) - 1;
  const bool orderly = in.Below(3) != 0;
  for (int32_t i = 0; i <= area.contourCount; ++i) {
    host.starts.push_back(orderly ? static_cast<uint32_t>(area.vertexCount * i / std::max(area.contourCount, 1))
                                  : in.Take<uint32_t>());
  }
  if (area.vertexCount > 0) TakeReals(host, in, 2 * static_cast<size_t>(area.vertexCount));
  area.vertices = host.reals.data();
  area.contourStarts = host.starts.data();
  host.Hold(area);
}

void TakePoint(HostRecord &host, Input &in) {
  PointPayload point{};
  point.size = in.Real();
  point.x = in.Real();
  point.y = in.Real();
  point.pointStyle = in.Below(3);
  host.Hold(point);
}

void TakeLayer(HostRecord &host, Input &in) {
  LayerDefPayload layer{};
  layer.name = in.Below(15) ? host.name.data() : nullptr;
  layer.lineType = host.other.data();
  layer.color = in.Take<uint32_t>();
  layer.width = in.Real();
  layer.layerOff = in.Below(1);
  host.Hold(layer);
}

void TakeLineType(HostRecord &host, Input &in) {
  LineTypeDefPayload type{};
  type.name = in.Below(15) ? host.name.data() : nullptr;
  type.segmentCount = in.Below(20);
  for (LineTypeSegment &segment : type.segments) segment.length = in.Real();
  host.Hold(type);
}

void TakeProperty(HostRecord &host, Input &in) {
  if (in.Below(1)) host.name = u"CoordSys";
  if (in.Below(1)) host.other.assign(2 * KAPDF_COORDSYS_BYTES, u'0' + static_cast<char16_t>(in.Below(10)));
  host.Hold(NamedPropertyPayload{host.name.data(), in.Below(1) ? 32u : in.Take<uint32_t>(), host.other.data()});
}

void TakeText(HostRecord &host, Input &in) {
  TextPayload text{};
  text.x = in.Real();
  text.y = in.Real();
  text.angle = in.Real();
  text.height = in.Real();
  text.widthFactor = in.Real();
  text.text = host.other.data();
  text.fontName = host.name.data();
  host.Hold(text);
}

// Most texts that are anything show by it, since both take the name "A".
void TakeFont(HostRecord &host, Input &in) {
  FontDefPayload font{};
  font.styleName = host.name.data();
  font.faceName = in.Below(7) ? host.other.data() : nullptr;
  font.charsetAndCodePage = in.Take<uint32_t>();
  host.Hold(font);
}

void TakePayload(HostRecord &host, Input &in) {
  switch (host.record.kind) {
    case ElemLine:
      TakePlain(host, in, 5);
      break;
    case ElemCircle:
      TakePlain(host, in, 4);
      break;
    case ElemArc:
      TakePlain(host, in, 6);
      break;
    case ElemEllipseArc:
      TakePlain(host, in, 8);
      break;
    case ElemSolid:
      TakePlain(host, in, 8);
      break;
    case ElemPolyline:
      TakePolyline(host, in);
      break;
    case ElemFilledPolygon:
      TakePolygon(host, in);
      break;
    case ElemPoint:
      TakePoint(host, in);
      break;
    case ElemText:
      TakeText(host, in);
      break;
    case ElemFontDef:
      TakeFont(host, in);
      break;
    case ElemNamedProperty:
      TakeProperty(host, in);
      break;
    case ElemLayerDef:
      TakeLayer(host, in);
      break;
    case ElemLineTypeDef:
      TakeLineType(host, in);
      break;
    default:
      return;
  }
  host.record.payload = host.payload.data();
  host.record.payloadBytes = static_cast<uint32_t>(host.payload.size());
}

void SendRecord(CPDFFilter &filter, Input &in, uint32_t kind) {
  HostRecord host;
  host.record.kind = kind;
  host.record.color = in.Below(1) ? in.Take<uint32_t>() : in.Below(255);
  host.name = in.Below(1) ? u"A" : in.Text();
  host.other = in.Text();
  if (in.Below(1)) host.name.copy(host.record.layerName, 255);
  if (in.Below(3) == 0) host.name.copy(host.record.styleName, 255);
  TakePayload(host, in);
  filter.WriteElement(&host.record);
}

// Sections in any order and number, most of them in the usual one.
void SendDrawing(CPDFFilter &filter, Input &in) {
  for (int call = 0; call < kCallsPerInput && !in.empty(); ++call) {
    const uint32_t choice = in.Below(31);
    if (choice == 0)
      filter.BeginSection(in.Take<int8_t>(), 0, 0);
    else if (choice == 1)
      filter.EndSection(in.Take<int8_t>(), 0, 0);
    else
      SendRecord(filter, in, kKinds[in.Below(std::size(kKinds) - 1)]);
  }
}

void SendTables(CPDFFilter &filter, Input &in) {
  filter.BeginSection(KAPDF_SECTION_TABLES, 0, 0);
  for (uint32_t left = in.Below(3); left > 0; --left) SendRecord(filter, in, ElemLayerDef);
  SendRecord(filter, in, ElemLineTypeDef);
  SendRecord(filter, in, ElemFontDef);
  filter.EndSection(KAPDF_SECTION_TABLES, 0, 0);
}

void RunOne(Input in) {
  const test::TempFile file("");
  const std::u16string path = file.path16();
  FileInfo info{};
  info.pageIndex = -1;
  info.pageCount = 1;
  info.xmin = in.Real();
  info.ymin = in.Real();
  info.xmax = in.Real();
  info.ymax = in.Real();
  const std::string ascii = in.Below(1) ? in.Ascii() : "";
  const std::u16string options(ascii.begin(), ascii.end());
  const bool pageClosed = in.Below(7) != 0;
  const bool closed = in.Below(15) != 0;
  {
    const fuzz::FilterPointer filter(new CPDFFilter(fuzz::kSettingsPath, true));
    if (filter->OpenWrite(path.c_str(), &info, nullptr, options.c_str()) != FilterOk) return;
    SendTables(*filter, in);
    filter->BeginSection(KAPDF_SECTION_PAGE, 0, 0);
    if (pageClosed) filter->EndSection(KAPDF_SECTION_PAGE, 0, 0);
    filter->BeginSection(KAPDF_SECTION_DRAWING, 0, 0);
    SendDrawing(*filter, in);
    filter->EndSection(KAPDF_SECTION_DRAWING, 0, 0);
    if (in.Below(1)) SendRecord(*filter, in, ElemEndOfPage);
    if (closed) filter->Close();
  }
  const uint32_t result = fuzz::ImportPages(path.c_str());
  fuzz::Require(result == FilterOk || !pageClosed || !closed, "what was written opens");
}

}  // namespace
}  // namespace kapdf

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  kapdf::RunOne(kapdf::fuzz::Input({data, size}));
  return 0;
}
