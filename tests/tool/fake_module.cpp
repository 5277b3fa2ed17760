// A module that reads and writes no PDF: it serves known records and writes down what it is given, so that the host
// program can be tested for what it does with them.
//
// The text of the file to be read says what happens: "all" serves one record of every kind, "interrupt" lines without
// an end and Ctrl-C at the fifth, "infinite" a circle of infinite radius, "refuse N" result N, "rasters" one raster of
// each form. What was served is
// written down in FILE.served, what is to be written goes to the output file as calls.
#include <csignal>
#include <cstring>
#include <deque>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <limits>
#include <sstream>
#include <vector>

#include "kapdf/kapdf.h"
#include "platform/settings.h"

namespace {

std::filesystem::path PathOf(const char16_t *path) { return std::filesystem::path(std::u16string(path)); }

template <class Value>
Value At(const void *block, size_t offset) {
  Value value;
  std::memcpy(&value, static_cast<const char *>(block) + offset, sizeof value);
  return value;
}

void Hex(std::ostream &out, const char *what, const void *data, size_t size) {
  out << ' ' << what << ' ' << std::hex << std::setfill('0');
  for (size_t i = 0; i < size; ++i) out << std::setw(2) << unsigned{static_cast<const unsigned char *>(data)[i]};
  out << std::dec << std::setfill(' ');
}

void HexText(std::ostream &out, const char16_t *text) {
  const size_t units = text == nullptr ? 0 : std::char_traits<char16_t>::length(text);
  Hex(out, text == nullptr ? "null" : "text", text, units * sizeof(char16_t));
}

// Every bit of a record, with what its pointers lead to in place of the pointers.
std::string Describe(const ElementRecord &r) {
  std::ostringstream out;
  out << "kind " << r.kind << " flags " << r.flags << " color " << r.color << " section " << r.section << " key "
      << r.imageKey << " bytes " << r.payloadBytes;
  HexText(out, r.layerName);
  HexText(out, r.styleName);
  if (r.payload == nullptr) return out.str();
  struct Shape {
    uint32_t kind;
    size_t size;
    std::vector<size_t> texts, arrays;
  };
  const Shape shapes[] = {{ElemLayerDef, 44, {0, 8}, {36}},     {ElemLineTypeDef, 980, {0}, {}},
                          {ElemFontDef, 64, {0, 8, 24}, {}},    {ElemRasterHeader, 36, {}, {28}},
                          {ElemNamedProperty, 20, {0, 12}, {}}, {ElemText, 84, {68, 76}, {}},
                          {ElemPolyline, 68, {}, {20}},         {ElemFilledPolygon, 68, {}, {12, 24}}};
  Shape shape{r.kind, r.payloadBytes, {}, {}};
  for (const Shape &s : shapes) {
    if (s.kind == r.kind) shape = s;
  }
  const auto *payload = static_cast<const char *>(r.payload);
  std::vector<char> block(payload, payload + shape.size);
  for (const auto *list : {&shape.texts, &shape.arrays}) {
    for (const size_t at : *list) std::memset(block.data() + at, 0, 8);
  }
  Hex(out, "payload", block.data(), block.size());
  for (const size_t at : shape.texts) HexText(out, At<const char16_t *>(payload, at));
  if (r.kind == ElemPolyline) {
    const auto p = At<PolylinePayload>(payload, 0);
    Hex(out, "vertices", p.vertices, 8 * (2 + p.extraPerVertex) * static_cast<size_t>(p.vertexCount));
  } else if (r.kind == ElemFilledPolygon) {
    const auto p = At<FilledPolygonPayload>(payload, 0);
    Hex(out, "starts", p.contourStarts, 4 * (static_cast<size_t>(p.contourCount) + 1));
    Hex(out, "vertices", p.vertices, 16 * static_cast<size_t>(p.vertexCount));
  } else if (r.kind == ElemFontDef) {
    Hex(out, "program", payload + 64, r.payloadBytes - 64);
  } else if (const void *palette = r.kind == ElemRasterHeader ? At<void *>(payload, 28) : nullptr) {
    Hex(out, "palette", palette, 1028);
  }
  return out.str();
}

// Records with all they point to, made once.
class Script {
 public:
  void AddAll() {
    const double inf = std::numeric_limits<double>::max();
    Add(ElemNamedProperty, NamedPropertyPayload{Text(u"Scale"), 2, Text(u"0.5")}).section = 0;
    Add(ElemLayerDef,
        LayerDefPayload{Text(u"A \"<&> \n\u00e4\U0001F600"), Text(u"Continuous"), 258, 0.25, 1, 5, nullptr});
    // A name that is no valid Unicode.
    Add(ElemLayerDef,
        LayerDefPayload{Text(std::u16string{0x41, 0xD800, 0x42}), nullptr, 0x800000FF, -2, 0, 0, nullptr});
    LineTypeDefPayload dashes{Text(u"Dash"), 20, {}, {}};
    for (int i = 0; i < 16; ++i) dashes.segments[i].length = i % 2 ? -1.5 : 0.1;
    Add(ElemLineTypeDef, dashes);
    const FontDefPayload font{Text(u"Style"), Text(u"Face"), 0, nullptr, 0, 2.5, 0.9, 0xFFFF0007u, 0};
    Add(ElemFontDef, font, {0, 1, 2, 254, 255});
    Add(ElemPoint, PointPayload{-2, 1, -0.0, {}, 2});
    ElementRecord &line = Add(ElemLine, LinePayload{0.1, 1e-320, inf, 1.0 / 3, -1e21});
    line.color = 7;
    line.section = 6;
    line.flags = 0x40;
    SetName(line.layerName, std::u16string{0xDC00});
    Add(ElemCircle, CirclePayload{0, 123456789012345680.0, 2, 3});
    Add(ElemArc, ArcPayload{0.5, 1, 2, 3, 4, 5});
    Add(ElemEllipseArc, EllipseArcPayload{0.5, 1, 2, 3, 4, 0.7, 1, 1});
    Add(ElemSolid, SolidPayload{1, 2, 3, 4, 5, 6, 7, 8});
    Add(ElemText, TextPayload{1, 2, {}, 0, 0, 0.5, 3.5, 1, 4, Text(u"caf\u00e9"), nullptr});
    Add(ElemComposite);
    AddPolyline({1, 2, 3, 4, 5, 6}, 0);
    AddPolyline({1, 2, 9, 3, 4, 8}, 1);
    AddPolygon({0, 0, 9, 0, 9, 9, 1, 1, 2, 1, 2, 2}, {0, 3, 6}, 0);
    AddPolygon({0, 0, 9, 0, 9, 9}, {1, 2}, 3);
    ElementRecord &raster = Add(ElemRasterPlacement, RasterPlacementPayload{1, 2, 0.1, 3, 4, 50, {}, 1});
    SetName(raster.styleName, u"Im1");
    raster.imageKey = 0x8000000000000001u;
    uint8_t *palette = static_cast<uint8_t *>(Keep(std::vector<uint8_t>(1028, 7)));
    Add(ElemRasterHeader, RasterHeaderPayload{2, 2, 0, 0, 300, 1, 2, palette});
    Add(ElemRasterRows, uint64_t{0x1122334455667788u}).payloadBytes = 5;
    // This one's header cannot be had.
    Add(ElemRasterPlacement, RasterPlacementPayload{1, 2, 0, 1, 1, 100, {}, 0}).imageKey = 0x8000000000000001u;
    // The first two definitions come in one call.
    records_[1].next = &records_[2];
  }
  void AddRasters() {
    std::vector<uint8_t> palette(1028);
    const uint8_t entries[] = {0, 3, 3, 0, 1, 2, 3, 0, 4, 5, 6, 0, 7, 8, 9, 255};
    std::copy(std::begin(entries), std::end(entries), palette.begin());
    AddRaster(u"a/b", {10, 2, 0, 0, 254, 1, 0, nullptr},
              {{2, 0, 0, 0, 1, 0, 0, 0, 3, 0, 0, 0, 9, 0, 0, 0, 99, 0, 0, 0}, {0, 0, 0, 0}});
    AddRaster(u"Im", {4, 1, 0, 0, 100, 0, 2, Keep(palette)}, {{2, 1, 0, 200}});
    AddRaster(u"im", {2, 2, 0, 0, 100, 0, 4, nullptr}, {{1, 2, 3, 4, 5, 6, 99, 99}});
    AddRaster(u"im", {2, 1, 0, 0, 100, 0, 5, nullptr}, {{1, 2, 3, 0, 4, 5, 6, 255}, {9}});
    AddRaster(u"none", {2, 1, 0, 0, 100, 0, 3, nullptr}, {{1, 2}});  // a form that there is not
  }
  void AddRaster(const std::u16string &name, const RasterHeaderPayload &header,
                 const std::vector<std::vector<uint8_t>> &rows) {
    ElementRecord &placement =
        Add(ElemRasterPlacement, RasterPlacementPayload{10, 20, 1.5707963267948966, 1, -1, 50, {}, 0});
    placement.color = 0x800000FF;
    SetName(placement.styleName, name);
    SetName(Add(ElemRasterHeader, header).styleName, name);
    for (const std::vector<uint8_t> &bytes : rows) {
      ElementRecord &row = Add(ElemRasterRows);
      row.payload = Keep(bytes);
      row.payloadBytes = static_cast<uint32_t>(bytes.size());
    }
  }
  // A payload and the bytes that stand right behind it.
  template <class Payload>
  ElementRecord &Add(uint32_t kind, const Payload &payload, const std::vector<uint8_t> &behind = {}) {
    ElementRecord &record = Add(kind);
    std::vector<uint8_t> bytes(sizeof payload);
    std::memcpy(bytes.data(), &payload, sizeof payload);
    bytes.insert(bytes.end(), behind.begin(), behind.end());
    record.payload = Keep(bytes);
    record.payloadBytes = static_cast<uint32_t>(bytes.size());
    return record;
  }
  ElementRecord &Add(uint32_t kind) {
    ElementRecord &record = records_.emplace_back();
    std::memset(&record, 0, sizeof record);
    record.kind = kind;
    record.color = 256;
    record.section = kind >= 6 && kind <= 8 ? 3 : 4;
    return record;
  }
  void AddPolyline(const std::vector<double> &numbers, uint32_t extra) {
    const auto count = static_cast<int32_t>(numbers.size() / (2 + extra));
    const PolylinePayload p{1, 0, count, extra, static_cast<double *>(Keep(numbers)), 0, 0, {}, 0, {}};
    Add(ElemPolyline, p).payloadBytes += static_cast<uint32_t>(numbers.size() * 8);
  }
  void AddPolygon(const std::vector<double> &numbers, const std::vector<uint32_t> &starts, uint32_t stroke) {
    const auto contours = static_cast<int32_t>(starts.size() - 1), count = static_cast<int32_t>(numbers.size() / 2);
    const FilledPolygonPayload p{0,
                                 contours,
                                 static_cast<uint32_t *>(Keep(starts)),
                                 count,
                                 static_cast<double *>(Keep(numbers)),
                                 12.5,
                                 0,
                                 0,
                                 stroke,
                                 {}};
    Add(ElemFilledPolygon, p).payloadBytes += static_cast<uint32_t>(numbers.size() * 8 + starts.size() * 4);
  }
  static void SetName(char16_t (&target)[256], const std::u16string &name) {
    std::memcpy(target, name.c_str(), (name.size() + 1) * 2);
  }
  size_t size() const { return records_.size(); }
  const ElementRecord &operator[](size_t i) const { return records_[i]; }

 private:
  char16_t *Text(const std::u16string &text) {
    return static_cast<char16_t *>(Keep(std::vector<char16_t>(text.c_str(), text.c_str() + text.size() + 1)));
  }
  template <class Item>
  void *Keep(const std::vector<Item> &items) {
    auto &block = blocks_.emplace_back(items.size() * sizeof(Item) / 8 + 16);
    std::memcpy(block.data(), items.data(), items.size() * sizeof(Item));
    return block.data();
  }
  std::deque<ElementRecord> records_;
  std::deque<std::vector<uint64_t>> blocks_;
};

struct FakeFilter {
  FilterObject base;
  std::u16string registry;
  std::string word;
  Script script;
  size_t next = 0, taken = 0;
  std::ofstream log;
  std::vector<std::u16string> dashed;
  std::string options;
};

FakeFilter &Self(FilterObject *self) { return *reinterpret_cast<FakeFilter *>(self); }

uint32_t ReadWord(FakeFilter &f, const char16_t *path) {
  std::ifstream in(PathOf(path));
  uint32_t result = 0;
  if (!(in >> f.word)) return FilterCannotRead;
  if (f.word == "refuse") in >> result;
  return result;
}

uint32_t Identify(FilterObject *self, const char16_t *path, FileInfo *info) {
  info->pageCount = 3;
  std::memcpy(info->formatName, u"Adobe PDF ", 22);
  return ReadWord(Self(self), path);
}

uint32_t OpenRead(FilterObject *self, const char16_t *path, FileInfo *info, ProgressObject *, const char16_t *,
                  FilterContext *, FilterCreateFunction) {
  FakeFilter &f = Self(self);
  info->pageCount = 3;
  if (const uint32_t result = ReadWord(f, path); result != 0) return result;
  f.next = 0;
  if (f.word == "all" && f.script.size() == 0) f.script.AddAll();
  if (f.word == "rasters" && f.script.size() == 0) f.script.AddRasters();
  f.log.open(std::filesystem::path(PathOf(path)) += ".served", std::ios::binary);
  return 0;
}

uint32_t ReadScript(FakeFilter &f, ElementRecord *record) {
  const bool raster = record->kind == ElemRasterHeader || record->kind == ElemRasterRows;
  const bool isRaster = f.next < f.script.size() && f.script[f.next].kind == record->kind;
  if (raster && !isRaster) return record->kind == ElemRasterRows ? FilterNoMoreRows : FilterNotAvailable;
  if (f.next == f.script.size()) return FilterEndOfElements;
  ProgressObject *progress = record->progress;
  *record = f.script[f.next];
  record->progress = progress;
  for (const ElementRecord *r = record; r != nullptr; r = r->next) {
    f.log << "record " << Describe(*r) << "\n";
    ++f.next;
  }
  return 0;
}

uint32_t ReadElement(FilterObject *self, ElementRecord *record) {
  FakeFilter &f = Self(self);
  if (f.script.size() > 0) return ReadScript(f, record);
  static LinePayload line{0.1, 0, 0, 1, 1};
  static CirclePayload circle{0, 0, 0, std::numeric_limits<double>::infinity()};
  if (++f.next == 5 && f.word == "interrupt") std::raise(SIGINT);
  record->kind = f.word == "infinite" ? ElemCircle : ElemLine;
  record->payload = f.word == "infinite" ? static_cast<void *>(&circle) : &line;
  record->payloadBytes = f.word == "infinite" ? sizeof circle : sizeof line;
  record->section = 4;
  return record->progress->table->Report(record->progress, 0.5) != 0 ? FilterCancelled : FilterOk;
}

// As text, whatever its type; "none" when it is not there.
std::string ReadSetting(const kapdf::platform::Settings &key, const char16_t *name) {
  const std::u16string text = key.ReadString(name, u"none");
  const int32_t number = key.ReadInteger(name, -1);
  return number == -1 ? std::string(text.begin(), text.end()) : std::to_string(number);
}

uint32_t OpenWrite(FilterObject *self, const char16_t *path, FileInfo *info, ProgressObject *,
                   const char16_t *options) {
  FakeFilter &f = Self(self);
  for (const char16_t *c = options; c != nullptr && *c != 0; ++c) f.options += static_cast<char>(*c);
  f.log.open(PathOf(path), info->pageIndex == -1 ? std::ios::binary : std::ios::binary | std::ios::app);
  if (!f.log) return FilterCannotWrite;
  if (f.options == "/col X") return FilterBadOption;
  f.log << "open " << info->pageIndex << " of " << info->pageCount << " box " << info->xmin << " " << info->ymin << " "
        << info->xmax << " " << info->ymax << " options " << f.options << "\n";
  for (const char16_t *name : {u"Quality", u"PaperFrame", u"Log", u"DefaultResolution"}) {
    f.log << "setting";
    for (const char16_t *suffix : {u"\\Filter\\PDF", u"\\PDF", u"\\Filter"}) {
      f.log << " " << ReadSetting({f.registry, suffix}, name);
    }
    f.log << "\n";
  }
  return 0;
}

template <char Word>
uint32_t Section(FilterObject *self, int32_t section, uintptr_t, uintptr_t) {
  Self(self).log << (Word == 'b' ? "begin " : "end ") << section << "\n";
  return 0;
}

uint32_t WriteElement(FilterObject *self, ElementRecord *record) {
  FakeFilter &f = Self(self);
  if (++f.taken == 3 && f.options == "/interrupt") std::raise(SIGINT);
  f.log << "record " << Describe(*record) << "\n";
  if (record->kind == ElemLineTypeDef && At<uint32_t>(record->payload, 8) > 1) {
    f.dashed.emplace_back(At<char16_t *>(record->payload, 0));
  }
  if (record->kind >= ElemLayerDef && record->kind <= ElemFontDef) return FilterConsumed;
  if (record->kind == ElemComposite) {
    record->flags |= 0x40;
    return FilterUnsupported;
  }
  for (const std::u16string &name : f.dashed) {
    if (name == record->styleName) return FilterUnsupported;
  }
  return FilterOk;
}

uint32_t Close(FilterObject *self) {
  if (Self(self).log.is_open()) Self(self).log << "close\n";
  Self(self).log.close();
  return 0;
}

// Of the first page only: two pixels of 24 bits.
void *Preview(FilterObject *, const char16_t *path, ProgressObject *) {
  static uint32_t block[] = {40, 2, 1, 1 | 24 << 16, 0, 0, 0, 0, 0, 0, 0x04030201, 0x0605};
  return std::u16string_view(path).ends_with(u".pdf <1>") ? block : nullptr;
}

const FilterTable kTable = {nullptr,      Identify,     Preview,      OpenRead, ReadElement, OpenWrite, nullptr,
                            Section<'b'>, Section<'e'>, WriteElement, nullptr,  Close,       nullptr,   nullptr};

FilterObject *Create(const char16_t *registryPath) {
  auto *filter = new FakeFilter;
  filter->base.table = &kTable;
  filter->registry = registryPath != nullptr ? registryPath : u"Software\\Tessmark GmbH\\ZVIOFilter";
  return &filter->base;
}

void Destroy(FilterObject *filter) { delete reinterpret_cast<FakeFilter *>(filter); }

const FilterRow kRows[] = {{KAPDF_ROW_READS, 0, u"Fake", u"PDF", Create, Destroy},
                           {KAPDF_ROW_WRITES, 0, u"Fake", u"PDF", Create, Destroy}};

}  // namespace

extern "C" {

uint32_t ZVGetFilterApiVersion(void) { return KAPDF_API_VERSION; }
uint32_t ZVGetFilterInfo(FilterInfo *info) {
  *info = FilterInfo{KAPDF_FILTER_VERSION, 0, u"9.9", u"Nobody", 2, 0, kRows};
  return 0;
}

}  // extern "C"
