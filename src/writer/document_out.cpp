// Objects have CR as their line end.
#include "writer/document_out.h"

#include <utility>

#include "platform/file.h"
#include "writer/metadata.h"

namespace kapdf {
namespace {

using namespace std::string_view_literals;

constexpr size_t kTitleBytes = 255;
// Behind the packet, where it stands first and where the table finds it. The zero byte is deliberate.
constexpr std::string_view kFirstPacketEnd = "\r\nendstream\rendobj\r";
constexpr std::string_view kLastPacketEnd = "\n\rendstream\rendobj\r\0"sv;

}  // namespace

void DocumentOut::Continue(ExistingDocument existing, int32_t pageIndex) {
  oldPages_ = std::move(existing.pages);
  pageIndex_ = static_cast<int64_t>(oldPages_.size()) <= pageIndex ? kAddPage : pageIndex;
  objects_.Continue(std::move(existing.table));
}

void DocumentOut::Start(std::u16string_view path) {
  objects_.text().Text(options_.pdfa != 0 ? "%PDF-1.4\r" : "%PDF-1.5\r").Text("%\xFF\xFF\xFF\xFF\r");
  const auto moment = platform::LocalMoment::Now();
  const std::string title = NarrowText(platform::FileNameOf(path), kTitleBytes);
  objects_.Begin();
  WriteInfo(moment, title);
  if (options_.pdfa != 0) {
    // The offset is fixed, whatever the time zone.
    metadata_ = MetadataPacket({moment.Date("yyyy-MM-dd") + "T" + moment.Time("HH:mm:ss") + "+02:00", title,
                                options_.subject, options_.copyright, options_.author, options_.keywords});
  }
  WriteCatalog();
  if (options_.pdfa != 0) WriteMetadata(kFirstPacketEnd);
}

void DocumentOut::WriteInfo(const platform::LocalMoment &moment, std::string_view title) {
  TextOut &out = objects_.text();
  out.BeginObject(objects_.ReserveHere()).Text("<<\r/Creator(kaPDF.dll Version 2.2)/CreationDate ");
  out.String("D:" + moment.Date("yyyyMMdd") + moment.Time("HHmmss")).Text("\r/Producer (ZV Software V12)\r/Author ");
  out.String(options_.author).Text("\r/Title ").String(title).Text("\r");
  if (!options_.subject.empty()) out.Text("/Subject ").String(options_.subject).Text("\r");
  if (!options_.keywords.empty()) out.Text("/Keywords ").String(options_.keywords).Text("\r");
  out.Text(">>\rendobj\r");
}

void DocumentOut::WriteCatalog() {
  TextOut &out = objects_.text();
  out.BeginObject(objects_.ReserveHere()).Text("<<\r/Type /Catalog\r/Pages ");
  if (options_.pdfa != 0) {
    metadataObject_ = objects_.Reserve();
    pagesObject_ = objects_.Reserve();
    out.Reference(pagesObject_).Text("\r/Metadata ").Reference(metadataObject_).Text("\r");
  } else {
    optionalContentObject_ = objects_.ReserveHere();
    pagesObject_ = objects_.Reserve();
    out.Reference(pagesObject_).Text("\r/OCProperties ").Reference(optionalContentObject_);
    out.Text("\r/PageMode /UseOC");  // no line end: the name runs into the closing brackets
  }
  out.Text(">>\rendobj\r");
}

// Stands in the file twice: behind the catalogue, where it takes its place in the table, and behind the page, where it
// is found. The line of the keyword ends in LF and CR, and neither counts for the length: so readers see the CR and
// miss the last byte of the packet. That is how these files have always been.
void DocumentOut::WriteMetadata(std::string_view end) {
  TextOut &out = objects_.BeginReserved(metadataObject_).Text("<<\r/Type /Metadata\r/Subtype /XML\r/Length ");
  out.Integer(static_cast<int64_t>(metadata_.size())).Text("\r>>\rstream\n\r").Text(metadata_).Text(end);
}

void DocumentOut::WriteMetadataAgain() {
  if (metadataObject_ > 0) WriteMetadata(kLastPacketEnd);
}

void DocumentOut::WritePages(int32_t page) {
  objects_.PlaceHere();
  const size_t pages = objects_.continues() ? oldPages_.size() + (pageIndex_ == kAddPage ? 1 : 0) : 1;
  TextOut &out = objects_.text();
  out.BeginObject(pagesObject_)
      .Text("<<\r/Type /Pages\r/Count ")
      .Integer(static_cast<int64_t>(pages))
      .Text("\r/Kids [");
  WriteKids(page);
  out.Text("]\r>>\rendobj\r");
}

// Old pages keep the parent that they name.
void DocumentOut::WriteKids(int32_t page) {
  TextOut &out = objects_.text();
  if (!objects_.continues()) {
    out.Reference(page);
    return;
  }
  for (size_t i = 0; i < oldPages_.size(); ++i) {
    const bool replaced = pageIndex_ >= 0 && static_cast<size_t>(pageIndex_) == i;
    out.Reference(replaced ? page : static_cast<int32_t>(oldPages_[i])).Byte(' ');
  }
  if (pageIndex_ == kAddPage) out.Reference(page).Byte(' ');
}

// One group a layer, in the order of the table. All are listed as they come, those that are off a second time.
void DocumentOut::WriteOptionalContent(const LayerTable &layers) {
  if (options_.pdfa != 0) return;
  TextOut &out = objects_.text();
  firstGroupObject_ = objects_.Next();
  const auto list = [&](const char *head, bool offOnly) {
    out.Text(head);
    int32_t number = firstGroupObject_;
    for (const Layer &layer : layers.all()) {
      if (layer.off || !offOnly) out.Reference(number).Byte(' ');
      ++number;
    }
    out.Text("]\r");
  };
  objects_.MoveHere(optionalContentObject_);
  out.Integer(optionalContentObject_).Text(" 0 obj <</D <<");
  list("/OFF [", true);
  list("/Order [", false);
  out.Text(">>\r");
  list("/OCGs [", false);
  out.Text(">> endobj\r");
  for (const Layer &layer : layers.all()) {
    const int32_t number = objects_.ReserveHere();
    out.Integer(number).Text(" 0 obj <</Name ").String(NarrowText(layer.name, std::string::npos));
    out.Text(" /Type /OCG >>\rendobj\r");
  }
}

void DocumentOut::WriteLayerResources(const LayerTable &layers) {
  if (options_.pdfa != 0) return;
  TextOut &out = objects_.text();
  out.Text("/Properties <<\r");
  for (int32_t i = 0; i < static_cast<int32_t>(layers.all().size()); ++i) {
    out.Text("/oc").Integer(i).Byte(' ').Reference(firstGroupObject_ + i).Byte(' ');
  }
  out.Text(">>\r");
}

}  // namespace kapdf
