#include "jsonl/record_writer.h"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <span>

#include "jsonl/base64.h"
#include "system/utf.h"

namespace kapdf::tool {
namespace {

// Numbers above this lose digits in readers that know doubles only, so they go out as text.
constexpr uint64_t kLargestExactInteger = uint64_t{1} << 53;

class LineWriter {
 public:
  explicit LineWriter(std::string &out) : out_(out) {}

  void Key(const char *key) {
    out_ += first_ ? "{\"" : ",\"";
    out_ += key;
    out_ += "\":";
    first_ = false;
  }
  void Integer(uint64_t value) {
    char digits[24];
    out_.append(digits, std::to_chars(digits, std::end(digits), value).ptr);
  }
  void Signed(int64_t value) {
    char digits[24];
    out_.append(digits, std::to_chars(digits, std::end(digits), value).ptr);
  }
  void Real(double value) {
    finite_ = finite_ && std::isfinite(value);
    if (finite_) AppendNumber(out_, value);
  }
  void Text(std::u16string_view text) { AppendJsonText(out_, text); }
  void Raw(std::string_view text) { out_ += text; }

  // `stride` doubles for each vertex at `vertices`.
  void Vertices(const double *vertices, size_t first, size_t behind, size_t stride) {
    out_ += '[';
    for (size_t i = first; i < behind; ++i) {
      out_ += i == first ? "[" : ",[";
      for (size_t j = 0; j < stride; ++j) {
        if (j > 0) out_ += ',';
        Real(vertices[i * stride + j]);
      }
      out_ += ']';
    }
    out_ += ']';
  }
  bool finite() const { return finite_; }

 private:
  std::string &out_;
  bool first_ = true;
  bool finite_ = true;
};

void WriteField(LineWriter &line, const Field &field, const void *payload) {
  const bool always = field.need != Need::kOptional;
  switch (field.type) {
    case FieldType::kReal: {
      const auto value = ReadAt<double>(payload, field.offset);
      const bool isDefault = value == field.fallback && std::signbit(value) == std::signbit(field.fallback);
      if (!always && isDefault) return;
      line.Key(field.key);
      return line.Real(value);
    }
    case FieldType::kPoints: {
      double values[8];
      std::memcpy(values, static_cast<const char *>(payload) + field.offset, field.count * 2 * sizeof(double));
      line.Key(field.key);
      if (field.count > 1) return line.Vertices(values, 0, field.count, 2);
      line.Raw("[");
      line.Real(values[0]);
      line.Raw(",");
      line.Real(values[1]);
      return line.Raw("]");
    }
    case FieldType::kU32:
    case FieldType::kColor:
    case FieldType::kFlag: {
      const auto value = ReadAt<uint32_t>(payload, field.offset);
      if (!always && value == static_cast<uint32_t>(field.fallback)) return;
      line.Key(field.key);
      if (field.type == FieldType::kFlag && value <= 1) return line.Raw(value == 1 ? "true" : "false");
      return line.Integer(value);
    }
    case FieldType::kText: {
      const auto *text = ReadAt<const char16_t *>(payload, field.offset);
      if (text == nullptr && field.need != Need::kRequired) return;
      line.Key(field.key);
      return line.Text(text == nullptr ? std::u16string_view() : std::u16string_view(text));
    }
  }
}

const char *WriteVertices(LineWriter &line, const PolylinePayload &polyline) {
  if (polyline.vertexCount < 0) return "a negative count of vertices";
  if (polyline.vertexCount > 0 && polyline.vertices == nullptr) return "no vertices";
  if (polyline.extraPerVertex > 62) return "an impossible size of a vertex";
  if (polyline.vertexCount == 0 && polyline.extraPerVertex != 0) {
    line.Key("extraPerVertex");
    line.Integer(polyline.extraPerVertex);
  }
  line.Key("points");
  line.Vertices(polyline.vertices, 0, static_cast<size_t>(polyline.vertexCount), polyline.extraPerVertex + 2);
  return nullptr;
}

// Contours are written one array each when their starts are in order and cover all vertices.
bool IsRegular(const FilledPolygonPayload &polygon) {
  const auto count = static_cast<uint32_t>(polygon.contourCount);
  if (polygon.contourStarts == nullptr || count == 0 || polygon.contourStarts[0] != 0) return false;
  for (uint32_t i = 0; i < count; ++i) {
    if (polygon.contourStarts[i + 1] < polygon.contourStarts[i]) return false;
  }
  return polygon.contourStarts[count] == static_cast<uint32_t>(polygon.vertexCount);
}

const char *WriteContours(LineWriter &line, const FilledPolygonPayload &polygon) {
  if (polygon.vertexCount < 0 || polygon.contourCount < 0) return "a negative count";
  if (polygon.vertexCount > 0 && polygon.vertices == nullptr) return "no vertices";
  const auto count = static_cast<uint32_t>(polygon.contourCount);
  if (IsRegular(polygon)) {
    line.Key("contours");
    for (uint32_t i = 0; i < count; ++i) {
      line.Raw(i == 0 ? "[" : ",");
      line.Vertices(polygon.vertices, polygon.contourStarts[i], polygon.contourStarts[i + 1], 2);
    }
    line.Raw("]");
    return nullptr;
  }
  line.Key("points");
  line.Vertices(polygon.vertices, 0, static_cast<size_t>(polygon.vertexCount), 2);
  if (polygon.contourStarts == nullptr) return nullptr;
  line.Key("contourStarts");
  for (uint32_t i = 0; i <= count; ++i) {
    line.Raw(i == 0 ? "[" : ",");
    line.Integer(polygon.contourStarts[i]);
  }
  line.Raw("]");
  return nullptr;
}

void WriteSegments(LineWriter &line, const LineTypeDefPayload &lineType) {
  const uint32_t stored = std::min<uint32_t>(lineType.segmentCount, KAPDF_LINE_TYPE_SEGMENTS);
  line.Key("segments");
  line.Raw("[");
  for (uint32_t i = 0; i < stored; ++i) {
    if (i > 0) line.Raw(",");
    line.Real(ReadAt<double>(&lineType, offsetof(LineTypeDefPayload, segments) + i * sizeof(LineTypeSegment)));
  }
  line.Raw("]");
  if (stored != lineType.segmentCount) {
    line.Key("segmentCount");
    line.Integer(lineType.segmentCount);
  }
}

void WriteBytes(LineWriter &line, const char *key, std::span<const uint8_t> bytes) {
  std::string text;
  AppendBase64(text, bytes);
  line.Key(key);
  line.Raw("\"");
  line.Raw(text);
  line.Raw("\"");
}

void WriteFontRest(LineWriter &line, const ElementRecord &record, const FontDefPayload &font) {
  if (const uint32_t code = font.charsetAndCodePage & 0xFFFF; code != 0) {
    line.Key("styleCode");
    line.Integer(code);
  }
  if (const auto codePage = static_cast<int16_t>(font.charsetAndCodePage >> 16); codePage != 0) {
    line.Key("codePage");
    line.Signed(codePage);
  }
  const bool mapped = (record.payloadBytes & KAPDF_FONT_MAPPED) != 0;
  const size_t bytes = record.payloadBytes & ~KAPDF_FONT_MAPPED;
  if (bytes <= sizeof(FontDefPayload)) return;
  const auto *program = static_cast<const uint8_t *>(record.payload) + sizeof(FontDefPayload);
  const size_t size = bytes - sizeof(FontDefPayload);
  WriteBytes(line, "program", {program, size});
  if (mapped) WriteBytes(line, "mapping", {program + size, KAPDF_FONT_MAPPING_BYTES});
}

// What the table of fields does not tell.
const char *WriteRest(LineWriter &line, const ElementRecord &record) {
  switch (record.kind) {
    case ElemPolyline:
      return WriteVertices(line, ReadAt<PolylinePayload>(record.payload, 0));
    case ElemFilledPolygon:
      return WriteContours(line, ReadAt<FilledPolygonPayload>(record.payload, 0));
    case ElemLineTypeDef:
      WriteSegments(line, ReadAt<LineTypeDefPayload>(record.payload, 0));
      return nullptr;
    case ElemFontDef:
      WriteFontRest(line, record, ReadAt<FontDefPayload>(record.payload, 0));
      return nullptr;
    case ElemRasterHeader:
      if (const void *palette = ReadAt<RasterHeaderPayload>(record.payload, 0).palette; palette != nullptr) {
        WriteBytes(line, "palette", {static_cast<const uint8_t *>(palette), 1028});
      }
      return nullptr;
    case ElemRasterRows:
      if (record.payload != nullptr) {
        WriteBytes(line, "data", {static_cast<const uint8_t *>(record.payload), record.payloadBytes});
      }
      return nullptr;
    default:
      return nullptr;
  }
}

std::u16string_view NameIn(const char16_t (&name)[256]) {
  return {name, std::char_traits<char16_t>::find(name, 256, u'\0') != nullptr ? std::char_traits<char16_t>::length(name)
                                                                              : size_t{256}};
}

void WriteCommon(LineWriter &line, const ElementRecord &record, const Kind &kind) {
  line.Key("kind");
  line.Raw("\"");
  line.Raw(kind.word);
  line.Raw("\"");
  const std::u16string_view layer = NameIn(record.layerName);
  if (kind.drawn || !layer.empty()) {
    line.Key("layer");
    line.Text(layer);
  }
  if (const std::u16string_view style = NameIn(record.styleName); !style.empty()) {
    line.Key(kind.styleKey);
    line.Text(style);
  }
  if (record.color != KAPDF_COLOR_BY_LAYER) {
    line.Key(kind.kind == ElemLayerDef ? "recordColor" : "color");
    line.Integer(record.color);
  }
  if (record.flags != 0) {
    line.Key("flags");
    line.Integer(record.flags);
  }
  if (record.section != kind.section) {
    line.Key("section");
    line.Integer(record.section);
  }
  if (record.imageKey != 0) {
    line.Key("imageKey");
    if (record.imageKey <= kLargestExactInteger) return line.Integer(record.imageKey);
    line.Raw("\"" + std::to_string(record.imageKey) + "\"");
  }
}

}  // namespace

void AppendNumber(std::string &out, double value) {
  if (value == 0) {
    // A bare "-0" is an integer to most readers and loses its sign.
    out += std::signbit(value) ? "-0.0" : "0";
    return;
  }
  char digits[32];
  out.append(digits, std::to_chars(digits, std::end(digits), value).ptr);
}

void AppendJsonText(std::string &out, std::string_view utf8) {
  out += '"';
  for (const char c : utf8) {
    if (c == '"' || c == '\\') {
      out += '\\';
      out += c;
    } else if (static_cast<unsigned char>(c) < 0x20) {
      char escape[8];
      std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned>(c));
      out += escape;
    } else {
      out += c;
    }
  }
  out += '"';
}

void AppendJsonText(std::string &out, std::u16string_view text) {
  if (IsWellFormed(text)) return AppendJsonText(out, std::string_view(ToUtf8(text)));
  char mark = '[';
  for (const char16_t unit : text) {
    out += mark;
    out += std::to_string(static_cast<unsigned>(unit));
    mark = ',';
  }
  out += ']';
}

std::optional<std::string> AppendRecord(std::string &out, const ElementRecord &record, std::string_view picture) {
  const Kind *kind = FindKind(record.kind);
  if (kind == nullptr) return "of kind " + std::to_string(record.kind) + ", which is unknown";
  if (kind->payloadBytes > 0 && (record.payload == nullptr || record.payloadBytes < kind->payloadBytes)) {
    return WithArticle(*kind) + " with too short a payload";
  }
  const size_t start = out.size();
  LineWriter line(out);
  WriteCommon(line, record, *kind);
  for (const Field &field : kind->fields) WriteField(line, field, record.payload);
  const char *fault = WriteRest(line, record);
  if (!picture.empty()) {
    line.Key("file");
    AppendJsonText(out, picture);
  }
  if (fault == nullptr && !line.finite()) fault = "a value that is not finite";
  if (fault != nullptr) {
    out.resize(start);
    return WithArticle(*kind) + " with " + fault;
  }
  out += "}\n";
  return std::nullopt;
}

}  // namespace kapdf::tool
