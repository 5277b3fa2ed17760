#include "writer/page_out.h"

#include <string>

namespace kapdf {

void PageOut::LayOut(const FileInfo &info) {
  const double frame = options_.paperFrame > 0 ? options_.paperFrame : 0;
  layout_ = LayOutPage(info, frame, options_.atOrigin != 0);
}

void PageOut::OpenDictionary(int32_t parent) {
  TextOut &out = objects_.text();
  objects_.PlaceHere();
  out.BeginObject(object_).Text("<<\r/Type /Page\r/Parent ").Reference(parent);
  resourcesObject_ = objects_.Reserve();
  out.Text("\r/Resources ").Reference(resourcesObject_);
  contentsObject_ = objects_.Reserve();
  out.Text("\r/Contents [ ").Reference(contentsObject_);
  out.Text(" ]\r/MediaBox [ ").Point(layout_.xmin * layout_.scale, layout_.ymin * layout_.scale).Byte(' ');
  out.Point(layout_.xmax * layout_.scale, layout_.ymax * layout_.scale).Text(" ]\r");
  if (options_.useTransparency) out.Text("/Group << /Type /Group /CS /DeviceRGB /S /Transparency >>\r");
  objects_.PlaceHere();  // the places of Resources
  objects_.PlaceHere();  // and of Contents
  dictionaryOpen_ = true;
}

void PageOut::CloseDictionary() {
  dictionaryOpen_ = false;
  objects_.text().Text(">>\rendobj\r");
}

void PageOut::Select(const ElementRecord &record) {
  if (contentStart_ == 0) OpenContent();
  content_.Select(record);
}

void PageOut::OpenContent() {
  TextOut &out = objects_.text();
  objects_.BeginReserved(contentsObject_).Text("<<\r/Length ");
  lengthObject_ = objects_.ReserveHere();
  out.Reference(lengthObject_).Text("/Filter /FlateDecode\r>>\rstream\r\n");
  contentStart_ = out.Position();
  compressor_ = std::make_unique<CZVFlate>(file_, 0);
  out.SetCodec(compressor_.get());
  content_.Begin();
}

void PageOut::StopCompressing() {
  objects_.text().SetCodec(nullptr);
  compressor_.reset();
}

void PageOut::CloseContent() {
  TextOut &out = objects_.text();
  content_.End();
  out.SetCodec(nullptr);
  if (compressor_) compressor_->flush();
  compressor_.reset();
  const int64_t length = out.Position() - contentStart_;
  out.Text("\nendstream\rendobj\r");
  objects_.WriteLength(lengthObject_, std::to_string(length) + "\r");
}

void PageOut::BeginPlainContent() {
  objects_.BeginReserved(contentsObject_).Text("<<\r/Length ");
  lengthObject_ = objects_.ReserveHere();
  objects_.text().Reference(lengthObject_).Text("\r>>\rstream\r\n");
}

// The length counts q, LF and Q; the LF behind belongs to the keyword.
void PageOut::WriteEmptyContent() {
  BeginPlainContent();
  objects_.text().Text("q\nQ\nendstream\rendobj\r");
  objects_.WriteLength(lengthObject_, "3 ");
}

// The LF behind the last Q belongs to the keyword and is not counted.
void PageOut::WriteImagesContent(const PlacementTable &placements) {
  TextOut &out = objects_.text();
  BeginPlainContent();
  const int64_t start = out.Position();
  out.Text("q\n");
  content_.DrawWaiting(placements);
  const int64_t length = out.Position() - start + 1;
  out.Text("Q\nendstream\rendobj\r");
  objects_.WriteLength(lengthObject_, std::to_string(length) + "\r");
}

void PageOut::End(const PlacementTable &placements) {
  ended_ = true;
  if (contentStart_ != 0)
    CloseContent();
  else if (!placements.waiting().empty())
    WriteImagesContent(placements);
  else
    WriteEmptyContent();
}

void PageOut::WriteStateResources() {
  if (!options_.useTransparency || states_.empty()) return;
  TextOut &out = objects_.text();
  out.Text("/ExtGState <<\r");
  for (size_t i = 0; i < states_.keys().size(); ++i) {
    stateObjects_.push_back(objects_.ReserveHere());
    out.Name(TransparencyTable::NameOf(i)).Byte(' ').Reference(stateObjects_.back()).Text("\r");
  }
  out.Text(">>\r");
}

void PageOut::WriteStates() {
  for (size_t i = 0; i < stateObjects_.size(); ++i) {
    const auto opacity = static_cast<float>(states_.keys()[i] / 10000.0);
    objects_.BeginReserved(stateObjects_[i]).Text("<</Type /ExtGState /ca ").Real(opacity).Text(">>\rendobj\r");
  }
}

}  // namespace kapdf
