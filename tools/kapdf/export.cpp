#include <fstream>
#include <set>
#include <unordered_map>

#include "commands.h"
#include "dash_breaker.h"
#include "drawing.h"
#include "kinds.h"
#include "picture_rows.h"
#include "progress.h"
#include "raster_plan.h"
#include "results.h"
#include "summary.h"
#include "utf.h"

namespace kapdf::tool {
namespace {

constexpr int32_t kNewDocument = -1;

bool IsRaster(uint32_t kind) { return kind == ElemRasterHeader || kind == ElemRasterRows; }

bool IsTable(uint32_t kind) { return kind == ElemLayerDef || kind == ElemLineTypeDef || kind == ElemFontDef; }

std::u16string TextAt(const Record &record, size_t offset) {
  const auto *text = ReadAt<const char16_t *>(record.payload.get(), offset);
  return text != nullptr ? text : u"";
}

// What the drawing's tables say that the export itself needs.
struct Tables {
  std::unordered_map<std::u16string, double> layerWidths;
  std::unordered_map<std::u16string, DashPattern> patterns;
};

// The first definition of a name counts.
Tables CollectTables(const Drawing &drawing) {
  Tables tables;
  for (const Record &record : drawing.records) {
    if (record.kind == ElemLayerDef) {
      tables.layerWidths.try_emplace(TextAt(record, offsetof(LayerDefPayload, name)),
                                     ReadAt<double>(record.payload.get(), offsetof(LayerDefPayload, width)));
    } else if (record.kind == ElemLineTypeDef) {
      tables.patterns.try_emplace(TextAt(record, offsetof(LineTypeDefPayload, name)),
                                  PatternOf(ReadAt<LineTypeDefPayload>(record.payload.get(), 0)));
    }
  }
  return tables;
}

// The box of everything drawn; an A4 sheet when there is nothing.
Box ExtentsOf(const Drawing &drawing, const Tables &tables) {
  if (drawing.extents) return *drawing.extents;
  Box box;
  ElementRecord element{};
  for (const Record &record : drawing.records) {
    if (IsTable(record.kind)) continue;
    FillElement(record, drawing.names, element);
    const auto layer = tables.layerWidths.find(drawing.names[record.layer]);
    const bool byLayer = layer != tables.layerWidths.end() && layer->second >= 0;
    box.Merge(BoundsOf(element, byLayer ? layer->second : WidthOf(element)));
  }
  if (box.empty()) return {0, 0, 210, 297};
  // A page of no area is no page.
  if (box.width() <= 0 || box.height() <= 0) box.Grow(1);
  return box;
}

class DrawingWriter {
 public:
  // `folder`: that the drawing's pictures are named from.
  DrawingWriter(const Drawing &drawing, const Tables &tables, const std::string &folder, Filter &filter,
                Progress &progress)
      : drawing_(drawing),
        tables_(tables),
        folder_(PathOf(folder)),
        plan_(PlanRasters(drawing)),
        filter_(filter),
        progress_(progress) {
    element_.progress = progress.object();
  }

  // Properties come first: the page's dictionary is closed with their section. Rasters come ahead of everything drawn:
  // the module cannot take them once the content is open.
  Outcome Write() {
    InitElement(element_);
    Begin(KAPDF_SECTION_PAGE);
    Outcome outcome = WriteKinds([](uint32_t kind) { return kind == ElemNamedProperty; });
    End(KAPDF_SECTION_PAGE);
    if (!outcome.ok()) return outcome;
    Begin(KAPDF_SECTION_TABLES);
    DefineMissingLayers();
    outcome = WriteKinds(IsTable);
    End(KAPDF_SECTION_TABLES);
    if (!outcome.ok()) return outcome;
    Begin(KAPDF_SECTION_DRAWING);
    outcome = WriteRasters();
    if (outcome.ok()) {
      outcome =
          WriteKinds([](uint32_t kind) { return kind != ElemNamedProperty && !IsTable(kind) && !IsRaster(kind); });
    }
    if (outcome.ok()) {
      InitElement(element_);
      element_.kind = ElemEndOfPage;
      filter_.table().WriteElement(filter_.get(), &element_);
    }
    End(KAPDF_SECTION_DRAWING);
    return outcome;
  }

  const KindCounts &written() const { return written_; }
  const KindCounts &refused() const { return refused_; }
  const KindCounts &drawnPlain() const { return drawnPlain_; }

 private:
  void Begin(int32_t section) { filter_.table().BeginSection(filter_.get(), section, 0, 0); }
  void End(int32_t section) { filter_.table().EndSection(filter_.get(), section, 0, 0); }

  template <class Wanted>
  Outcome WriteKinds(Wanted wanted) {
    for (size_t i = 0; i < drawing_.records.size(); ++i) {
      const Record &record = drawing_.records[i];
      if (!wanted(record.kind)) continue;
      FillElement(record, drawing_.names, element_);
      if (record.kind == ElemRasterPlacement && !FindImage(i)) {
        refused_.Count(record.kind);
        continue;
      }
      if (Outcome written = WriteOne(); !written.ok()) return written;
      if (progress_.Report(static_cast<double>(++done_) / static_cast<double>(drawing_.records.size()))) {
        return Interrupted();
      }
    }
    return {};
  }

  // False when the placement's image is not there.
  bool FindImage(size_t placement) {
    const auto image = plan_.placed.find(placement);
    if (image == plan_.placed.end() || missingImages_.contains(image->second)) return false;
    element_.imageKey = plan_.images[image->second].key;
    return true;
  }

  Outcome WriteRasters() {
    ProgressObject *const progress = element_.progress;
    element_.progress = nullptr;  // a raster's own
    Outcome outcome;
    for (size_t i = 0; i < plan_.images.size() && outcome.ok(); ++i) {
      outcome = WriteRaster(i);
      progress_.Report(static_cast<double>(++done_) / static_cast<double>(drawing_.records.size()));
    }
    element_.progress = progress;
    return outcome;
  }

  // An image without rows, or with fewer than it lacks, is none.
  Outcome WriteRaster(size_t index) {
    const RasterPlan::Image &image = plan_.images[index];
    const Record &header = drawing_.records[image.header];
    FillElement(header, drawing_.names, element_);
    PictureRows picture;
    if (header.file) {
      if (Outcome opened = picture.Open(folder_ / PathOf(*header.file), *header.file, element_); !opened.ok()) {
        return opened;
      }
    }
    RasterHeaderPayload shape{};
    CopyPayload(element_, shape);
    const size_t lines = image.rowsEnd - image.header - 1;
    if ((!header.file && lines < (size_t{shape.height} + 1) / 2) || !Taken(Send())) {
      refused_.Count(ElemRasterHeader);
      missingImages_.insert(index);
      return {};
    }
    written_.Count(ElemRasterHeader);
    InitElement(element_);
    return header.file ? WritePictureRows(picture, shape) : WriteRowLines(image, shape);
  }

  Outcome WritePictureRows(PictureRows &picture, const RasterHeaderPayload &shape) {
    element_.kind = ElemRasterRows;
    for (uint32_t row = 0; row < shape.height; ++row) {
      if (Outcome read = picture.Next(element_); !read.ok()) return read;
      if (!Taken(Send())) refused_.Count(ElemRasterRows);
      if (InterruptGuard::Requested()) return Interrupted();
    }
    return {};
  }

  // What does not come as a line is a row of zeros.
  Outcome WriteRowLines(const RasterPlan::Image &image, const RasterHeaderPayload &shape) {
    uint32_t rows = 0;
    for (size_t i = image.header + 1; i < image.rowsEnd; ++i) {
      FillElement(drawing_.records[i], drawing_.names, element_);
      const bool taken = Taken(Send());
      (taken ? written_ : refused_).Count(ElemRasterRows);
      rows += taken ? 1 : 0;
      if (InterruptGuard::Requested()) return Interrupted();
    }
    const bool bilevel = (shape.pixelType & 0xFFFF) == 0;
    std::vector<uint8_t> zeros(bilevel ? 4 : size_t{shape.width} * 4);
    element_.payload = zeros.data();
    element_.payloadBytes = static_cast<uint32_t>(zeros.size());
    for (; rows < shape.height && Taken(Send()); ++rows) {
      if (InterruptGuard::Requested()) return Interrupted();
    }
    return {};
  }

  uint32_t Send() { return filter_.table().WriteElement(filter_.get(), &element_); }
  static bool Taken(uint32_t result) { return result == FilterOk || result == FilterConsumed; }

  // Layers that elements stand on without a definition: black, with the elements' own widths.
  void DefineMissingLayers() {
    std::set<uint32_t> seen;
    for (const Record &record : drawing_.records) {
      const Kind *kind = FindKind(record.kind);
      if (!kind->drawn || !seen.insert(record.layer).second) continue;
      std::u16string name = drawing_.names[record.layer];
      if (tables_.layerWidths.contains(name)) continue;
      std::u16string lineType = u"Continuous";
      LayerDefPayload layer{};
      layer.name = name.data();
      layer.lineType = lineType.data();
      layer.color = KAPDF_COLOR_BLACK;
      layer.width = -2;
      ElementRecord definition{};
      InitElement(definition);
      definition.kind = ElemLayerDef;
      definition.section = KAPDF_SECTION_TABLES;
      definition.payload = &layer;
      definition.payloadBytes = sizeof layer;
      SetName(definition.layerName, name);
      filter_.table().WriteElement(filter_.get(), &definition);
    }
  }

  Outcome WriteOne() {
    const uint32_t kind = element_.kind;
    const uint32_t result = Send();
    if (result == FilterUnsupported) return WriteInPieces(kind);
    if (result == FilterCancelled) return Interrupted();
    // Tables are always taken so, and a property or a raster may be.
    (Taken(result) ? written_ : refused_).Count(kind);
    return {};
  }

  // A line type with a pattern is the one reason for a refusal that can be mended here.
  Outcome WriteInPieces(uint32_t kind) {
    const auto pattern = tables_.patterns.find(element_.styleName);
    DashResult result = DashResult::kNotMine;
    bool accepted = true;
    if (pattern != tables_.patterns.end()) {
      result = BreakIntoDashes(element_, pattern->second, [&](ElementRecord &piece) {
        accepted = accepted && filter_.table().WriteElement(filter_.get(), &piece) == FilterOk;
        return !InterruptGuard::Requested();
      });
    }
    if (result == DashResult::kStopped) return Interrupted();
    const bool drawn = accepted && result != DashResult::kNotMine;
    (drawn ? written_ : refused_).Count(kind);
    if (drawn && result == DashResult::kPlain) drawnPlain_.Count(kind);
    return {};
  }

  const Drawing &drawing_;
  const Tables &tables_;
  std::filesystem::path folder_;
  RasterPlan plan_;
  std::set<size_t> missingImages_;
  Filter &filter_;
  Progress &progress_;
  ElementRecord element_{};
  size_t done_ = 0;
  KindCounts written_, refused_, drawnPlain_;
};

Outcome LoadDrawing(const Session &session, const ExportRequest &request, Drawing &drawing) {
  if (request.drawing == "-") return ReadDrawing(session.streams.in, "the standard input", request.page, drawing);
  std::ifstream in(PathOf(request.drawing), std::ios::binary);
  if (!in) return Fail("cannot read " + request.drawing);
  return ReadDrawing(in, request.drawing, request.page, drawing);
}

void RemoveOutput(const std::string &path) {
  std::error_code ignored;
  std::filesystem::remove(PathOf(path), ignored);
}

}  // namespace

Outcome RunExport(const Session &session, const ExportRequest &request) {
  Drawing drawing;
  if (Outcome loaded = LoadDrawing(session, request, drawing); !loaded.ok()) return loaded;
  const Tables tables = CollectTables(drawing);
  const Box extents = ExtentsOf(drawing, tables);

  Filter filter;
  if (Outcome made = filter.Create(session.module.WritingRow(), session.registryPath); !made.ok()) return made;
  Progress progress(session.streams.err, session.showProgress);
  FileInfo info{};
  info.xmin = extents.xmin;
  info.ymin = extents.ymin;
  info.xmax = extents.xmax;
  info.ymax = extents.ymax;
  info.pageCount = 1;
  info.pageIndex = kNewDocument;
  const std::u16string options = ToUtf16(request.options);
  const uint32_t result = filter.table().OpenWrite(filter.get(), ToUtf16(request.output).c_str(), &info,
                                                   progress.object(), options.empty() ? nullptr : options.c_str());
  if (result != FilterOk) {
    filter.table().Close(filter.get());
    // With any other result the file has been made or emptied already.
    if (result != FilterCannotWrite) RemoveOutput(request.output);
    return Fail("cannot write " + request.output + ": " + OpenResult(result));
  }
  DrawingWriter writer(drawing, tables, request.folder, filter, progress);
  Outcome outcome = writer.Write();
  filter.table().Close(filter.get());
  progress.Clear();
  if (!outcome.ok()) {
    RemoveOutput(request.output);
    return outcome;
  }
  std::ostream &err = session.streams.err;
  if (!session.quiet) err << "kapdf: " << request.output << ": " << writer.written().Tell() << "\n";
  if (!writer.drawnPlain().empty()) {
    err << "kapdf: drawn without dashes, which are too fine or have no length: " << writer.drawnPlain().Tell() << "\n";
  }
  if (!writer.refused().empty()) err << "kapdf: the module does not draw: " << writer.refused().Tell() << "\n";
  return {};
}

}  // namespace kapdf::tool
