#include "writer/images_out.h"

#include <string>
#include <utility>

namespace kapdf {

std::optional<ImagesOut::Plan> ImagesOut::PlanOf(const ElementRecord &header) const {
  std::optional<RasterShape> shape = RasterShape::Of(header);
  if (!shape) return std::nullopt;
  const RasterCoding coding = CodingOf(shape->mode, settings_);
  if (!Carries(coding, *shape)) return std::nullopt;
  return Plan{*std::move(shape), coding};
}

bool ImagesOut::Open(Plan plan) {
  if (raster_) {
    End();
    placements_.RemoveLastImage();  // its name is the new one's
  }
  const RasterShape &shape = plan.shape;
  const int32_t paletteObject = objects_.Next();
  const bool indexed = !shape.palette.empty() && plan.coding != RasterCoding::kDct;
  if (indexed) WritePalette(shape.palette);
  const int32_t object = objects_.ReserveHere();
  placements_.AddImage({object, shape.width, shape.height, shape.dpi});
  TextOut &out = objects_.text();
  out.BeginObject(object).Text("<<\r/Type /XObject\r/Subtype /Image\r");
  lengthObject_ = objects_.ReserveHere();  // the place that stays in the table when the form is refused below
  out.Text("/Length ").Reference(lengthObject_).Text("\r/Name /Im").Integer(finished_);
  out.Text("\r/Width ").Integer(shape.width).Text("\r/Height ").Integer(shape.height).Text("\r");
  if (!WriteForm(plan, indexed ? paletteObject : 0)) {
    placements_.RemoveLastImage();
    return false;
  }
  out.Text(">>\rstream\r\n").Drain();
  file_.Flush();
  start_ = out.Position();
  raster_.emplace(file_, std::move(plan.shape), plan.coding, settings_.quality);
  fraction_ = 0;
  return true;
}

void ImagesOut::WritePalette(const std::vector<uint8_t> &colors) {
  TextOut &out = objects_.text();
  out.BeginObject(objects_.ReserveHere()).Text("<<\r/Length ").Integer(static_cast<int64_t>(colors.size()));
  out.Text("\r>>\rstream\r\n").Bytes(colors).Text("\r\nendstream\rendobj\r");
}

// How the samples are coded and what they mean. False when they would need a colour space that is never written; the
// image then stays as it is, nobody refers to it.
bool ImagesOut::WriteForm(const Plan &plan, int32_t paletteObject) {
  const auto &[shape, coding] = plan;
  TextOut &out = objects_.text();
  if (shape.mode == RasterMode::kBilevel) {
    out.Text("/ImageMask true\r");
    if (coding == RasterCoding::kNone) {
      out.Text("/Decode [ 1 0 ]\r");
    } else {
      out.Text("/Filter [ /CCITTFaxDecode ]\r/DecodeParms [ << /K -1 /Columns ").Integer(shape.width);
      out.Text(" >> ]\r");
    }
  } else {
    if (coding == RasterCoding::kDct) out.Text("/Filter /DCTDecode\r");
    if (coding == RasterCoding::kLzw) out.Text("/Filter /LZWDecode\r");
    if (paletteObject > 0) {
      out.Text("/ColorSpace [ /Indexed /DeviceRGB ").Integer(static_cast<int64_t>(shape.palette.size() / 3) - 1);
      out.Byte(' ').Reference(paletteObject).Text(" ]\r");
    } else {
      if (shape.mode != RasterMode::kRgb && coding != RasterCoding::kDct) return false;
      out.Text("/ColorSpace /DeviceRGB\r");
    }
  }
  out.Text("/BitsPerComponent ").Integer(shape.bitsPerSample()).Text("\r");
  return true;
}

uint32_t ImagesOut::AddRow(const ElementRecord &record) {
  if (!raster_) return FilterNoRasterOpen;
  const uint32_t result = raster_->AddRow(record);
  fraction_ = raster_->fraction();
  if (!raster_->complete()) return result;
  CutShort();
  return FilterOk;
}

void ImagesOut::End() {
  raster_->Finish();
  raster_.reset();
  TextOut &out = objects_.text();
  const int64_t length = out.Position() - start_;
  out.Text("\r\nendstream\rendobj\r");
  objects_.WriteLength(lengthObject_, std::to_string(length) + "\r");
}

// The rows that came make the image.
void ImagesOut::CutShort() {
  if (!raster_) return;
  End();
  ++finished_;
}

void ImagesOut::WriteResources() {
  if (placements_.images().empty()) return;
  TextOut &out = objects_.text();
  out.Text("/XObject <<\r");
  int32_t number = 0;
  for (const ImageEntry &image : placements_.images()) {
    out.Text("/Im").Integer(number++).Byte(' ').Reference(image.object).Text("\r");
  }
  out.Text(">>\r");
}

}  // namespace kapdf
