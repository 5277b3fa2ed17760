#include <fstream>
#include <set>

#include "commands/commands.h"
#include "commands/raster_plan.h"
#include "jsonl/drawing.h"
#include "module/page_writer.h"
#include "module/pdf_output.h"
#include "pictures/picture_rows.h"
#include "pictures/raster_for_export.h"
#include "records/kinds.h"
#include "system/progress.h"
#include "system/utf.h"

namespace kapdf::tool {
namespace {

Tables CollectTables(const Drawing &drawing) {
  Tables tables;
  ElementRecord element{};
  for (const Record &record : drawing.records) {
    if (!IsTable(record.kind)) continue;
    FillElement(record, drawing.names, element);
    tables.Note(element);
  }
  return tables;
}

// The box of everything drawn; an A4 sheet when there is nothing.
Box ExtentsOf(const Drawing &drawing, const Tables &tables, const RasterPlan &plan) {
  if (drawing.extents) return *drawing.extents;
  Box box;
  ElementRecord element{}, header{};
  for (size_t i = 0; i < drawing.records.size(); ++i) {
    const Record &record = drawing.records[i];
    if (IsTable(record.kind)) continue;
    FillElement(record, drawing.names, element);
    if (const auto placed = plan.placed.find(i); placed != plan.placed.end()) {
      FillElement(drawing.records[plan.images[placed->second].header], drawing.names, header);
      box.Merge(BoundsOfRaster(element, header));
    } else {
      box.Merge(BoundsOf(element, tables.StrokeWidth(element)));
    }
  }
  return SheetFor(box);
}

class DrawingWriter {
 public:
  // `folder`: that the drawing's pictures are named from.
  DrawingWriter(const Drawing &drawing, const Tables &tables, const RasterPlan &plan, const std::string &folder,
                PageWriter &page, Progress &progress)
      : drawing_(drawing), tables_(tables), plan_(plan), folder_(PathOf(folder)), page_(page), progress_(progress) {}

  // Properties come first: the page's dictionary is closed with their section. Rasters come ahead of everything drawn:
  // the module cannot take them once the content is open.
  Outcome Write() {
    element_.progress = progress_.object();
    InitElement(element_);
    page_.Enter(KAPDF_SECTION_PAGE);
    Outcome outcome = WriteKinds([](uint32_t kind) { return kind == ElemNamedProperty; });
    if (!outcome.ok()) return outcome;
    page_.Enter(KAPDF_SECTION_TABLES);
    DefineMissingLayers();
    outcome = WriteKinds(IsTable);
    if (!outcome.ok()) return outcome;
    page_.Enter(KAPDF_SECTION_DRAWING);
    outcome = WriteRasters();
    if (!outcome.ok()) return outcome;
    outcome = WriteKinds([](uint32_t kind) { return kind != ElemNamedProperty && !IsTable(kind) && !IsRaster(kind); });
    if (outcome.ok()) page_.EndPage();
    return outcome;
  }

 private:
  template <class Wanted>
  Outcome WriteKinds(Wanted wanted) {
    for (size_t i = 0; i < drawing_.records.size(); ++i) {
      const Record &record = drawing_.records[i];
      if (!wanted(record.kind)) continue;
      FillElement(record, drawing_.names, element_);
      if (record.kind == ElemRasterPlacement && !FindImage(i)) {
        page_.Refuse(record.kind);
        continue;
      }
      if (Outcome written = page_.Write(element_); !written.ok()) return written;
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
    // Runs that an import marked as the ground become the ink. Other forms go out as they stand.
    RasterForExport inks;
    const bool grounds = !header.file && IsBilevel(shape) && inks.Open(element_);
    const size_t lines = image.rowsEnd - image.header - 1;
    const bool enough = header.file || lines >= (size_t{shape.height} + 1) / 2;
    if (!enough) page_.Refuse(ElemRasterHeader);
    if (!enough || !page_.OpenRaster(element_)) {
      missingImages_.insert(index);
      return {};
    }
    InitElement(element_);
    return header.file ? WritePictureRows(picture, shape) : WriteRowLines(image, grounds ? &inks : nullptr);
  }

  Outcome WritePictureRows(PictureRows &picture, const RasterHeaderPayload &shape) {
    element_.kind = ElemRasterRows;
    for (uint32_t row = 0; row < shape.height; ++row) {
      if (Outcome read = picture.Next(element_); !read.ok()) return read;
      if (!page_.WriteRow(element_)) page_.Refuse(ElemRasterRows);
      if (InterruptGuard::Requested()) return Interrupted();
    }
    return {};
  }

  Outcome WriteRowLines(const RasterPlan::Image &image, RasterForExport *inks) {
    for (size_t i = image.header + 1; i < image.rowsEnd; ++i) {
      FillElement(drawing_.records[i], drawing_.names, element_);
      if (inks) inks->Convert(element_);
      page_.WriteRow(element_) ? page_.Count(ElemRasterRows) : page_.Refuse(ElemRasterRows);
      if (InterruptGuard::Requested()) return Interrupted();
    }
    page_.FillRaster();
    return InterruptGuard::Requested() ? Interrupted() : Outcome{};
  }

  void DefineMissingLayers() {
    std::set<uint32_t> seen;
    for (const Record &record : drawing_.records) {
      if (!FindKind(record.kind)->drawn || !seen.insert(record.layer).second) continue;
      const std::u16string &name = drawing_.names[record.layer];
      if (!tables_.layerWidths.contains(name)) page_.DefineLayer(name);
    }
  }

  const Drawing &drawing_;
  const Tables &tables_;
  const RasterPlan &plan_;
  std::filesystem::path folder_;
  PageWriter &page_;
  Progress &progress_;
  std::set<size_t> missingImages_;
  ElementRecord element_{};
  size_t done_ = 0;
};

Outcome LoadDrawing(const Session &session, const std::string &path, std::optional<int> page, Drawing &drawing) {
  if (path == "-") return ReadDrawing(session.streams.in, "the standard input", page, drawing);
  std::ifstream in(PathOf(path), std::ios::binary);
  if (!in) return Fail("cannot read " + path);
  return ReadDrawing(in, path, page, drawing);
}

Outcome WriteDrawing(const Drawing &drawing, const std::string &folder, PdfOutput &output, Progress &progress) {
  const Tables tables = CollectTables(drawing);
  const RasterPlan plan = PlanRasters(drawing);
  if (Outcome begun = output.BeginPage(ExtentsOf(drawing, tables, plan), progress); !begun.ok()) return begun;
  PageWriter page(output.filter(), tables);
  Outcome outcome = DrawingWriter(drawing, tables, plan, folder, page, progress).Write();
  return outcome.ok() ? output.EndPage(page) : outcome;
}

}  // namespace

Outcome RunExport(const Session &session, const ExportRequest &request) {
  const int pages = static_cast<int>(request.drawings.size());
  Progress progress(session.streams.err, session.showProgress);
  PdfOutput output(session, request.target);
  if (Outcome prepared = output.Prepare(pages); !prepared.ok()) return prepared;
  for (int i = 0; i < pages; ++i) {
    progress.SetPart(i, pages);
    const std::string &path = request.drawings[static_cast<size_t>(i)];
    const std::string folder = path == "-" ? request.folder : Utf8Of(PathOf(path).parent_path());
    Drawing drawing;
    if (Outcome loaded = LoadDrawing(session, path, request.page, drawing); !loaded.ok()) return loaded;
    if (Outcome written = WriteDrawing(drawing, folder, output, progress); !written.ok()) return written;
  }
  progress.Clear();
  if (Outcome kept = output.Keep(); !kept.ok()) return kept;
  output.TellSummary();
  return {};
}

}  // namespace kapdf::tool
