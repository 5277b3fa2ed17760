// What the outside renderer does for a reading filter: previews, a page as a picture that a filter of the host reads,
// and the text that belongs to it.
#include <algorithm>
#include <numbers>
#include <utility>

#include "base/bytes.h"
#include "content/record_sink.h"
#include "filter/filter.h"
#include "platform/narrow_path.h"
#include "platform/text.h"
#include "renderer/preview.h"
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

bool CPDFFilter::CountRenderedPages(const char16_t *path, FileInfo &info, uint32_t &result) const {
  const std::string narrow = platform::ToNarrowPath(path ? path : u"");
  if (!Renderer().VgPdfNoPages || narrow.find('?') != std::string::npos) return false;
  info.pageCount = Renderer().VgPdfNoPages(narrow.c_str());
  result = info.pageCount > 0 ? FilterOk : FilterNotPdf;
  if (result == FilterOk) SetFormatName(info);
  return true;
}

void *CPDFFilter::GetPreview(const char16_t *path, ProgressObject *progress) {
  if (RendererIsBusy()) return nullptr;
  try {
    if (CanPreview()) {
      previewBitmap_.reset();
      previewBitmap_ = MakePreview(platform::ToNarrowPath(path ? path : u""), progress);
    }
  } catch (...) {
    return nullptr;
  }
  return previewBitmap_.get();
}

uint32_t CPDFFilter::OpenRenderedPage(FileInfo &info, ProgressObject *progress, const char16_t *options,
                                      FilterContext *context, FilterCreateFunction create) {
  if (info.pageIndex < 0 || info.pageIndex == INT32_MAX) return FilterNotPdf;
  if (!StopRenderer()) return FilterDamaged;
  renderedDepth_ = importOptions_.colorDepth;
  const PageToRender page{platform::ToNarrowPath(sourcePath_), info.pageIndex + 1, importOptions_.dpi, dither_,
                          importOptions_.extractText != 0};
  {
    const RendererConversion conversion(progress);
    if (!RenderPage(page, tempPath_, hiddenText_)) return FilterNotPdf;
  }
  const std::u16string picture = platform::FromNarrowPath(tempPath_);
  if (create) subFilter_ = create(0, picture.c_str(), GivenRegistryPath(), &subFilterDestroy_);
  if (!subFilter_) return FilterNotPdf;
  // The host's structure may be longer than the part of it that is known here.
  alignas(8) uint8_t fresh[4096] = {};
  const uint32_t result = subFilter_->table->OpenRead(subFilter_, picture.c_str(), reinterpret_cast<FileInfo *>(fresh),
                                                      progress, options, context, create);
  if (Renderer().VgPdfNoPages) info.pageCount = std::max(0, Renderer().VgPdfNoPages(page.path.c_str()));
  SetFormatName(info);
  return result;
}

// Answers whether the call is done with; if not, the sub-filter has ended and text is to follow.
bool CPDFFilter::ReadRenderedPage(ElementRecord &record, uint32_t &result) {
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
    if (renderedDepth_ == 4) header.depthHint = 0;
    header.pixelType |= DepthMark(renderedDepth_);
    StoreAs(record.payload, header);
  }
  return true;
}

uint32_t CPDFFilter::ReadHiddenText(ElementRecord &record) {
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

void CPDFFilter::DropSubFilter() {
  FilterObject *const ended = std::exchange(subFilter_, nullptr);
  if (!ended) return;
  ended->table->Close(ended);
  if (subFilterDestroy_) subFilterDestroy_(ended);
}

// The picture goes when nobody reads it any more.
void CPDFFilter::DropRenderedPage() {
  DropSubFilter();
  subFilterDestroy_ = nullptr;
  if (!tempPath_.empty()) platform::RemoveFile(platform::FromNarrowPath(tempPath_));
  tempPath_.clear();
  hiddenText_ = {};
  hiddenTextIndex_ = 0;
}

}  // namespace kapdf
