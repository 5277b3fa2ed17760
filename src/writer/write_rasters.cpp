// Rasters of the host as image objects, and their places on the page.
#include "base/bytes.h"
#include "writer/write_file.h"

namespace kapdf {

// A raster belongs ahead of the first drawn element. Where content is open already its compressor goes away unfinished,
// and what follows of the content stands in the file as plain text.
uint32_t CPDFWriteFile::OpenRaster(const ElementRecord &record) {
  if (!started_ || finished_) return FilterNotOpen;
  std::optional<RasterShape> shape = RasterShape::Of(record);
  if (!shape) return FilterBadRaster;
  const RasterCoding coding = CodingOf(shape->mode, options_);
  if (!Carries(coding, *shape)) return FilterBadRaster;
  if (raster_) {
    EndRaster();
    placements_.RemoveLastImage();  // its name is the new one's
  }
  out_.SetCodec(nullptr);
  contentCompressor_.reset();

  const int32_t paletteObject = NextNumber();
  const bool indexed = !shape->palette.empty() && coding != RasterCoding::kDct;
  if (indexed) WritePalette(shape->palette);
  const int32_t object = ReserveHere();
  placements_.AddImage({object, shape->width, shape->height, shape->dpi});
  out_.BeginObject(object).Text("<<\r/Type /XObject\r/Subtype /Image\r");
  imageLengthObject_ = ReserveHere();  // the place that stays in the table when the form is refused below
  out_.Text("/Length ").Reference(imageLengthObject_).Text("\r/Name /Im").Integer(imageCount_);
  out_.Text("\r/Width ").Integer(shape->width).Text("\r/Height ").Integer(shape->height).Text("\r");
  if (!WriteImageForm(*shape, coding, indexed ? paletteObject : 0)) {
    placements_.RemoveLastImage();
    return FilterBadRaster;
  }
  out_.Text(">>\rstream\r\n").Drain();
  Flush();
  imageStart_ = out_.Position();
  raster_.emplace(*this, *std::move(shape), coding, options_.quality);
  fraction_ = 0;
  return FilterOk;
}

void CPDFWriteFile::WritePalette(const std::vector<uint8_t> &colors) {
  out_.BeginObject(ReserveHere()).Text("<<\r/Length ").Integer(static_cast<int64_t>(colors.size()));
  out_.Text("\r>>\rstream\r\n").Text({reinterpret_cast<const char *>(colors.data()), colors.size()});
  out_.Text("\r\nendstream\rendobj\r");
}

// How the samples are coded and what they mean. False when they would need a colour space that is never written; the
// image then stays as it is, nobody refers to it.
bool CPDFWriteFile::WriteImageForm(const RasterShape &shape, RasterCoding coding, int32_t paletteObject) {
  if (shape.mode == RasterMode::kBilevel) {
    out_.Text("/ImageMask true\r");
    if (coding == RasterCoding::kNone) {
      out_.Text("/Decode [ 1 0 ]\r");
    } else {
      out_.Text("/Filter [ /CCITTFaxDecode ]\r/DecodeParms [ << /K -1 /Columns ").Integer(shape.width);
      out_.Text(" >> ]\r");
    }
  } else {
    if (coding == RasterCoding::kDct) out_.Text("/Filter /DCTDecode\r");
    if (coding == RasterCoding::kLzw) out_.Text("/Filter /LZWDecode\r");
    if (paletteObject > 0) {
      out_.Text("/ColorSpace [ /Indexed /DeviceRGB ").Integer(static_cast<int64_t>(shape.palette.size() / 3) - 1);
      out_.Byte(' ').Reference(paletteObject).Text(" ]\r");
    } else {
      if (shape.mode != RasterMode::kRgb && coding != RasterCoding::kDct) return false;
      out_.Text("/ColorSpace /DeviceRGB\r");
    }
  }
  out_.Text("/BitsPerComponent ").Integer(shape.bitsPerSample()).Text("\r");
  return true;
}

uint32_t CPDFWriteFile::WriteRow(const ElementRecord &record) {
  if (!raster_) return FilterNoRasterOpen;
  const uint32_t result = raster_->AddRow(record);
  fraction_ = raster_->fraction();
  if (!raster_->complete()) return result;
  EndRaster();
  ++imageCount_;
  return FilterOk;
}

void CPDFWriteFile::EndRaster() {
  raster_->Finish();
  raster_.reset();
  const int64_t length = out_.Position() - imageStart_;
  out_.Text("\r\nendstream\rendobj\r");
  WriteLength(imageLengthObject_, std::to_string(length) + "\r");
}

// The rows that came make the image.
void CPDFWriteFile::CutRasterShort() {
  if (!raster_) return;
  EndRaster();
  ++imageCount_;
}

// Only these two sections know placements. In the first the image is drawn at once, in the second with the end of a
// page that has nothing else.
uint32_t CPDFWriteFile::PlaceRaster(const ElementRecord &record) {
  if (section_ != KAPDF_SECTION_DRAWING && section_ != KAPDF_SECTION_RASTERS) return FilterNotAvailable;
  if (!record.payload || pageEnded_ || !started_) return FilterConsumed;
  const auto place = LoadAs<RasterPlacementPayload>(record.payload);
  if (section_ == KAPDF_SECTION_RASTERS) {
    placements_.Add(record.imageKey, place, content_.ColorOf(record));
    return FilterConsumed;
  }
  const size_t image = placements_.Find(record.imageKey);
  if (BeginElement(record)) content_.Draw(place, placements_.Image(image), image);
  return FilterConsumed;
}

// The LF behind the last Q belongs to the keyword and is not counted.
void CPDFWriteFile::WriteImagesContent() {
  BeginReserved(contentsObject_).Text("<<\r/Length ");
  contentLengthObject_ = ReserveHere();
  out_.Reference(contentLengthObject_).Text("\r>>\rstream\r\n");
  const int64_t start = out_.Position();
  out_.Text("q\n");
  content_.DrawWaiting(placements_);
  const int64_t length = out_.Position() - start + 1;
  out_.Text("Q\nendstream\rendobj\r");
  WriteLength(contentLengthObject_, std::to_string(length) + "\r");
}

void CPDFWriteFile::WriteXObjects() {
  if (placements_.images().empty()) return;
  out_.Text("/XObject <<\r");
  int32_t number = 0;
  for (const ImageEntry &image : placements_.images()) {
    out_.Text("/Im").Integer(number++).Byte(' ').Reference(image.object).Text("\r");
  }
  out_.Text(">>\r");
}

}  // namespace kapdf
