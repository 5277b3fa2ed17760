// Reading rows of image XObjects.
#include <algorithm>
#include <cmath>
#include <cstring>

#include "base/limits.h"
#include "io/codec_dct.h"
#include "io/codec_jbig2.h"
#include "io/codec_jp2.h"
#include "raster/raster_object.h"

namespace kapdf {
namespace {

size_t BlankLine(uint8_t *row, uint32_t width, RasterKind kind) {
  std::memset(row, 0, CPDFRasterObject::RowBytes(width));
  return kind == RasterKind::kBilevel ? sizeof(uint32_t) : size_t{width} * RowLayout{.kind = kind}.PixelBytes();
}

}  // namespace

void CPDFRasterObject::Rewind() {
  opened_.reset();
  reader_.reset();
  failed_ = false;
  line_ = imageLine_ = 0;
  stripe_ = 0;
  imageRow_ = {};
  maskRow_ = {};
  if (mask_) mask_->Rewind();
  for (const auto &stripe : stripes_) stripe->Rewind();
}

// 8-bit grey counts two components, of which the data have one.
SampleShape CPDFRasterObject::Shape() const {
  return {width_, codedKind_ == RasterKind::kGrey ? 1 : components_, bitsPerComponent_};
}

bool CPDFRasterObject::OpenRows() {
  if (opened_ || failed_) return !failed_;
  const SampleShape shape = Shape();
  opened_ = ImageSource::Open(objects_, coding_, shape);
  RowLayout layout{width_, codedKind_, shape.bitsPerComponent, shape.colors, 0, IsCcitt(coding_.filter)};
  CCompressionClass *codec = opened_ ? &opened_->codec() : nullptr;
  failed_ = !codec;
  if (auto *jp2 = dynamic_cast<CZVJP2000 *>(codec)) {
    jp2->SetIndexed(codedKind_ == RasterKind::kIndexed || codedKind_ == RasterKind::kBilevel);
    jp2->SetColorBands(dictionary_->Get("ColorSpace") ? shape.colors : 0);
    failed_ = !jp2->Open();
    layout.components = jp2->components();
    layout.codedWidth = jp2->width();
  } else if (auto *dct = dynamic_cast<CZVDCT *>(codec)) {
    failed_ = !dct->Open();
    layout.codedWidth = dct->width();
  } else if (auto *jbig2 = dynamic_cast<CZVJBig2 *>(codec)) {
    failed_ = !jbig2->Open();
    layout.codedWidth = jbig2->width();
  }
  if (failed_)
    opened_.reset();
  else
    reader_ = std::make_unique<RowReader>(layout);
  return !failed_;
}

size_t CPDFRasterObject::ReadLine(uint8_t *row) {
  const uint32_t line = line_++;
  if (!dictionary_) return ReadStripeLine(row);
  if (mask_) return ReadMaskedLine(line, row);
  return turned_ ? ReadTurnedLine(row) : ReadPlainLine(row);
}

size_t CPDFRasterObject::ReadPlainLine(uint8_t *row) {
  return OpenRows() ? reader_->Read(opened_->codec(), row) : BlankLine(row, width_, codedKind_);
}

// Rows of the stripes one after the other; each is read as if it stood alone. Those of a stripe that is not like the
// first one are blank.
size_t CPDFRasterObject::ReadStripeLine(uint8_t *row) {
  while (stripe_ < stripes_.size() && stripes_[stripe_]->line_ >= stripes_[stripe_]->height()) {
    stripes_[stripe_++]->Rewind();
  }
  if (stripe_ == stripes_.size()) return BlankLine(row, width_, kind_);
  CPDFRasterObject &stripe = *stripes_[stripe_];
  if (stripe.width() == width_ && stripe.kind_ == kind_) return stripe.ReadLine(row);
  ++stripe.line_;
  return BlankLine(row, width_, kind_);
}

// The column of an image that is one pixel wide.
size_t CPDFRasterObject::ReadTurnedLine(uint8_t *row) {
  const size_t pixelBytes = RowLayout{.kind = codedKind_}.PixelBytes();
  alignas(uint32_t) uint8_t pixel[32];
  std::vector<uint8_t> column(height_ * pixelBytes);
  for (uint32_t y = 0; y < height_; ++y) {
    const size_t got = ReadPlainLine(pixel);
    if (codedKind_ == RasterKind::kBilevel)
      column[y] = RunList(pixel).count() > 0;
    else
      std::memcpy(&column[y * pixelBytes], pixel, std::min(got, pixelBytes));
  }
  if (codedKind_ != RasterKind::kBilevel) {
    std::memcpy(row, column.data(), column.size());
    return column.size();
  }
  RunList runs(row);
  runs.SetFromBytes(column.data(), height_);
  return runs.bytes();
}

// The image's row for a row of the mask. Where the mask is finer a row stands for several, where it is coarser some are
// passed over, for one row of the mask not more than a bound of bytes.
void CPDFRasterObject::FetchImageRow(uint32_t line) {
  const double ratio = static_cast<double>(mask_->height_) / height_;
  const auto step = static_cast<uint32_t>(std::lround(ratio));
  const auto wanted = ratio < 1 ? static_cast<uint32_t>(line / ratio) + 1 : line / std::max(step, 1u) + 1;
  const auto most = static_cast<uint32_t>(std::max<size_t>(limits::kDecodedStream / RowBytes(width_), 1));
  const uint32_t end = std::min({wanted, height_, imageLine_ + most});
  while (imageLine_ < end) {
    ReadPlainLine(imageRow_.data());
    ++imageLine_;
  }
}

// The mask's runs tell what is hidden, of palettes as of true colours: outside of them the image shows.
size_t CPDFRasterObject::ReadMaskedLine(uint32_t line, uint8_t *row) {
  if (kind_ == RasterKind::kBilevel) return mask_->ReadLine(row);
  if (maskRow_.empty()) {
    maskRow_.resize(RowBytes(mask_->width_));
    imageRow_.resize(RowBytes(width_));
  }
  RunList hidden(maskRow_.data());
  mask_->ReadLine(maskRow_.data());
  if (mask_->invert_ != mask_->imageMask_) hidden.Invert(mask_->width_);
  FetchImageRow(line);
  const uint32_t width = mask_->width_;
  const double ratio = static_cast<double>(width) / width_;
  const auto from = [&](uint32_t x) { return std::min(static_cast<uint32_t>(x / ratio), width_ - 1); };
  if (kind_ == RasterKind::kIndexed) {
    for (uint32_t x = 0; x < width; ++x) row[x] = imageRow_[from(x)];
    for (const Run &run : hidden.runs()) std::memset(row + run.first, 255, run.last - run.first + 1);
    return width;
  }
  for (uint32_t x = 0; x < width; ++x) {
    std::memcpy(row + 4 * size_t{x}, &imageRow_[3 * size_t{from(x)}], 3);
    row[4 * size_t{x} + 3] = 0;
  }
  for (const Run &run : hidden.runs()) {
    for (uint32_t x = run.first; x <= run.last; ++x) row[4 * size_t{x} + 3] = 255;
  }
  return size_t{4} * width;
}

}  // namespace kapdf
