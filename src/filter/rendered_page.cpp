#include "filter/rendered_page.h"

#include <algorithm>
#include <numbers>
#include <utility>

#include "base/bytes.h"
#include "content/record_sink.h"
#include "pdfmodel/pdf_file.h"
#include "platform/file.h"
#include "platform/narrow_path.h"
#include "platform/text.h"
#include "renderer/render_page.h"
#include "renderer/renderer.h"

namespace kapdf {
namespace {

// What a picture of each colour depth tells the host beside its type.
uint32_t DepthMark(int32_t colorDepth) {
  switch (colorDepth) {
    case 2:
      return 0x80020000;
    case 3:
      return 0x80010000;
    case 4:
      return 0x80000000;
    default:
      return 0;
  }
}

}  // namespace

bool CountRenderedPages(std::u16string_view path, FileInfo &info, uint32_t &result) {
  const std::string narrow = platform::ToNarrowPath(path);
  if (!Renderer().VgPdfNoPages || narrow.find('?') != std::string::npos) return false;
  info.pageCount = Renderer().VgPdfNoPages(narrow.c_str());
  result = info.pageCount > 0 ? FilterOk : FilterNotPdf;
  if (result == FilterOk) SetFormatName(info);
  return true;
}

uint32_t RenderedPage::Open(std::u16string_view source, FileInfo &info, const ImportOptions &options,
                            const PictureHost &host) {
  if (info.pageIndex < 0 || info.pageIndex == INT32_MAX) return FilterNotPdf;
  if (!StopRenderer()) return FilterDamaged;
  sourcePath_ = source;
  colorDepth_ = options.colorDepth;
  const PageToRender page{platform::ToNarrowPath(sourcePath_), info.pageIndex + 1, options.dpi, options.dither,
                          options.extractText != 0};
  {
    const RendererConversion conversion(host.progress);
    if (!RenderPage(page, picturePath_, hiddenText_)) return FilterNotPdf;
  }
  const std::u16string picture = platform::FromNarrowPath(picturePath_);
  if (host.create) subFilter_ = host.create(0, picture.c_str(), host.registryPath, &subFilterDestroy_);
  if (!subFilter_) return FilterNotPdf;
  // The host's structure may be longer than the part of it that is known here.
  alignas(8) uint8_t fresh[4096] = {};
  const uint32_t result = subFilter_->table->OpenRead(subFilter_, picture.c_str(), reinterpret_cast<FileInfo *>(fresh),
                                                      host.progress, host.options, host.context, host.create);
  if (Renderer().VgPdfNoPages) info.pageCount = std::max(0, Renderer().VgPdfNoPages(page.path.c_str()));
  SetFormatName(info);
  return result;
}

bool RenderedPage::Read(ElementRecord &record, uint32_t &result) {
  if (subFilter_ && ReadPicture(record, result)) return true;
  if (hiddenText_.hiddenTextRuns.empty()) return false;
  result = ReadHiddenText(record);
  return true;
}

// Answers whether the call is done with; if not, the sub-filter has ended and text is to follow.
bool RenderedPage::ReadPicture(ElementRecord &record, uint32_t &result) {
  const uint32_t request = record.kind;
  result = subFilter_->table->ReadElement(subFilter_, &record);
  if (result == FilterEndOfElements && !hiddenText_.hiddenTextRuns.empty()) {
    DropSubFilter();
    return false;
  }
  if (result != FilterOk || request != ElemRasterHeader) return true;
  CopyName(record.styleName, sourcePath_);
  if (record.payload) {
    auto header = LoadAs<RasterHeaderPayload>(record.payload);
    if (colorDepth_ == 4) header.depthHint = 0;
    header.pixelType |= DepthMark(colorDepth_);
    StoreAs(record.payload, header);
  }
  return true;
}

uint32_t RenderedPage::ReadHiddenText(ElementRecord &record) {
  if (hiddenTextIndex_ >= hiddenText_.hiddenTextRuns.size()) {
    hiddenText_ = {};
    hiddenTextIndex_ = 0;
    return FilterEndOfElements;
  }
  const HiddenTextRun &run = hiddenText_.hiddenTextRuns[hiddenTextIndex_];
  const HiddenTextStyle &style = hiddenText_.hiddenTextStyles[hiddenTextIndex_++];
  hiddenTextUnits_.clear();
  for (const char &byte : run.bytes) {  // one byte to one unit, also where a code page has pairs
    hiddenTextUnits_ += platform::ToWide({&byte, 1}, platform::kSystemCodePage).substr(0, 1);
  }
  record.kind = ElemText;
  CopyName(record.layerName, u"PDF-Text");
  CopyName(record.styleName, u"Text");
  record.color = style.color;
  hiddenTextPayload_ = {};
  hiddenTextPayload_.x = run.x;
  hiddenTextPayload_.y = run.y;
  hiddenTextPayload_.angle = run.degrees / 180.0 * std::numbers::pi;
  hiddenTextPayload_.height = style.height;
  hiddenTextPayload_.widthFactor = 1.0;
  hiddenTextPayload_.style = static_cast<uint32_t>(style.style);
  hiddenTextPayload_.text = hiddenTextUnits_.data();
  hiddenTextPayload_.fontName = record.styleName;
  record.payload = &hiddenTextPayload_;
  record.payloadBytes = sizeof hiddenTextPayload_;
  record.reserved2 = 0;
  record.section = KAPDF_SECTION_DRAWING;
  record.next = nullptr;
  return FilterOk;
}

void RenderedPage::DropSubFilter() {
  FilterObject *const ended = std::exchange(subFilter_, nullptr);
  if (!ended) return;
  ended->table->Close(ended);
  if (subFilterDestroy_) subFilterDestroy_(ended);
}

// The picture goes when nobody reads it any more.
void RenderedPage::Drop() {
  DropSubFilter();
  subFilterDestroy_ = nullptr;
  if (!picturePath_.empty()) platform::RemoveFile(platform::FromNarrowPath(picturePath_));
  picturePath_.clear();
  hiddenText_ = {};
  hiddenTextIndex_ = 0;
}

}  // namespace kapdf
