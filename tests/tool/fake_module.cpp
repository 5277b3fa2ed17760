// A module that reads and writes no PDF: it serves known records and writes down what it is given, so that the host
// program can be tested for what it does with them.
//
// The text of the file to be read says what happens: lines of JSON are the records that it serves, "interrupt" serves
// lines without an end and Ctrl-C at the fifth, "infinite" a circle of infinite radius, "refuse N" result N. What is to
// be written goes to the output file as calls, records as lines of JSON.
#include <csignal>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <limits>
#include <vector>

#include "jsonl/drawing.h"
#include "jsonl/record_writer.h"
#include "platform/settings.h"

namespace {

std::filesystem::path PathOf(const char16_t *path) { return std::filesystem::path(std::u16string(path)); }

struct FakeFilter {
  FilterObject base;
  std::u16string registry;
  std::string word;
  kapdf::tool::Drawing drawing;
  ElementRecord chained{};
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
  info->pageCount = 3;  // and each that was added
  std::ifstream in(PathOf(path));
  for (std::string word; in >> word;) info->pageCount += word == "startxref";
  std::memcpy(info->formatName, u"Adobe PDF ", 22);
  return ReadWord(Self(self), path);
}

uint32_t OpenRead(FilterObject *self, const char16_t *path, FileInfo *info, ProgressObject *, const char16_t *,
                  FilterContext *, FilterCreateFunction) {
  FakeFilter &f = Self(self);
  info->pageCount = 3;
  if (const uint32_t result = ReadWord(f, path); result != 0) return result;
  f.next = 0;
  f.drawing = {};
  std::ifstream in(PathOf(path));
  return f.word[0] != '{' || ReadDrawing(in, "", {}, f.drawing).ok() ? FilterOk : FilterCannotRead;
}

// Two layers that follow each other come in one call.
uint32_t ReadLines(FakeFilter &f, ElementRecord *record) {
  const auto &names = f.drawing.names;
  const auto &records = f.drawing.records;
  const auto isNext = [&](uint32_t kind) { return f.next < records.size() && records[f.next].kind == kind; };
  const bool raster = record->kind == ElemRasterHeader || record->kind == ElemRasterRows;
  if (raster && !isNext(record->kind)) {
    return record->kind == ElemRasterRows ? FilterNoMoreRows : FilterNotAvailable;
  }
  if (f.next == records.size()) return FilterEndOfElements;
  FillElement(records[f.next++], names, *record);
  if (record->kind == ElemLayerDef && isNext(ElemLayerDef)) {
    FillElement(records[f.next++], names, f.chained);
    record->next = &f.chained;
  }
  return 0;
}

uint32_t ReadElement(FilterObject *self, ElementRecord *record) {
  FakeFilter &f = Self(self);
  if (!f.drawing.records.empty()) return ReadLines(f, record);
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
  f.options.clear();
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
  std::string line;
  kapdf::tool::AppendRecord(line, *record);
  if (line.empty()) line = "\n";
  f.log << "record " << record->kind << " " << record->imageKey << " " << line;
  LineTypeDefPayload lineType;
  if (record->kind == ElemLineTypeDef && kapdf::tool::CopyPayload(*record, lineType) && lineType.segmentCount > 1) {
    f.dashed.emplace_back(lineType.name);
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
  if (Self(self).log.is_open()) Self(self).log << "close\nstartxref\n";
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
