#include <deque>

#include "commands/commands.h"
#include "module/page_reader.h"
#include "module/page_writer.h"
#include "module/pdf_output.h"
#include "pictures/raster_for_export.h"
#include "records/coordinate_system.h"
#include "records/kinds.h"
#include "records/record.h"

namespace kapdf::tool {
namespace {

// A page is read up to three times, so that neither its elements nor its rasters have to be kept: for what the export
// must know ahead, for the rasters, which go ahead of everything drawn, and for the elements.
constexpr int kPasses = 3;

struct Property {
  std::u16string name;
  uint32_t type;
  std::optional<std::u16string> value;
};

std::optional<std::u16string> TextOf(const char16_t *text) {
  return text == nullptr ? std::nullopt : std::optional<std::u16string>(text);
}

// Properties, definitions and extents.
class Survey : public RecordSink {
 public:
  Outcome BeginPage(int, int) override { return {}; }
  RasterWish rasters() const override { return RasterWish::kHeaders; }
  Outcome Take(const ElementRecord &record) override {
    if (record.kind == ElemNamedProperty) {
      KeepProperty(record);
    } else if (record.kind == ElemRasterHeader) {
      box_.Merge(BoundsOfRaster(placement_, record));
      anyRaster_ = true;
    } else if (IsTable(record.kind)) {
      tables_.Note(record);
    } else if (!IsRaster(record.kind)) {
      TakeDrawn(record);
    }
    return {};
  }
  Outcome EndPage() override { return {}; }

  const Box &box() const { return box_; }
  const Tables &tables() const { return tables_; }
  bool anyRaster() const { return anyRaster_; }
  std::deque<Property> &properties() { return properties_; }
  // That elements stand on, in the order of their first one.
  const std::vector<std::u16string> &layers() const { return layers_; }

 private:
  void TakeDrawn(const ElementRecord &record) {
    if (record.kind == ElemRasterPlacement) {
      place_ = {};
      CopyPayload(record, place_);
      placement_ = record;
      placement_.payload = &place_;
    } else {
      box_.Merge(BoundsOf(record, tables_.StrokeWidth(record)));
    }
    if (!FindKind(record.kind)->drawn || (!layers_.empty() && lastLayer_ == record.layerName)) return;
    lastLayer_ = record.layerName;
    if (seenLayers_.insert(lastLayer_).second) layers_.push_back(lastLayer_);
  }
  void KeepProperty(const ElementRecord &record) {
    NamedPropertyPayload property;
    if (!CopyPayload(record, property) || property.name == nullptr) return;
    const auto system = CoordinateSystemOf(record);
    properties_.push_back({property.name, property.type, system ? ValueForExport(*system) : TextOf(property.value)});
  }

  Box box_;
  Tables tables_;
  bool anyRaster_ = false;
  std::deque<Property> properties_;
  std::vector<std::u16string> layers_;
  std::unordered_set<std::u16string> seenLayers_;
  std::u16string lastLayer_;
  ElementRecord placement_{};  // the last one, for the header that follows it
  RasterPlacementPayload place_{};
};

// The rasters with their rows. The module knows an image by its identity: the first that is placed is the first image.
class RasterPass : public RecordSink {
 public:
  explicit RasterPass(PageWriter &page) : page_(page) {}
  Outcome BeginPage(int, int) override { return {}; }
  Outcome Take(const ElementRecord &record) override {
    if (record.kind == ElemRasterPlacement) images_.push_back(0);
    if (!IsRaster(record.kind) || images_.empty()) return {};
    record_ = record;
    record_.progress = nullptr;  // a raster's own
    if (record.kind == ElemRasterHeader) {
      open_ = raster_.Open(record_) && page_.OpenRaster(record_);
      if (open_) images_.back() = ++written_;
    } else if (open_) {
      raster_.Convert(record_);
      page_.WriteRow(record_) ? page_.Count(record.kind) : page_.Refuse(record.kind);
    }
    return {};
  }
  Outcome EndRaster() override {
    if (open_) page_.FillRaster();
    open_ = false;
    return {};
  }
  Outcome EndPage() override { return {}; }

  // For each placement of the page its image's identity, 0 for none.
  const std::vector<uint64_t> &images() const { return images_; }

 private:
  PageWriter &page_;
  RasterForExport raster_;
  ElementRecord record_{};
  std::vector<uint64_t> images_;
  uint64_t written_ = 0;
  bool open_ = false;
};

// The elements, with their definitions as they come.
class DrawingPass : public RecordSink {
 public:
  DrawingPass(PageWriter &page, const std::vector<uint64_t> &images) : page_(page), images_(images) {}
  Outcome BeginPage(int, int) override { return {}; }
  RasterWish rasters() const override { return RasterWish::kNothing; }
  Outcome Take(const ElementRecord &record) override {
    if (record.kind == ElemNamedProperty || IsRaster(record.kind)) return {};
    record_ = record;
    record_.next = nullptr;
    if (record.kind == ElemRasterPlacement) {
      record_.imageKey = placements_ < images_.size() ? images_[placements_] : 0;
      ++placements_;
      if (record_.imageKey == 0) {
        page_.Refuse(record.kind);
        return {};
      }
    }
    page_.Enter(IsTable(record.kind) ? KAPDF_SECTION_TABLES : KAPDF_SECTION_DRAWING);
    return page_.Write(record_);
  }
  Outcome EndPage() override { return {}; }

 private:
  PageWriter &page_;
  const std::vector<uint64_t> &images_;
  size_t placements_ = 0;
  ElementRecord record_{};
};

Outcome WriteProperties(PageWriter &page, std::deque<Property> &properties) {
  page.Enter(KAPDF_SECTION_PAGE);
  for (Property &kept : properties) {
    NamedPropertyPayload property{};
    property.name = kept.name.data();
    property.type = kept.type;
    property.value = kept.value ? kept.value->data() : nullptr;
    ElementRecord record{};
    InitElement(record);
    record.kind = ElemNamedProperty;
    record.payload = &property;
    record.payloadBytes = sizeof property;
    if (Outcome written = page.Write(record); !written.ok()) return written;
  }
  return {};
}

class Converter {
 public:
  Converter(const Session &session, const ConvertRequest &request)
      : request_(request),
        progress_(session.streams.err, session.showProgress),
        reader_(session, request.file),
        output_(session, request.target) {}

  Outcome Run() {
    if (Outcome opened = reader_.Open(); !opened.ok()) return opened;
    const int first = request_.all ? 1 : request_.page.value_or(1);
    const int pages = request_.all ? reader_.pages() : 1;
    if (first < 1 || first > reader_.pages()) return NoSuchPage(request_.file, first, reader_.pages());
    if (request_.target.replace && pages > 1) return FailUsage("--replace takes one page only");
    if (Outcome prepared = output_.Prepare(pages); !prepared.ok()) return prepared;
    for (int i = 0; i < pages; ++i) {
      part_ = i * kPasses;
      parts_ = pages * kPasses;
      if (Outcome converted = ConvertPage(first + i); !converted.ok()) return converted;
    }
    progress_.Clear();
    if (Outcome kept = output_.Keep(); !kept.ok()) return kept;
    output_.TellSummary();
    return {};
  }

 private:
  Outcome Read(int page, RecordSink &sink) {
    progress_.SetPart(part_++, parts_);
    return reader_.Read(page, "", progress_, sink);
  }
  Outcome ConvertPage(int number) {
    Survey survey;
    if (Outcome read = Read(number, survey); !read.ok()) return read;
    if (Outcome begun = output_.BeginPage(SheetFor(survey.box()), progress_); !begun.ok()) return begun;
    PageWriter page(output_.filter(), survey.tables());
    if (Outcome written = WriteProperties(page, survey.properties()); !written.ok()) return written;
    page.Enter(KAPDF_SECTION_TABLES);
    for (const std::u16string &layer : survey.layers()) {
      if (!survey.tables().layerWidths.contains(layer)) page.DefineLayer(layer);
    }
    page.Enter(KAPDF_SECTION_DRAWING);
    RasterPass rasters(page);
    if (survey.anyRaster()) {
      if (Outcome read = Read(number, rasters); !read.ok()) return read;
    } else {
      ++part_;
    }
    DrawingPass drawing(page, rasters.images());
    if (Outcome read = Read(number, drawing); !read.ok()) return read;
    page.Enter(KAPDF_SECTION_DRAWING);
    page.EndPage();
    return output_.EndPage(page);
  }

  const ConvertRequest &request_;
  Progress progress_;
  PageReader reader_;
  PdfOutput output_;
  int part_ = 0, parts_ = 1;
};

}  // namespace

Outcome RunConvert(const Session &session, const ConvertRequest &request) { return Converter(session, request).Run(); }

}  // namespace kapdf::tool
