// Reading what an image's dictionary says of its samples.
#include <algorithm>
#include <cmath>
#include <numbers>

#include "base/limits.h"
#include "base/units.h"
#include "io/codec_dct.h"
#include "raster/raster_object.h"

namespace kapdf {
namespace {

constexpr uint32_t kSolidWidth = 500, kSolidHeight = 25;  // pixels; larger ones are never tested

bool InBounds(uint32_t side) { return side >= 1 && side <= limits::kImageSide; }

// At most two different colours.
bool IsTwoColored(const Palette &palette) {
  const auto packed = [&](size_t i) {
    const Palette::Entry &e = palette.entries[i];
    return e.red << 16 | e.green << 8 | e.blue;
  };
  const int first = packed(0);
  int second = first;
  for (size_t i = 1; i < palette.count; ++i) {
    if (packed(i) == first || packed(i) == second) continue;
    if (second != first) return false;
    second = packed(i);
  }
  return true;
}

}  // namespace

bool CPDFRasterObject::Prepare() {
  Rewind();
  if (!dictionary_) return PrepareContainer();
  if (prepared_ == Prepared::kNotYet) {
    prepared_ = PrepareImage() ? Prepared::kReady : Prepared::kFailed;
    SetMatrix(matrix_);
  }
  return prepared_ == Prepared::kReady;
}

// From the stripe that is the first one now: they are put in order as they are drawn.
bool CPDFRasterObject::PrepareContainer() {
  if (height_ == 0 || stripes_.empty()) return false;
  const CPDFRasterObject &first = *stripes_.front();
  width_ = first.width();
  kind_ = codedKind_ = first.kind_;
  bitsPerComponent_ = first.bitsPerComponent_;
  components_ = first.components_;
  invert_ = first.RunsAreBlank();
  palette_ = Copy(first.palette_);
  return InBounds(width_) && InBounds(height_);
}

bool CPDFRasterObject::PrepareImage() {
  if (const auto *own = dictionary_->GetAs<CPDFNameObject>("Name")) givenName_ = own->name;
  if (!ReadSize() || !coding_.Read(objects_, *dictionary_, settings_.jbig2)) return false;
  if (coding_.filter == ImageFilter::kJBig2 || (IsCcitt(coding_.filter) && !dictionary_->Get("BitsPerComponent")))
    bitsPerComponent_ = 1;
  if (!ReadColorSpace()) return false;
  codedKind_ = KindOfSamples();
  ReadDecode();
  if (!UseCoding()) return false;
  if (softMask_ && softMask_->kind_ == RasterKind::kBilevel)
    mask_ = std::move(softMask_);
  else if (!isMask_)
    ReadMask();
  if (codedKind_ == RasterKind::kIndexed && !palette_) palette_ = DefaultPalette();
  if (codedKind_ == RasterKind::kBilevel) palette_.reset();
  if (codedKind_ == RasterKind::kInvalid) return false;
  ReadColorKey();
  turned_ = width_ == 1 && !mask_ && !isMask_;
  ChooseMaskedKind();
  return true;
}

uint32_t CPDFRasterObject::Integer(const char *key, uint32_t otherwise) const {
  std::unique_ptr<CPDFObject> fetched;
  const auto *number = dynamic_cast<const CPDFNumeric *>(Follow(objects_, dictionary_->Get(key), fetched));
  return number ? static_cast<uint32_t>(std::max(number->intValue, 0)) : otherwise;
}

bool CPDFRasterObject::ReadSize() {
  width_ = Integer("Width", 0);
  height_ = Integer("Height", 0);
  bitsPerComponent_ = Integer("BitsPerComponent", 8);
  coding_.length = Integer("Length", 0);
  return InBounds(width_) && InBounds(height_);
}

// Without a colour space, or with one that is not known, there is one component.
bool CPDFRasterObject::ReadColorSpace() {
  components_ = 1;
  const CPDFObject *value = dictionary_->Get("ColorSpace");
  if (!value) {
    if (imageMask_) bitsPerComponent_ = 1;
    return true;
  }
  ColorSpace space(objects_);
  if (!space.Load(value)) return true;
  if (space.components() < 0) return false;
  palette_ = Copy(space.palette());
  components_ = static_cast<uint32_t>(space.components());
  if (space.components() == ColorSpace::kGrey && bitsPerComponent_ == 1) {
    components_ = 1;
    invert_ = !invert_;
  } else if (space.components() == ColorSpace::kTwoColors) {
    components_ = 1;
    if (palette_ && FirstIsBrighter(*palette_)) invert_ = !invert_;
  }
  return true;
}

// 8-bit grey counts 2 components of 8 bits each. Grey of 2, 4 and 16 bits makes sums that stand for other images: it is
// refused as they would come out wrong.
RasterKind CPDFRasterObject::KindOfSamples() const {
  const uint64_t bits = uint64_t{bitsPerComponent_} * components_;
  const bool grey = components_ == static_cast<uint32_t>(ColorSpace::kGrey);
  if (bits == 1) return RasterKind::kBilevel;
  if ((bits == 4 || bits == 8) && components_ == 1) return RasterKind::kIndexed;
  if (bitsPerComponent_ != 8) return RasterKind::kInvalid;
  if (grey) return RasterKind::kGrey;
  return bits == 24 || bits == 32 ? RasterKind::kTrueColor : RasterKind::kInvalid;
}

// Only images of one bit per component are turned over.
void CPDFRasterObject::ReadDecode() {
  if (bitsPerComponent_ != 1) return;
  double low = 0, high = 1;
  if (const auto *decode = dictionary_->GetAs<CPDFArray>("Decode")) {
    const auto *first = dynamic_cast<const CPDFNumeric *>(decode->GetAt(0));
    const auto *second = dynamic_cast<const CPDFNumeric *>(decode->GetAt(1));
    if (first && second) {
      low = first->realValue;
      high = second->realValue;
    }
  }
  if (high < low) invert_ = !invert_;
  if (imageMask_) invert_ = !invert_;  // a mask paints where its samples are 0
}

// Of facsimile data and JBIG2 the runs are the black pixels.
bool CPDFRasterObject::UseCoding() {
  if (IsCcitt(coding_.filter)) {
    if (!coding_.blackIs1) invert_ = !invert_;
    return codedKind_ == RasterKind::kBilevel;
  }
  if (coding_.filter == ImageFilter::kJBig2) {
    invert_ = !invert_;
    return codedKind_ == RasterKind::kBilevel;
  }
  if (coding_.filter == ImageFilter::kJp2) {  // the file has depths of its own, of which 8 bits are delivered
    if (!dictionary_->Get("ColorSpace")) components_ = 3;
    bitsPerComponent_ = 8;
    const bool bilevel = palette_ && IsTwoColored(*palette_);
    codedKind_ = bilevel ? RasterKind::kBilevel : KindOfSamples();
  }
  if (coding_.filter == ImageFilter::kDct) return ReadJpegHeader();
  return true;
}

bool CPDFRasterObject::ReadJpegHeader() {
  const auto source = ImageSource::Open(objects_, coding_, Shape());
  auto *codec = source ? dynamic_cast<CZVDCT *>(&source->codec()) : nullptr;
  if (!codec || !codec->Open()) return false;
  bitsPerComponent_ = codec->bitsPerComponent();
  components_ = codec->components();
  codedKind_ = KindOfSamples();
  if (components_ == 1 && !palette_) palette_ = GreyRamp();
  return true;
}

// A mask that cannot be read, or that has no pixel to hide, is none.
void CPDFRasterObject::ReadMask() {
  const auto *reference = dictionary_->GetAs<CPDFIndirectObject>("Mask");
  if (!reference) return;
  auto mask = std::make_unique<CPDFRasterObject>(objects_, settings_);
  if (!mask->Load(reference->objectNumber, nullptr, true) || !mask->Prepare()) return;
  if (mask->kind_ != RasterKind::kBilevel || mask->HidesNothing()) return;
  mask_ = std::move(mask);
}

// One of absurd size is not looked at: it counts as one that hides something.
bool CPDFRasterObject::HidesNothing() {
  if (!IsCcitt(coding_.filter) && uint64_t{width_} * height_ / 8 > limits::kDecodedStream) return false;
  std::vector<uint8_t> row(RowBytes(width_));
  RunList runs(row.data());
  bool full = true;
  for (uint32_t y = 0; y < height_ && full; ++y) {
    ReadLine(row.data());
    full = runs.CoversRow(width_);
  }
  Rewind();
  return full;
}

void CPDFRasterObject::ReadColorKey() {
  const auto *range = dictionary_->GetAs<CPDFArray>("Mask");
  if (!range || range->Count() != 2 || !palette_) return;
  const auto *first = dynamic_cast<const CPDFNumeric *>(range->GetAt(0));
  const auto *last = dynamic_cast<const CPDFNumeric *>(range->GetAt(1));
  if (!first || !last) return;
  const int top = palette_->count - 1;
  for (int i = std::max(first->intValue, 0); i <= std::min(last->intValue, top); ++i)
    palette_->entries[i].flags = Palette::kTransparent;
}

// With a mask a palette gives up its last colour for what is not painted; an image that has no place for that is
// delivered as its mask alone.
void CPDFRasterObject::ChooseMaskedKind() {
  kind_ = codedKind_;
  if (!mask_) return;
  if (codedKind_ == RasterKind::kTrueColor) {
    kind_ = RasterKind::kTrueColorMasked;
  } else if (codedKind_ != RasterKind::kBilevel && bitsPerComponent_ == 8 && palette_ && palette_->count == 256) {
    palette_->entries[255].flags = Palette::kTransparent;
    kind_ = RasterKind::kIndexed;
  } else {
    kind_ = RasterKind::kBilevel;
    palette_.reset();
  }
}

// Of an image that is delivered as its mask the mask's own flags tell: its runs hide where both are equal.
bool CPDFRasterObject::RunsAreBlank() const {
  return mask_ && kind_ == RasterKind::kBilevel ? mask_->invert_ == mask_->imageMask_ : invert_;
}

ImageDescription CPDFRasterObject::Describe() const {
  ImageDescription description;
  description.width = width();
  description.height = height();
  description.dpi = isContainer() ? stripes_.front()->placement_.dpi : placement_.dpi;
  description.invert = RunsAreBlank();
  description.kind = kind_;
  description.palette = Copy(palette_);
  return description;
}

// A turned image starts at its upper left corner, and its directions change places.
void CPDFRasterObject::SetMatrix(const Affine &matrix) {
  matrix_ = matrix;
  const uint32_t width = mask_ ? mask_->width_ : width_, height = mask_ ? mask_->height_ : height_;
  placement_ = PlaceImage(matrix, width, height);
  if (!turned_) return;
  const double y = placement_.y + placement_.scaleY * height / placement_.dpi * kMillimetresPerInch;
  if (std::isfinite(y)) placement_.y = y;
  std::swap(placement_.scaleX, placement_.scaleY);
  placement_.angle -= std::numbers::pi / 2;
}

// An image that is all painted or blank in its rows, whatever colour that is.
CPDFRasterObject::Solid CPDFRasterObject::TestSolid() {
  if (solid_ != Solid::kUntested) return solid_;
  solid_ = Solid::kNo;
  if (!dictionary_ || !dictionary_->Get("Width") || !dictionary_->Get("Height")) return solid_;
  if (Integer("BitsPerComponent", 0) != 1 || Integer("Width", 0) >= kSolidWidth ||
      Integer("Height", 0) >= kSolidHeight || !Prepare() || kind_ != RasterKind::kBilevel ||
      coding_.filter == ImageFilter::kJp2) {
    return solid_;
  }
  const ImageDescription description = Describe();
  std::vector<uint8_t> row(RowBytes(description.width));
  RunList runs(row.data());
  bool blank = true, full = true;
  for (uint32_t y = 0; y < description.height && (blank || full); ++y) {
    ReadLine(row.data());
    blank = blank && runs.count() == 0;
    full = full && runs.CoversRow(description.width);
  }
  Rewind();
  if (description.invert ? blank : full) solid_ = Solid::kSolid;
  if (description.invert ? full : blank) solid_ = Solid::kBlank;
  return solid_;
}

}  // namespace kapdf
