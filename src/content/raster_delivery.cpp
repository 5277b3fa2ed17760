// Rows of images.
#include "content/raster_delivery.h"

#include <algorithm>
#include <cmath>

namespace kapdf {

bool RasterDelivery::Prepare(std::string &name, ImageDescription &description) {
  rowsDelivered_ = 0;
  raster_ = nullptr;
  inlinePrepared_ = false;
  if (inlineWaiting_) {
    if (!inline_->codec) return false;
    const ImageDescription &told = inline_->description;
    description = {told.width, told.height, told.dpi, told.invert, told.kind, Copy(told.palette)};
    if (name.empty()) name = "Image";
    inline_->data->Seek(0, SeekOrigin::kStart);
    inline_->codec->reset();
    inlinePrepared_ = true;
  } else {
    CPDFXObject *found = name.empty() ? announced_ : nullptr;
    if (!found) found = drawing_.FindOutwards([&](PageResources &resources) { return resources.FindXObject(name); });
    auto *raster = dynamic_cast<CPDFRasterObject *>(found);
    if (!raster || !raster->Prepare()) return false;
    description = raster->Describe();
    raster_ = raster;
    if (name.empty()) name = !raster->givenName().empty() ? raster->givenName() : raster->name;
    if (name.empty()) name = "Image";
  }
  height_ = description.height;
  rowKind_ = description.kind;
  const size_t words = CPDFRasterObject::RowBytes(description.width) / sizeof(uint32_t);
  if (row_.size() < words) row_.resize(words);
  return true;
}

uint32_t RasterDelivery::ReadRow(uint8_t *&row, size_t &bytes) {
  const bool fromInline = inlineWaiting_ && inlinePrepared_;
  if (!fromInline && !raster_) return FilterNotAvailable;
  if (rowsDelivered_ >= height_) {
    if (raster_) raster_->Rewind();
    raster_ = nullptr;
    if (fromInline) {
      inlineWaiting_ = false;
      inline_.reset();
    }
    return FilterNoMoreRows;
  }
  row = reinterpret_cast<uint8_t *>(row_.data());
  const size_t used = fromInline ? inline_->reader->Read(*inline_->codec, row) : raster_->ReadLine(row);
  bytes = rowKind_ == RasterKind::kBilevel ? used : row_.size() * sizeof(uint32_t);
  ++rowsDelivered_;
  return FilterOk;
}

// The rows of an inline image, which the page's count of rasters does not hold, leave the page's own progress as it is.
double RasterDelivery::Fraction() const {
  if (!raster_) return -1.0;
  const double rows = static_cast<double>(page_.resources.RasterCount()) * height_;
  const double done = (static_cast<double>(sequence_) + 1) * rowsDelivered_ / rows;
  return std::isfinite(done) ? std::clamp(done, 0.0, 1.0) : 0.0;
}

}  // namespace kapdf
