// Painting XObjects: entering forms, announcing images.
#include <algorithm>
#include <cmath>
#include <cstring>

#include "base/color.h"
#include "base/limits.h"
#include "content/interpreter.h"
#include "platform/text.h"

namespace kapdf {
namespace {

constexpr size_t kNameText = 29;
constexpr double kMillimetresPerInch = 25.4;
constexpr uint32_t kWhiteEntry = 255;  // of the host's palette

}  // namespace

// The context at hand comes first, then the page's own.
Flow Interpreter::PaintXObject(const Statement &statement) {
  const char *slash = std::strchr(statement.text, '/');
  if (!slash) return Flow::kNext;
  const std::string name(std::string_view(slash + 1).substr(0, std::strcspn(slash + 1, " ")).substr(0, kNameText));
  announced_ = nullptr;
  for (CPDFContentStream *context = context_;; context = page_.get()) {
    CPDFXObject *found = context->resources.FindXObject(name);
    const bool fromRoot = context != context_;
    if (auto *form = dynamic_cast<CPDFFormObject *>(found)) {
      if (LoadForm(*form)) return EnterForm(*form);
    } else if (auto *raster = dynamic_cast<CPDFRasterObject *>(found)) {
      return raster->isContainer() ? DrawStripe(*raster, name) : DrawRaster(*raster, name, fromRoot);
    }
    if (context == page_.get()) return Flow::kNext;
  }
}

// The contents of all forms that were loaded stay in memory.
bool Interpreter::LoadForm(CPDFFormObject &form) {
  if (form.tried()) return form.Load(*page_);
  if (formsLoaded_ >= limits::kDecodedStream || !form.Load(*page_)) return false;
  formsLoaded_ += form.content().content().size();
  return true;
}

// What is left of the statement is read behind the form.
Flow Interpreter::EnterForm(CPDFFormObject &form) {
  if (context_->IsActive(form.objectNumber()) || context_->Depth() >= limits::kFormDepth) return Flow::kNext;
  CPDFContentStream &content = form.content();
  if (++formsEntered_ > limits::kFormsPerPage || formContent_ + content.content().size() > limits::kFormContent)
    return Flow::kNext;
  formContent_ += content.content().size();
  if (remainder_) {
    context_->KeepRest(remainder_);
    remainder_ = nullptr;
  }
  stack_.Push(state_);
  state_.ctm = form.matrix() * state_.ctm;
  content.parent = context_;
  content.clipBox = context_->clipBox;
  content.opacity = state_.alpha * context_->opacity;
  content.SetPosition(0);
  context_ = &content;
  state_.alpha = 1.0;
  return Flow::kNext;
}

// At the end of a form's content: one state comes back, also when the form has left others behind. False on the page.
bool Interpreter::LeaveForm() {
  if (!context_->parent) return false;
  CPDFContentStream *around = context_->parent;
  context_->SetPosition(0);
  context_->parent = nullptr;
  context_ = around;
  remainder_ = context_->TakeRest();
  stack_.Pop(state_);
  return true;
}

void Interpreter::StartRaster(const Placement &placement, std::string_view name, uint32_t color) {
  RasterPlacementPayload &raster = blocks_.raster;
  raster = {};
  raster.x = placement.x;
  raster.y = placement.y;
  raster.angle = placement.angle;
  raster.scaleX = placement.scaleX;
  raster.scaleY = placement.scaleY;
  raster.opacity = OpacityPercent();
  raster.clipMode = settings_.imageFrame;
  StartRecord(ElemRasterPlacement, color, &raster, sizeof raster);
  CopyName(record_->styleName, platform::ToWide(name, platform::kSystemCodePage));
}

// Small images that are all of one colour become a polygon or nothing, unless they were found on the page itself from
// inside a form.
Flow Interpreter::DrawRaster(CPDFRasterObject &raster, std::string_view name, bool fromRoot) {
  raster.Prepare();
  raster.SetMatrix(state_.ctm);
  const bool white = state_.fillColor == kWhiteCode;
  if (!fromRoot) {
    const auto solid = raster.TestSolid();
    if (solid == CPDFRasterObject::Solid::kBlank) return Flow::kNext;
    if (solid == CPDFRasterObject::Solid::kSolid) return DrawSolid(raster);
  }
  const uint32_t maskColor = fromRoot ? kWhiteCode : kWhiteEntry;
  announced_ = &raster;
  inlineWaiting_ = false;
  StartRaster(raster.placement(), name, !white ? state_.fillColor : raster.isMask() ? maskColor : kByLayerCode);
  return Flow::kRecord;
}

// Sized by the resolution of each direction, as it is on the page. The host gets one resolution, and the scales.
Flow Interpreter::DrawSolid(const CPDFRasterObject &raster) {
  const Placement &placed = raster.placement();
  const ImageDescription image = raster.Describe();
  const double width = image.width * kMillimetresPerInch / placed.dpi * placed.scaleX;
  const double height = image.height * kMillimetresPerInch / placed.dpi * placed.scaleY;
  const double c = std::cos(placed.angle), s = std::sin(placed.angle);
  const double x1 = placed.x + width * c, y1 = placed.y + width * s;
  const double corners[] = {
      placed.x, placed.y, x1, y1, x1 - height * s, y1 + height * c, placed.x - height * s, placed.y + height * c};
  for (const double corner : corners) {
    if (!std::isfinite(corner)) return Flow::kNext;
  }
  const uint32_t starts[] = {0, 4};
  const size_t bytes = sizeof(FilledPolygonPayload) + sizeof corners + sizeof starts;
  uint8_t *block = blocks_.polygon.Prepare(bytes);
  FilledPolygonPayload polygon = {};
  polygon.contourCount = 1;
  polygon.vertexCount = 4;
  polygon.vertices = reinterpret_cast<double *>(block + sizeof polygon);
  polygon.contourStarts = reinterpret_cast<uint32_t *>(block + sizeof polygon + sizeof corners);
  polygon.opacity = OpacityPercent();
  StoreAs(block, polygon);
  std::memcpy(block + sizeof polygon, corners, sizeof corners);
  std::memcpy(block + sizeof polygon + sizeof corners, starts, sizeof starts);
  StartRecord(ElemFilledPolygon, state_.fillColor == kWhiteCode ? kWhiteEntry : state_.fillColor, block, bytes);
  return Flow::kRecord;
}

// The last stripe of a container announces all of them as one image, from the top one on.
Flow Interpreter::DrawStripe(CPDFRasterObject &container, std::string_view name) {
  auto &stripes = container.stripes();
  stripesSeen_ += stripes.size();
  if (stripesSeen_ > limits::kStripesSeen) return Flow::kNext;
  bool complete = true;
  for (const auto &stripe : stripes) {
    if (stripe->name == name) {
      stripe->SetMatrix(state_.ctm);
      stripe->placed = true;
    }
    complete = complete && stripe->placed;
  }
  if (!complete) return Flow::kNext;
  std::stable_sort(stripes.begin(), stripes.end(), [](const auto &a, const auto &b) {
    const Placement &first = a->placement(), &second = b->placement();
    return first.y != second.y ? first.y > second.y : first.x > second.x;
  });
  announced_ = &container;
  inlineWaiting_ = false;
  const bool white = state_.fillColor == kWhiteCode;
  const uint32_t color = !white ? state_.fillColor : stripes.front()->isMask() ? kWhiteCode : kByLayerCode;
  StartRaster(stripes.front()->placement(), name, color);
  return Flow::kRecord;
}

bool Interpreter::PrepareRaster(std::string &name, ImageDescription &description) {
  rowsDelivered_ = 0;
  raster_ = nullptr;
  inlinePrepared_ = false;
  if (inlineWaiting_) {
    if (!inlineRaster_->codec) return false;
    const ImageDescription &told = inlineRaster_->description;
    description = {told.width, told.height, told.dpi, told.invert, told.kind, Copy(told.palette)};
    if (name.empty()) name = "Image";
    inlineRaster_->data->Seek(0, SeekOrigin::kStart);
    inlineRaster_->codec->reset();
    inlinePrepared_ = true;
  } else {
    CPDFXObject *found = name.empty() ? announced_ : nullptr;
    for (CPDFContentStream *context = context_; context && !found; context = context->parent)
      found = context->resources.FindXObject(name);
    auto *raster = dynamic_cast<CPDFRasterObject *>(found);
    if (!raster || !raster->Prepare()) return false;
    description = raster->Describe();
    raster_ = raster;
    if (name.empty()) name = !raster->givenName().empty() ? raster->givenName() : raster->name;
    if (name.empty()) name = "Image";
  }
  rasterHeight_ = description.height;
  rowKind_ = description.kind;
  const size_t words = CPDFRasterObject::RowBytes(description.width) / sizeof(uint32_t);
  if (row_.size() < words) row_.resize(words);
  return true;
}

uint32_t Interpreter::ReadRasterRow(uint8_t *&row, size_t &bytes) {
  const bool fromInline = inlineWaiting_ && inlinePrepared_;
  if (!fromInline && !raster_) return FilterNotAvailable;
  if (rowsDelivered_ >= rasterHeight_) {
    if (raster_) raster_->Rewind();
    raster_ = nullptr;
    if (fromInline) {
      inlineWaiting_ = false;
      inlineRaster_.reset();
    }
    return FilterNoMoreRows;
  }
  row = reinterpret_cast<uint8_t *>(row_.data());
  const size_t used = fromInline ? inlineRaster_->reader->Read(*inlineRaster_->codec, row) : raster_->ReadLine(row);
  bytes = rowKind_ == RasterKind::kBilevel ? used : row_.size() * sizeof(uint32_t);
  ++rowsDelivered_;
  return FilterOk;
}

// The rows of an inline image, which the page's count of rasters does not hold, leave the page's own progress as it is.
double Interpreter::Fraction() const {
  if (!raster_) return page_->Fraction();
  const double rows = static_cast<double>(page_->resources.RasterCount()) * rasterHeight_;
  const double done = (static_cast<double>(rasterSequence_) + 1) * rowsDelivered_ / rows;
  return std::isfinite(done) ? std::clamp(done, 0.0, 1.0) : 0.0;
}

}  // namespace kapdf
