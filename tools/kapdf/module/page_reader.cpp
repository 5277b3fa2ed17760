#include "module/page_reader.h"

#include <cstring>

#include "module/bitmap.h"
#include "module/results.h"
#include "records/kinds.h"
#include "records/record.h"
#include "system/utf.h"

namespace kapdf::tool {

Outcome PageReader::Open() {
  if (Outcome made = filter_.Create(session_.module.ReadingRow(), session_.registryPath); !made.ok()) return made;
  uint32_t result = filter_.table().Identify(filter_.get(), ToUtf16(file_).c_str(), &info_);
  if (result == FilterEncrypted && !session_.reading.password.empty()) {  // which Identify cannot be told
    info_.pageIndex = 0;
    result = OpenPage(1, "", nullptr, info_);
    filter_.table().Close(filter_.get());
  }
  return result == FilterOk ? Outcome{} : Fail("cannot open " + file_ + ": " + Reason(result));
}

// The password comes first, as it ends at a blank.
uint32_t PageReader::OpenPage(int page, const std::string &options, ProgressObject *progress, FileInfo &info) {
  info.pageIndex = page - 1;
  FilterContext context{};
  const std::string &password = session_.reading.password;
  const std::u16string text =
      ToUtf16(password.empty() ? options : "/pw " + password + (options.empty() ? "" : " ") + options);
  return filter_.table().OpenRead(filter_.get(), ToUtf16(file_).c_str(), &info, progress,
                                  text.empty() ? nullptr : text.c_str(), &context, nullptr);
}

std::string PageReader::Reason(uint32_t result) const {
  const std::string reason = OpenResult(result);
  if (result != FilterEncrypted || session_.reading.classic) return reason;
  if (session_.reading.password.empty()) return reason + "; give its password with --password or --password-file";
  return reason + ", and the password does not open it";
}

// Not a property of the drawing, but of the file it comes from.
bool PageReader::TakeSource(const ElementRecord &record) {
  if (record.kind != ElemNamedProperty) return false;
  NamedPropertyPayload property;
  std::memcpy(&property, record.payload, sizeof property);
  if (std::u16string_view(property.name) != KAPDF_PROPERTY_SOURCE) return false;
  source_ = ToUtf8(property.value);
  return true;
}

std::u16string PageReader::FormatName() const {
  std::u16string name;
  for (const char16_t unit : info_.formatName) {
    if (unit == 0) break;
    name += unit;
  }
  return name;
}

Outcome PageReader::Read(int page, const std::string &options, Progress &progress, RecordSink &sink) {
  FileInfo info{};
  const uint32_t result = OpenPage(page, options, progress.object(), info);
  if (result != FilterOk) {
    return Fail("cannot open page " + std::to_string(page) + " of " + file_ + ": " + Reason(result));
  }
  Outcome outcome = sink.BeginPage(page, info.pageCount);
  if (outcome.ok()) outcome = ReadRecords(progress, sink);
  filter_.table().Close(filter_.get());
  return outcome.ok() ? sink.EndPage() : outcome;
}

Outcome PageReader::Preview(int page, Progress &progress, std::string &bytes) {
  const std::u16string named = ToUtf16(file_ + " <" + std::to_string(page) + ">");
  const void *block = filter_.table().GetPreview(filter_.get(), named.c_str(), progress.object());
  if (InterruptGuard::Requested()) return Interrupted();
  if (block != nullptr) bytes = BitmapFile(block);
  if (!bytes.empty()) return {};
  return Fail("the module gives no preview of page " + std::to_string(page) + " of " + file_ +
              "; it needs the renderer libraries beside it");
}

Outcome PageReader::ReadRecords(Progress &progress, RecordSink &sink) {
  ElementRecord record{};
  record.progress = progress.object();
  while (!InterruptGuard::Requested()) {
    InitElement(record);
    const uint32_t result = filter_.table().ReadElement(filter_.get(), &record);
    if (result == FilterEndOfElements) return {};
    if (result == FilterCancelled) return Interrupted();
    if (result != FilterOk) return Fail("the page of " + file_ + " cannot be read on: " + ElementResult(result));
    for (const ElementRecord *item = &record; item != nullptr; item = item->next) {
      if (TakeSource(*item)) continue;
      if (FindKind(item->kind) == nullptr) {
        ++unknown_;
        continue;
      }
      if (Outcome taken = sink.Take(*item); !taken.ok()) return taken;
      if (item->kind != ElemRasterPlacement || sink.rasters() == RasterWish::kNothing) continue;
      if (Outcome read = ReadRaster(*item, progress, sink); !read.ok()) return read;
    }
  }
  return Interrupted();
}

// A header that cannot be had is no reason to stop: the page goes on with the next element.
Outcome PageReader::ReadRaster(const ElementRecord &placement, Progress &progress, RecordSink &sink) {
  ElementRecord record{};
  record.progress = progress.object();
  InitElement(record);
  record.kind = ElemRasterHeader;
  std::memcpy(record.styleName, placement.styleName, sizeof record.styleName);
  if (filter_.table().ReadElement(filter_.get(), &record) != FilterOk) {
    ++missingRasters_;
    return {};
  }
  if (Outcome taken = sink.Take(record); !taken.ok()) return taken;
  if (sink.rasters() == RasterWish::kHeaders) return {};
  while (!InterruptGuard::Requested()) {
    InitElement(record);
    record.kind = ElemRasterRows;
    const uint32_t result = filter_.table().ReadElement(filter_.get(), &record);
    if (result == FilterCancelled) return Interrupted();
    if (result != FilterOk) return sink.EndRaster();
    if (Outcome taken = sink.Take(record); !taken.ok()) return taken;
  }
  return Interrupted();
}

}  // namespace kapdf::tool
