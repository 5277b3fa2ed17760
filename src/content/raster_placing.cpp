// Images as they are drawn: records of their places.
#include <algorithm>
#include <cmath>
#include <cstring>

#include "base/color.h"
#include "base/limits.h"
#include "base/units.h"
#include "content/raster_delivery.h"
#include "platform/text.h"

namespace kapdf {
namespace {

constexpr uint32_t kWhiteEntry = 255;  // of the host's palette

}  // namespace

void RasterDelivery::StartPlacement(const Placement &placement, std::string_view name, uint32_t color) {
  RasterPlacementPayload &raster = sink_.blocks().raster;
  raster = {};
  raster.x = placement.x;
  raster.y = placement.y;
  raster.angle = placement.angle;
  raster.scaleX = placement.scaleX;
  raster.scaleY = placement.scaleY;
  raster.opacity = drawing_.OpacityPercent();
  raster.clipMode = drawing_.settings.imageFrame;
  sink_.Start(ElemRasterPlacement, color, &raster, sizeof raster);
  CopyName(sink_.record().styleName, platform::ToWide(name, platform::kSystemCodePage));
}

// Small images that are all of one colour become a polygon or nothing, unless they were found on the page itself from
// inside a form.
Flow RasterDelivery::Draw(CPDFRasterObject &raster, std::string_view name, bool fromRoot) {
  raster.Prepare();
  raster.SetMatrix(drawing_.state.ctm);
  const bool white = drawing_.state.fillColor == kWhiteCode;
  if (!fromRoot) {
    const auto solid = raster.TestSolid();
    if (solid == CPDFRasterObject::Solid::kBlank) return Flow::kNext;
    if (solid == CPDFRasterObject::Solid::kSolid) return DrawSolid(raster);
  }
  const uint32_t maskColor = fromRoot ? kWhiteCode : kWhiteEntry;
  announced_ = &raster;
  inlineWaiting_ = false;
  StartPlacement(raster.placement(), name,
                 !white            ? drawing_.state.fillColor
                 : raster.isMask() ? maskColor
                                   : kByLayerCode);
  return Flow::kRecord;
}

// Sized by the resolution of each direction, as it is on the page. The host gets one resolution, and the scales.
Flow RasterDelivery::DrawSolid(const CPDFRasterObject &raster) {
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
  uint8_t *block = sink_.blocks().polygon.Prepare(bytes);
  FilledPolygonPayload polygon = {};
  polygon.contourCount = 1;
  polygon.vertexCount = 4;
  polygon.vertices = reinterpret_cast<double *>(block + sizeof polygon);
  polygon.contourStarts = reinterpret_cast<uint32_t *>(block + sizeof polygon + sizeof corners);
  polygon.opacity = drawing_.OpacityPercent();
  StoreAs(block, polygon);
  std::memcpy(block + sizeof polygon, corners, sizeof corners);
  std::memcpy(block + sizeof polygon + sizeof corners, starts, sizeof starts);
  sink_.Start(ElemFilledPolygon, drawing_.state.fillColor == kWhiteCode ? kWhiteEntry : drawing_.state.fillColor, block,
              bytes);
  return Flow::kRecord;
}

// The last stripe of a container announces all of them as one image, from the top one on.
Flow RasterDelivery::DrawStripe(CPDFRasterObject &container, std::string_view name) {
  auto &stripes = container.stripes();
  stripesSeen_ += stripes.size();
  if (stripesSeen_ > limits::kStripesSeen) return Flow::kNext;
  bool complete = true;
  for (const auto &stripe : stripes) {
    if (stripe->name == name) {
      stripe->SetMatrix(drawing_.state.ctm);
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
  const bool white = drawing_.state.fillColor == kWhiteCode;
  const uint32_t color = !white ? drawing_.state.fillColor : stripes.front()->isMask() ? kWhiteCode : kByLayerCode;
  StartPlacement(stripes.front()->placement(), name, color);
  return Flow::kRecord;
}

Flow RasterDelivery::DrawInline(std::unique_ptr<InlineRaster> image) {
  inline_ = std::move(image);
  inlineWaiting_ = true;
  inlinePrepared_ = false;
  StartPlacement(inline_->placement, "InlineImage" + std::to_string(inlineCount_++), drawing_.state.fillColor);
  return Flow::kRecord;
}

}  // namespace kapdf
