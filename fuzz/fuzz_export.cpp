// The input is read as a series of a host's calls: records of all kinds in any section with any values. What was
// written in good order must open again, and what is read from it must hold.
#include <string>
#include <string_view>
#include <vector>

#include "support/host.h"
#include "support/input.h"
#include "support/temp_file.h"

namespace kapdf {
namespace {

using fuzz::Input;

constexpr int kCallsPerInput = 2000;

// What a host sends, and the fields of its payload in their order: r a length, u a small number, c any number, n the
// name and m the other text (or null), o the other text, s a segment of a line type, . four bytes of zeros.
constexpr std::pair<uint32_t, std::string_view> kKinds[] = {{ElemLine, "rrrrr"},
                                                            {ElemPolyline, ""},
                                                            {ElemFilledPolygon, ""},
                                                            {ElemCircle, "rrrr"},
                                                            {ElemArc, "rrrrrr"},
                                                            {ElemEllipseArc, "rrrrrrrr"},
                                                            {ElemSolid, "rrrrrrrr"},
                                                            {ElemPoint, "rrr..u"},
                                                            {ElemText, "rr......rrruon"},
                                                            {ElemComposite, ""},
                                                            {ElemNamedProperty, "nuo"},
                                                            {ElemNone, ""},
                                                            {ElemRasterRows, ""},
                                                            {ElemFontDef, "nm......rrc."},
                                                            {ElemRasterHeader, ""},
                                                            {ElemRasterPlacement, ""},
                                                            {ElemLineTypeDef, "nussssssssssssssss.."},
                                                            {ElemLayerDef, "nocruu.."},
                                                            {25, ""},
                                                            {99, ""}};

// A host's record with everything that it points to.
struct HostRecord {
  ElementRecord record{};
  std::vector<double> reals;
  std::vector<uint32_t> starts;
  std::u16string name, other;
  std::vector<uint8_t> payload;

  template <class Value>
  void Add(const Value &value, size_t zeros = 0) {
    const size_t at = payload.size();
    payload.resize(at + sizeof value + zeros);
    std::memcpy(payload.data() + at, &value, sizeof value);
  }
};

void TakeReals(HostRecord &host, Input &in, size_t count) {
  for (size_t i = 0; i < count; ++i) host.reals.push_back(in.Real());
}

void TakePolyline(HostRecord &host, Input &in) {
  PolylinePayload line{};
  line.width = in.Real();
  line.vertexCount = static_cast<int32_t>(in.Below(9)) - 1;
  line.extraPerVertex = in.Below(2);
  line.curved = in.Below(15) == 15;
  if (line.vertexCount > 0) TakeReals(host, in, static_cast<size_t>(line.vertexCount) * (line.extraPerVertex + 2));
  line.vertices = host.reals.data();
  host.Add(line);
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
  host.Add(area);
}

void TakeField(HostRecord &host, Input &in, char field) {
  constexpr char16_t *kNull = nullptr;
  if (field == 'r' || field == 's') host.Add(in.Real(), field == 's' ? 52 : 0);
  if (field == 'u') host.Add(in.Below(32));
  if (field == 'c') host.Add(in.Take<uint32_t>());
  if (field == '.') host.Add(0);
  if (field == 'n') host.Add(in.Below(15) ? host.name.data() : kNull);
  if (field == 'm' || field == 'o') host.Add(field == 'o' || in.Below(7) ? host.other.data() : kNull);
}

void SendRecord(CPDFFilter &filter, Input &in, uint32_t kind) {
  HostRecord host;
  host.record.kind = kind;
  host.record.color = in.Below(1) ? in.Take<uint32_t>() : in.Below(255);
  host.name = in.Below(1) ? u"A" : in.Text();
  host.other = in.Text();
  if (in.Below(1)) host.name.copy(host.record.layerName, 255);
  if (in.Below(3) == 0) host.name.copy(host.record.styleName, 255);
  if (kind == ElemNamedProperty && in.Below(1)) host.name = u"CoordSys";
  if (kind == ElemNamedProperty && in.Below(1)) host.other.assign(2 * KAPDF_COORDSYS_BYTES, u'0' + in.Below(10));
  if (kind == ElemPolyline) TakePolyline(host, in);
  if (kind == ElemFilledPolygon) TakePolygon(host, in);
  for (const auto &[known, fields] : kKinds) {
    if (known != kind) continue;
    for (const char field : fields) TakeField(host, in, field);
  }
  host.record.payload = host.payload.empty() ? nullptr : host.payload.data();
  host.record.payloadBytes = static_cast<uint32_t>(host.payload.size());
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
      SendRecord(filter, in, kKinds[in.Below(std::size(kKinds) - 1)].first);
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
  const bool pageClosed = in.Below(7) != 0, closed = in.Below(15) != 0;
  {
    const fuzz::FilterPointer filter(new CPDFFilter(fuzz::kSettingsPath));
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
