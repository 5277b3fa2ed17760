#include "jsonl/record_reader.h"

#include <charconv>
#include <cmath>
#include <limits>

#include "jsonl/base64.h"
#include "records/kinds.h"
#include "system/utf.h"

namespace kapdf::tool {
namespace {

using Type = JsonValue::Type;

bool IsNumber(const JsonValue &value) { return value.type == Type::kInteger || value.type == Type::kReal; }

bool ReadText(const JsonValue &value, std::u16string &text) {
  if (value.type == Type::kText) {
    text = ToUtf16(value.text);
    return text.find(u'\0') == std::u16string::npos;
  }
  if (value.type != Type::kArray || value.numberLevel > 1 || !value.ends.empty()) return false;
  text.clear();
  for (const double unit : value.numbers) {
    if (!(unit >= 1 && unit <= 0xFFFF) || unit != std::floor(unit)) return false;
    text += static_cast<char16_t>(unit);
  }
  return true;
}

bool ReadColor(const JsonValue &value, uint32_t &code) {
  if (value.type != Type::kText) return ReadU32(value, code);
  uint32_t rgb = 0;
  const std::string &text = value.text;
  if (text.size() != 7 || text[0] != '#') return false;
  const auto [end, error] = std::from_chars(text.data() + 1, text.data() + 7, rgb, 16);
  if (error != std::errc() || end != text.data() + 7) return false;
  code = KAPDF_COLOR_DIRECT | rgb >> 16 | (rgb & 0xFF00) | (rgb & 0xFF) << 16;
  return true;
}

bool ReadFlag(const JsonValue &value, uint32_t &number) {
  if (value.type != Type::kBoolean) return ReadU32(value, number);
  number = value.boolean ? 1 : 0;
  return true;
}

bool ReadU64(const JsonValue &value, uint64_t &number) {
  if (value.type == Type::kInteger && !value.negative) {
    number = value.bits;
    return true;
  }
  if (value.type != Type::kText) return false;
  const char *behind = value.text.data() + value.text.size();
  const auto [end, error] = std::from_chars(value.text.data(), behind, number);
  return error == std::errc() && end == behind;
}

// Doubles for each point of [[...], ...]; 0 when the points differ in size or have fewer than two.
size_t StrideOf(const JsonValue &value) {
  if (value.ends.empty() || value.numberLevel != 2) return 0;
  const size_t stride = value.ends.front();
  for (size_t i = 0; i < value.ends.size(); ++i) {
    if (value.ends[i] != (i + 1) * stride) return 0;
  }
  return stride >= 2 ? stride : 0;
}

class RecordBuilder {
 public:
  RecordBuilder(JsonLine &line, NameTable &names, Record &record) : line_(line), names_(names), record_(record) {}

  std::optional<std::string> Build() {
    const bool built = FindKindOfLine() && ReadCommon() && ReadPayload() && NothingLeft();
    return built ? std::nullopt : std::optional(std::move(fault_));
  }

 private:
  bool Fault(std::string words) {
    if (fault_.empty()) fault_ = std::move(words);
    return false;
  }
  bool Wants(const char *key, const char *what) {
    return Fault("\"" + std::string(key) + "\" of " + WithArticle(*kind_) + " takes " + what);
  }

  bool FindKindOfLine() {
    const JsonValue *word = line_.Find("kind");
    if (word == nullptr || word->type != Type::kText) return Fault("\"kind\" is missing");
    kind_ = FindKind(std::string_view(word->text));
    return kind_ != nullptr || Fault("there is no kind \"" + word->text + "\"");
  }

  bool ReadName(const char *key, std::u16string_view fallback, uint32_t &index) {
    std::u16string name(fallback);
    if (const JsonValue *value = line_.Find(key); value != nullptr && !ReadText(*value, name))
      return Wants(key, "a text");
    if (name.size() > 255) return Fault("\"" + std::string(key) + "\" is longer than 255 characters");
    index = names_.Add(name);
    return true;
  }
  bool Number(const char *key, uint32_t &number) {
    const JsonValue *value = line_.Find(key);
    return value == nullptr || ReadU32(*value, number) || Wants(key, "a whole number of 0 or more");
  }
  bool ReadCommon() {
    record_.kind = kind_->kind;
    record_.flags = 0;
    record_.color = KAPDF_COLOR_BY_LAYER;
    record_.section = kind_->section;
    record_.imageKey = 0;
    if (!ReadName("layer", kind_->drawn ? u"0" : u"", record_.layer)) return false;
    if (!ReadName(kind_->styleKey, u"", record_.style)) return false;
    const char *colorKey = kind_->kind == ElemLayerDef ? "recordColor" : "color";
    if (const JsonValue *color = line_.Find(colorKey); color != nullptr && !ReadColor(*color, record_.color)) {
      return Wants(colorKey, "a colour code or \"#rrggbb\"");
    }
    const JsonValue *key = line_.Find("imageKey");
    if (key != nullptr && !ReadU64(*key, record_.imageKey)) return Wants("imageKey", "a whole number of 0 or more");
    return Number("flags", record_.flags) && Number("section", record_.section);
  }

  bool ReadPayload() {
    if (kind_->kind == ElemRasterRows) return ReadRows();
    PayloadBuilder payload(kind_->payloadBytes);
    record_.payloadBytes = kind_->payloadBytes;
    for (const Field &field : kind_->fields) {
      if (!ReadField(field, payload)) return false;
    }
    if (!ReadRest(payload)) return false;
    record_.payload = kind_->payloadBytes > 0 ? payload.Finish() : nullptr;
    return true;
  }

  bool ReadField(const Field &field, PayloadBuilder &payload) {
    const JsonValue *value = line_.Find(field.key);
    if (value == nullptr && field.need == Need::kRequired) {
      return Fault(WithArticle(*kind_) + " needs \"" + field.key + "\"");
    }
    switch (field.type) {
      case FieldType::kReal:
        if (value != nullptr && !IsNumber(*value)) return Wants(field.key, "a number");
        WriteAt(payload.data(), field.offset, value != nullptr ? value->real : field.fallback);
        return true;
      case FieldType::kPoints:
        return ReadPoints(field, *value, payload);
      case FieldType::kU32:
      case FieldType::kColor:
      case FieldType::kFlag: {
        auto number = static_cast<uint32_t>(field.fallback);
        if (value != nullptr && !ReadCode(field.type, *value, number)) {
          return Wants(field.key, field.type == FieldType::kColor  ? "a colour code or \"#rrggbb\""
                                  : field.type == FieldType::kFlag ? "true, false or a whole number"
                                                                   : "a whole number of 0 or more");
        }
        WriteAt(payload.data(), field.offset, number);
        return true;
      }
      case FieldType::kText: {
        std::u16string text;
        if (value == nullptr) return true;
        if (!ReadText(*value, text)) return Wants(field.key, "a text");
        payload.AttachText(field.offset, text);
        return true;
      }
    }
    return false;
  }
  static bool ReadCode(FieldType type, const JsonValue &value, uint32_t &number) {
    if (type == FieldType::kColor) return ReadColor(value, number);
    return type == FieldType::kFlag ? ReadFlag(value, number) : ReadU32(value, number);
  }
  bool ReadPoints(const Field &field, const JsonValue &value, PayloadBuilder &payload) {
    const bool fits = value.numbers.size() == field.count * size_t{2} &&
                      (field.count == 1 ? value.numberLevel == 1 : StrideOf(value) == 2);
    if (!fits) {
      return Wants(field.key, field.count == 1   ? "[x, y]"
                              : field.count == 2 ? "two points: [[x, y], [x, y]]"
                                                 : "four points: [[x, y], ...]");
    }
    std::memcpy(static_cast<char *>(payload.data()) + field.offset, value.numbers.data(),
                value.numbers.size() * sizeof(double));
    return true;
  }

  bool ReadRest(PayloadBuilder &payload) {
    switch (record_.kind) {
      case ElemPolyline:
        return ReadVertices(payload);
      case ElemFilledPolygon:
        return line_.Find("contours") != nullptr ? ReadContours(payload) : ReadBareContours(payload);
      case ElemLineTypeDef:
        return ReadSegments(payload);
      case ElemFontDef:
        return ReadFontRest(payload);
      case ElemRasterHeader:
        return ReadHeaderRest(payload);
      default:
        return true;
    }
  }

  // "points" as a list of points of `stride` numbers, 0 when it is empty; null after a fault.
  const JsonValue *PointList(size_t &stride) {
    const JsonValue *points = line_.Find("points");
    stride = points != nullptr ? StrideOf(*points) : 0;
    const bool empty =
        points != nullptr && points->type == Type::kArray && points->ends.empty() && points->numbers.empty();
    if (stride == 0 && !empty) {
      Wants("points", "points: [[x, y], ...]");
      return nullptr;
    }
    return points;
  }
  bool CountFits(size_t count) {
    return count < static_cast<size_t>(std::numeric_limits<int32_t>::max() / 64) || Fault("it has too many points");
  }

  bool ReadVertices(PayloadBuilder &payload) {
    size_t stride = 0;
    const JsonValue *points = PointList(stride);
    if (points == nullptr || !CountFits(points->numbers.size())) return false;
    auto extra = static_cast<uint32_t>(stride == 0 ? 0 : stride - 2);
    if (!Number("extraPerVertex", extra)) return false;
    if ((stride != 0 && extra != stride - 2) || extra > 62) return Fault("\"extraPerVertex\" does not fit the points");
    WriteAt(payload.data(), offsetof(PolylinePayload, extraPerVertex), extra);
    WriteAt(payload.data(), offsetof(PolylinePayload, vertexCount), static_cast<int32_t>(points->ends.size()));
    payload.Attach(offsetof(PolylinePayload, vertices), points->numbers.data(),
                   points->numbers.size() * sizeof(double));
    record_.payloadBytes += static_cast<uint32_t>(points->numbers.size() * sizeof(double));
    return true;
  }

  bool ReadContours(PayloadBuilder &payload) {
    const JsonValue &contours = *line_.Find("contours");
    const bool shaped = contours.type == Type::kArray && contours.pairs &&
                        (contours.numberLevel == 3 || (contours.numbers.empty() && !contours.ends.empty()));
    if (!shaped) return Wants("contours", "lists of points: [[[x, y], ...], ...]");
    if (!CountFits(contours.numbers.size())) return false;
    std::vector<uint32_t> starts{0};
    for (const size_t end : contours.ends) starts.push_back(static_cast<uint32_t>(end / 2));
    SetPolygon(payload, contours.numbers, starts);
    return true;
  }
  bool ReadBareContours(PayloadBuilder &payload) {
    if (line_.Find("points") == nullptr) return Fault("a polygon needs \"contours\"");
    size_t stride = 0;
    const JsonValue *points = PointList(stride);
    if (points == nullptr || !CountFits(points->numbers.size())) return false;
    if (stride > 2) return Wants("points", "points: [[x, y], ...]");
    std::vector<uint32_t> starts{0, static_cast<uint32_t>(points->numbers.size() / 2)};
    if (const JsonValue *given = line_.Find("contourStarts"); given != nullptr) {
      if (given->numberLevel != 1) return Wants("contourStarts", "a list of whole numbers");
      starts.clear();
      for (const double start : given->numbers) {
        if (!(start >= 0 && start <= 0xFFFFFFFFu)) return Wants("contourStarts", "a list of whole numbers");
        starts.push_back(static_cast<uint32_t>(start));
      }
    }
    SetPolygon(payload, points->numbers, starts);
    return true;
  }
  void SetPolygon(PayloadBuilder &payload, const std::vector<double> &numbers, const std::vector<uint32_t> &starts) {
    WriteAt(payload.data(), offsetof(FilledPolygonPayload, contourCount), static_cast<int32_t>(starts.size() - 1));
    WriteAt(payload.data(), offsetof(FilledPolygonPayload, vertexCount), static_cast<int32_t>(numbers.size() / 2));
    payload.Attach(offsetof(FilledPolygonPayload, vertices), numbers.data(), numbers.size() * sizeof(double));
    payload.Attach(offsetof(FilledPolygonPayload, contourStarts), starts.data(), starts.size() * sizeof(uint32_t));
    record_.payloadBytes += static_cast<uint32_t>(numbers.size() * sizeof(double) + starts.size() * sizeof(uint32_t));
  }

  bool ReadSegments(PayloadBuilder &payload) {
    const JsonValue *segments = line_.Find("segments");
    uint32_t count = 0;
    if (segments != nullptr) {
      if (segments->type != Type::kArray || segments->numberLevel > 1 || !segments->ends.empty()) {
        return Wants("segments", "a list of lengths: dashes above zero, gaps below");
      }
      if (segments->numbers.size() > KAPDF_LINE_TYPE_SEGMENTS) return Fault("a lineType holds at most 16 segments");
      for (const double length : segments->numbers) {
        WriteAt(payload.data(), offsetof(LineTypeDefPayload, segments) + sizeof(LineTypeSegment) * count++, length);
      }
    }
    if (!Number("segmentCount", count)) return false;
    WriteAt(payload.data(), offsetof(LineTypeDefPayload, segmentCount), count);
    return true;
  }

  bool ReadFontRest(PayloadBuilder &payload) {
    uint32_t code = 0;
    int codePage = 0;
    if (!Number("styleCode", code)) return false;
    if (code > 0xFFFF) return Wants("styleCode", "a whole number up to 65535");
    if (const JsonValue *value = line_.Find("codePage"); value != nullptr) {
      if (value->type != Type::kInteger || value->real < -32768 || value->real > 32767) {
        return Wants("codePage", "a whole number from -32768 to 32767");
      }
      codePage = static_cast<int>(value->real);
    }
    WriteAt(payload.data(), offsetof(FontDefPayload, charsetAndCodePage), code | static_cast<uint32_t>(codePage) << 16);
    const JsonValue *program = line_.Find("program");
    if (program == nullptr) return true;
    auto bytes = program->type == Type::kText ? FromBase64(program->text) : std::nullopt;
    if (!bytes) return Wants("program", "base64");
    record_.payloadBytes += static_cast<uint32_t>(bytes->size());
    if (const JsonValue *mapping = line_.Find("mapping"); mapping != nullptr) {
      const auto glyphs = mapping->type == Type::kText ? FromBase64(mapping->text) : std::nullopt;
      if (!glyphs || glyphs->size() != KAPDF_FONT_MAPPING_BYTES) return Wants("mapping", "131072 bytes as base64");
      bytes->insert(bytes->end(), glyphs->begin(), glyphs->end());
      record_.payloadBytes |= KAPDF_FONT_MAPPED;
    }
    return InsertProgram(payload, *bytes);
  }
  // The program stands straight behind the structure, so the texts attached so far are attached anew behind it.
  bool InsertProgram(PayloadBuilder &payload, const std::vector<uint8_t> &bytes) {
    PayloadBuilder whole(sizeof(FontDefPayload) + bytes.size());
    std::memcpy(whole.data(), payload.data(), sizeof(FontDefPayload));
    std::copy(bytes.begin(), bytes.end(), static_cast<uint8_t *>(whole.data()) + sizeof(FontDefPayload));
    for (const Field &field : kind_->fields) {
      if (field.type == FieldType::kText && !ReadField(field, whole)) return false;
    }
    payload = std::move(whole);
    return true;
  }

  bool ReadHeaderRest(PayloadBuilder &payload) {
    if (const JsonValue *file = line_.Find("file"); file != nullptr) {
      if (file->type != Type::kText) return Wants("file", "a text");
      record_.file = std::make_unique<std::string>(file->text);
    }
    const JsonValue *palette = line_.Find("palette");
    if (palette == nullptr) return true;
    const auto bytes = palette->type == Type::kText ? FromBase64(palette->text) : std::nullopt;
    if (!bytes || bytes->size() != 1028) return Wants("palette", "1028 bytes as base64");
    payload.Attach(offsetof(RasterHeaderPayload, palette), bytes->data(), bytes->size());
    return true;
  }
  bool ReadRows() {
    const JsonValue *data = line_.Find("data");
    const auto bytes = data != nullptr && data->type == Type::kText ? FromBase64(data->text) : std::nullopt;
    if (!bytes) return Wants("data", "base64");
    PayloadBuilder payload(0);
    payload.Attach(PayloadBuilder::kNoPointer, bytes->data(), bytes->size());
    record_.payloadBytes = static_cast<uint32_t>(bytes->size());
    record_.payload = payload.Finish();
    return true;
  }

  bool NothingLeft() {
    const JsonValue *unused = line_.Unused();
    return unused == nullptr || Fault(WithArticle(*kind_) + " has no \"" + unused->key + "\"");
  }

  JsonLine &line_;
  NameTable &names_;
  Record &record_;
  const Kind *kind_ = nullptr;
  std::string fault_;
};

}  // namespace

bool ReadU32(const JsonValue &value, uint32_t &number) {
  if (value.type != Type::kInteger || value.negative || value.bits > 0xFFFFFFFFu) return false;
  number = static_cast<uint32_t>(value.bits);
  return true;
}

bool ReadBox(const JsonValue &value, double (&box)[4]) {
  if (value.type != Type::kArray || value.numberLevel != 1 || value.numbers.size() != 4) return false;
  std::copy(value.numbers.begin(), value.numbers.end(), box);
  return true;
}

std::optional<std::string> ReadRecord(JsonLine &line, NameTable &names, Record &record) {
  return RecordBuilder(line, names, record).Build();
}

}  // namespace kapdf::tool
