// The document around the page's content. Objects have CR as their line end.
#include "platform/environment.h"
#include "platform/file.h"
#include "writer/write_file.h"
#include "writer/xref_stream.h"

namespace kapdf {
namespace {

constexpr size_t kTitleBytes = 255;

}  // namespace

uint32_t CPDFWriteFile::Start(FileInfo &info) {
  SetPage(info.pageIndex, info.pageCount);
  if (pageIndex_ != -1) Seek(0, SeekOrigin::kEnd);
  started_ = true;

  WriteHeader();
  xref_.BeginSection(firstObject_);
  WriteInfo();
  WriteCatalog();
  if (metadataObject_ > 0) WriteMetadata();

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

void CPDFWriteFile::WriteHeader() {
  out_.Text(options_.pdfa != 0 ? "%PDF-1.4\r" : "%PDF-1.5\r").Text("%\xFF\xFF\xFF\xFF\r");
}

void CPDFWriteFile::WriteInfo() {
  const auto moment = platform::LocalMoment::Now();
  const std::string title = NarrowText(platform::FileNameOf(path_), kTitleBytes);
  out_.BeginObject(ReserveHere()).Text("<<\r/Creator(kaPDF.dll Version 2.2)/CreationDate ");
  out_.String("D:" + moment.Date("yyyyMMdd") + moment.Time("HHmmss")).Text("\r/Producer (ZV Software V12)\r/Author ");
  out_.String(options_.author).Text("\r/Title ").String(title).Text("\r");
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

// The packet itself is still to come. Its number stays free until then, which readers take as null.
void CPDFWriteFile::WriteMetadata() { xref_.Set(0, metadataObject_, 'f'); }

void CPDFWriteFile::WritePages() {
  AppendHere();
  out_.BeginObject(pagesObject_).Text("<<\r/Type /Pages\r/Count 1\r");
  pageObject_ = Reserve();
  out_.Text("/Kids [").Reference(pageObject_).Text("]\r>>\rendobj\r");
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
  if (metadataObject_ > 0) WriteMetadata();
}

void CPDFWriteFile::Finish() {
  if (!started_ || finished_) return;
  EndPage();
  CutRasterShort();
  finished_ = true;
  if (options_.pdfa == 0) WriteOptionalContent();
  WriteResources();
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
