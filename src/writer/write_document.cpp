// The document around the page's content. Objects have CR as their line end.
#include "platform/environment.h"
#include "platform/file.h"
#include "writer/existing_document.h"
#include "writer/metadata.h"
#include "writer/write_file.h"
#include "writer/xref_stream.h"

namespace kapdf {
namespace {

using namespace std::string_view_literals;

constexpr size_t kTitleBytes = 255;
// Behind the packet, where it stands first and where the table finds it. The zero byte is deliberate.
constexpr std::string_view kFirstPacketEnd = "\r\nendstream\rendobj\r";
constexpr std::string_view kLastPacketEnd = "\n\rendstream\rendobj\r\0"sv;

}  // namespace

uint32_t CPDFWriteFile::Start(FileInfo &info) {
  SetPage(info.pageIndex, info.pageCount);
  if (pageIndex_ != kNewDocument) TakeExistingDocument();
  started_ = true;

  WriteHeader();
  const auto moment = platform::LocalMoment::Now();
  title_ = NarrowText(platform::FileNameOf(path_), kTitleBytes);
  xref_.BeginSection(firstObject_);
  WriteInfo(moment);
  if (options_.pdfa != 0) {
    // The offset is fixed, whatever the time zone.
    metadata_ = MetadataPacket({moment.Date("yyyy-MM-dd") + "T" + moment.Time("HH:mm:ss") + "+02:00", title_,
                                options_.subject, options_.copyright, options_.author, options_.keywords});
  }
  WriteCatalog();
  if (metadataObject_ > 0) WriteMetadata(kFirstPacketEnd);

  if (!(options_.paperFrame > 0)) options_.paperFrame = 0;
  page_ = LayOutPage(info, options_.paperFrame, options_.atOrigin != 0);
  info.xmin = page_.xmin;
  info.ymin = page_.ymin;
  info.xmax = page_.xmax;
  info.ymax = page_.ymax;
  WritePages();
  OpenPageDictionary();
  return FilterOk;
}

void CPDFWriteFile::TakeExistingDocument() {
  if (auto existing = ReadExistingDocument(document_, registryPath())) {
    xref_ = std::move(existing->table);
    oldPages_ = std::move(existing->pages);
    firstObject_ = xref_.HighestObject() + 1;
    objectsAllocated_ = 0;
    if (static_cast<int64_t>(oldPages_.size()) <= pageIndex_) pageIndex_ = kAddPage;
  }
  Seek(0, SeekOrigin::kEnd);
}

void CPDFWriteFile::WriteHeader() {
  out_.Text(options_.pdfa != 0 ? "%PDF-1.4\r" : "%PDF-1.5\r").Text("%\xFF\xFF\xFF\xFF\r");
}

void CPDFWriteFile::WriteInfo(const platform::LocalMoment &moment) {
  out_.BeginObject(ReserveHere()).Text("<<\r/Creator(kaPDF.dll Version 2.2)/CreationDate ");
  out_.String("D:" + moment.Date("yyyyMMdd") + moment.Time("HHmmss")).Text("\r/Producer (ZV Software V12)\r/Author ");
  out_.String(options_.author).Text("\r/Title ").String(title_).Text("\r");
  if (!options_.subject.empty()) out_.Text("/Subject ").String(options_.subject).Text("\r");
  if (!options_.keywords.empty()) out_.Text("/Keywords ").String(options_.keywords).Text("\r");
  out_.Text(">>\rendobj\r");
}

void CPDFWriteFile::WriteCatalog() {
  out_.BeginObject(ReserveHere()).Text("<<\r/Type /Catalog\r/Pages ");
  if (options_.pdfa != 0) {
    metadataObject_ = Reserve();
    pagesObject_ = Reserve();
    out_.Reference(pagesObject_).Text("\r/Metadata ").Reference(metadataObject_).Text("\r");
  } else {
    optionalContentObject_ = ReserveHere();
    pagesObject_ = Reserve();
    out_.Reference(pagesObject_).Text("\r/OCProperties ").Reference(optionalContentObject_);
    out_.Text("\r/PageMode /UseOC");  // no line end: the name runs into the closing brackets
  }
  out_.Text(">>\rendobj\r");
}

// Stands in the file twice: behind the catalogue, where it takes its place in the table, and behind the page, where it
// is found. The line of the keyword ends in LF and CR, and neither counts for the length: so readers see the CR and
// miss the last byte of the packet. That is how these files have always been.
void CPDFWriteFile::WriteMetadata(std::string_view end) {
  BeginReserved(metadataObject_).Text("<<\r/Type /Metadata\r/Subtype /XML\r/Length ");
  out_.Integer(static_cast<int64_t>(metadata_.size())).Text("\r>>\rstream\n\r").Text(metadata_).Text(end);
}

void CPDFWriteFile::WritePages() {
  AppendHere();
  const size_t pages = firstObject_ == 0 ? 1 : oldPages_.size() + (pageIndex_ == kAddPage ? 1 : 0);
  out_.BeginObject(pagesObject_).Text("<<\r/Type /Pages\r/Count ").Integer(static_cast<int64_t>(pages)).Text("\r");
  pageObject_ = Reserve();
  out_.Text("/Kids [");
  WriteKids();
  out_.Text("]\r>>\rendobj\r");
}

// Old pages keep the parent that they name.
void CPDFWriteFile::WriteKids() {
  if (firstObject_ == 0) {
    out_.Reference(pageObject_);
    return;
  }
  for (size_t i = 0; i < oldPages_.size(); ++i) {
    const bool replaced = pageIndex_ >= 0 && static_cast<size_t>(pageIndex_) == i;
    out_.Reference(replaced ? pageObject_ : static_cast<int32_t>(oldPages_[i])).Byte(' ');
  }
  if (pageIndex_ == kAddPage) out_.Reference(pageObject_).Byte(' ');
}

void CPDFWriteFile::OpenPageDictionary() {
  AppendHere();
  out_.BeginObject(pageObject_).Text("<<\r/Type /Page\r/Parent ").Reference(pagesObject_);
  resourcesObject_ = Reserve();
  out_.Text("\r/Resources ").Reference(resourcesObject_);
  contentsObject_ = Reserve();
  out_.Text("\r/Contents [ ").Reference(contentsObject_);
  out_.Text(" ]\r/MediaBox [ ").Point(page_.xmin * page_.scale, page_.ymin * page_.scale).Byte(' ');
  out_.Point(page_.xmax * page_.scale, page_.ymax * page_.scale).Text(" ]\r");
  if (options_.useTransparency) out_.Text("/Group << /Type /Group /CS /DeviceRGB /S /Transparency >>\r");
  AppendHere();  // the places of Resources
  AppendHere();  // and of Contents
  pageDictionaryOpen_ = true;
}

// With content open nothing may come between: that page's dictionary stays as it is.
void CPDFWriteFile::ClosePageDictionary() {
  if (!pageDictionaryOpen_ || CodecOpen()) return;
  pageDictionaryOpen_ = false;
  out_.Text(">>\rendobj\r");
  if (metadataObject_ > 0) WriteMetadata(kLastPacketEnd);
}

void CPDFWriteFile::Finish() {
  if (!started_ || finished_) return;
  EndPage();
  CutRasterShort();
  finished_ = true;
  if (options_.pdfa == 0) WriteOptionalContent();
  WriteResources();
  WriteFonts();
  WriteTransparencyStates();
  WriteTrailer();
  out_.Drain();
  Flush();
}

// One group a layer, in the order of the table. All are listed as they come, those that are off a second time.
void CPDFWriteFile::WriteOptionalContent() {
  firstGroupObject_ = NextNumber();
  const auto list = [this](const char *head, bool offOnly) {
    out_.Text(head);
    int32_t number = firstGroupObject_;
    for (const Layer &layer : layers_.all()) {
      if (layer.off || !offOnly) out_.Reference(number).Byte(' ');
      ++number;
    }
    out_.Text("]\r");
  };
  xref_.Set(Offset(), optionalContentObject_, 'n');
  out_.Integer(optionalContentObject_).Text(" 0 obj <</D <<");
  list("/OFF [", true);
  list("/Order [", false);
  out_.Text(">>\r");
  list("/OCGs [", false);
  out_.Text(">> endobj\r");
  for (const Layer &layer : layers_.all()) {
    const int32_t number = ReserveHere();
    out_.Integer(number).Text(" 0 obj <</Name ").String(NarrowText(layer.name, std::string::npos));
    out_.Text(" /Type /OCG >>\rendobj\r");
  }
}

void CPDFWriteFile::WriteResources() {
  BeginReserved(resourcesObject_).Text("<<\r/Procset [/PDF /Text /ImageB]\r");
  WriteXObjects();
  if (options_.pdfa == 0) {
    out_.Text("/Properties <<\r");
    for (int32_t i = 0; i < static_cast<int32_t>(layers_.all().size()); ++i) {
      out_.Text("/oc").Integer(i).Byte(' ').Reference(firstGroupObject_ + i).Byte(' ');
    }
    out_.Text(">>\r");
  }
  WriteFontResources();
  if (options_.useTransparency && !states_.empty()) {
    out_.Text("/ExtGState <<\r");
    for (size_t i = 0; i < states_.keys().size(); ++i) {
      stateObjects_.push_back(ReserveHere());
      out_.Name(TransparencyTable::NameOf(i)).Byte(' ').Reference(stateObjects_.back()).Text("\r");
    }
    out_.Text(">>\r");
  }
  out_.Text(">>\rendobj\r");
}

void CPDFWriteFile::WriteTransparencyStates() {
  for (size_t i = 0; i < stateObjects_.size(); ++i) {
    const auto opacity = static_cast<float>(states_.keys()[i] / 10000.0);
    BeginReserved(stateObjects_[i]).Text("<</Type /ExtGState /ca ").Real(opacity).Text(">>\rendobj\r");
  }
}

void CPDFWriteFile::WriteTrailer() {
  const int64_t position = WriteXRefStream(out_, xref_, firstObject_ == 0 ? 1 : firstObject_);
  out_.Text("startxref\r").Integer(static_cast<uint32_t>(position)).Text("\r%%EOF\r");
}

}  // namespace kapdf
