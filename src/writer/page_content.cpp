#include "writer/page_content.h"

#include <algorithm>
#include <cmath>

#include "base/bytes.h"
#include "base/color.h"
#include "base/units.h"
#include "writer/arc_path.h"

namespace kapdf {
namespace {

constexpr double kUsualMiter = 10;
constexpr double kCircleControl = 0.5522847498;  // of the radius

double CoordinateAt(const double *values, size_t index) { return LoadAs<double>(values + index); }

}  // namespace

void PageContent::Begin() {
  out_.Text("q\n");
  if (options_.joinStyle != 0) {
    out_.Integer(options_.joinStyle).Text(" j\n");
  } else if (options_.miter != kUsualMiter) {
    out_.Real(options_.miter).Text(" M\n");
  }
  if (options_.lineCap != 0) out_.Integer(options_.lineCap).Text(" J\n");
  PutPageMatrix();
}

void PageContent::PutPageMatrix() { out_.Real(page_.scale).Text(" 0 0 ").Real(page_.scale).Text(" 0 0 cm\n"); }

void PageContent::End() { out_.Text(options_.pdfa != 0 ? "Q" : "EMC\nQ"); }

void PageContent::Select(const ElementRecord &record) {
  int32_t layer = layer_;
  const std::u16string_view name = FieldText(record.layerName);
  if (layer < 0 || name != lastLayerName_) {
    lastLayerName_ = name;
    layer = LayerOf(name);
  }
  const uint32_t color = ResolveColor(record.color, layers_[layer].color, color_ == kNoColor ? 0 : color_);
  const bool layerChanges = layer != layer_;
  if (!layerChanges && color == color_) return;

  const bool marksLayers = options_.pdfa == 0;
  if (layerChanges && layer_ >= 0 && marksLayers) out_.Text("EMC\n");
  out_.Color(color).Text(" RG\n");
  if (layerChanges && marksLayers) out_.Text("/OC /oc").Integer(layer).Text(" BDC\n");
  layer_ = layer;
  color_ = color;
}

int32_t PageContent::LayerOf(std::u16string_view name) const {
  const int32_t found = layers_.Find(name);
  return found >= 0 ? found : std::max(layer_, 0);
}

uint32_t PageContent::ColorOf(const ElementRecord &record) const {
  const uint32_t layerColor = layers_.empty() ? 0 : layers_[LayerOf(FieldText(record.layerName))].color;
  return ResolveColor(record.color, layerColor, color_ == kNoColor ? 0 : color_);
}

void PageContent::PutWidth(double elementWidth) {
  const double layerWidth = layers_[layer_].width;
  const double width = layerWidth < 0 ? elementWidth : layerWidth;
  if (width == lineWidth_) return;
  lineWidth_ = width;
  out_.Real(width).Text(" w\n");
}

// Nobody remembers the fill colour between elements: it is sent with each.
void PageContent::PutFill(int32_t transparencyKey) {
  PutTransparency(transparencyKey);
  out_.Color(color_).Text(" rg\n");
}

void PageContent::PutTransparency(int32_t key) {
  if (!options_.useTransparency || key == transparencyKey_) return;
  out_.Name(TransparencyTable::NameOf(states_.FindOrAdd(key))).Text(" gs\n");
  transparencyKey_ = key;
}

void PageContent::Draw(const LinePayload &line) {
  PutWidth(line.width);
  PutMove(line.x1, line.y1);
  PutLine(line.x2, line.y2);
  out_.Text("S\n");
}

// Stays open even when the ends meet.
void PageContent::Draw(const PolylinePayload &polyline) {
  PutWidth(polyline.width);
  const double *vertices = polyline.vertices;
  const size_t stride = size_t{polyline.extraPerVertex} + 2;
  PutMove(CoordinateAt(vertices, 0), CoordinateAt(vertices, 1));
  for (int32_t i = 1; i < polyline.vertexCount; ++i) {
    const size_t at = static_cast<size_t>(i) * stride;
    PutLine(CoordinateAt(vertices, at), CoordinateAt(vertices, at + 1));
  }
  out_.Text("S\n");
}

// From the left over the top.
void PageContent::Draw(const CirclePayload &circle, bool filled) {
  if (filled) PutFill(TransparencyTable::kOpaque);
  PutWidth(circle.width);
  const double r = circle.radius, k = r * kCircleControl;
  out_.Text("q\n1 0 0 1 ");
  PutPoint(circle.cx, circle.cy).Text(" cm\n");
  out_.Real(-r).Text(" 0 m\n");
  PutCurve(-r, k, -k, r, 0, r);
  PutCurve(k, r, r, k, r, 0);
  PutCurve(r, -k, k, -r, 0, -r);
  PutCurve(-k, -r, -r, -k, -r, 0);
  out_.Text(filled ? "F\nQ\n" : "S\nQ\n");
}

void PageContent::Draw(const PointPayload &point) {
  Draw(CirclePayload{0, point.x, point.y, std::fabs(point.size) / 2}, point.pointStyle != 2);
}

void PageContent::Draw(const ArcPayload &arc) {
  Draw(EllipseArcPayload{arc.width, arc.cx, arc.cy, arc.radius, arc.radius, 0, arc.startAngle, arc.endAngle});
}

void PageContent::Draw(const EllipseArcPayload &arc) {
  const ArcPath path = TraceArc({arc.cx - page_.originX, arc.cy - page_.originY, arc.majorRadius, arc.minorRadius,
                                 arc.rotation, arc.startAngle, arc.endAngle});
  PutWidth(arc.width);
  out_.Point(path.startX, path.startY).Text(" m\n");
  for (size_t i = 0; i < path.count; ++i) {
    const ArcPath::Segment &curve = path.segments[i];
    PutCurve(curve.x1, curve.y1, curve.x2, curve.y2, curve.x3, curve.y3);
  }
  out_.Text("S\n");
}

void PageContent::Draw(const SolidPayload &solid) {
  PutFill(TransparencyTable::kOpaque);
  PutMove(solid.x0, solid.y0);
  PutLine(solid.x1, solid.y1);
  PutLine(solid.x2, solid.y2);
  PutLine(solid.x3, solid.y3);
  out_.Text("f*\n");
}

void PageContent::Draw(const TextPayload &text, const FontOut &font) {
  const double cosine = std::cos(text.angle), sine = std::sin(text.angle);
  PutFill(TransparencyTable::kOpaque);
  out_.Text("BT\n").Name(font.name()).Byte(' ').Real(text.height * font.sizeFactor()).Text(" Tf\n");
  out_.Point(cosine, sine).Byte(' ').Point(-sine, cosine).Byte(' ');
  PutPoint(text.x, text.y).Text(" Tm\n").Real(text.widthFactor * 100).Text(" Tz\n<");
  for (const char16_t code : NameText(text.text)) out_.Hex4(font.GlyphOf(code));
  out_.Text("> Tj\nET\n");
}

void PageContent::Draw(const FilledPolygonPayload &polygon, int32_t contours) {
  PutFill(TransparencyTable::KeyOf(polygon.opacity));
  PutWidth(polygon.width);
  for (int32_t contour = 0; contour < contours; ++contour) {
    const auto first = LoadAs<uint32_t>(polygon.contourStarts + contour);
    const auto end = LoadAs<uint32_t>(polygon.contourStarts + contour + 1);
    PutMove(CoordinateAt(polygon.vertices, size_t{first} * 2), CoordinateAt(polygon.vertices, size_t{first} * 2 + 1));
    for (size_t i = size_t{first} + 1; i < end; ++i) {
      PutLine(CoordinateAt(polygon.vertices, i * 2), CoordinateAt(polygon.vertices, i * 2 + 1));
    }
    out_.Text("h\n");
  }
  out_.Text(polygon.strokeToo != 0 ? "B*\n" : "f*\n");
}

void PageContent::Draw(const RasterPlacementPayload &place, const ImageEntry &image, size_t number) {
  PutFill(TransparencyTable::KeyOf(place.opacity));
  out_.Text("q\n");
  PutImage(place, image, number);
}

void PageContent::DrawWaiting(const PlacementTable &placements) {
  for (const PlacementTable::Waiting &waiting : placements.waiting()) {
    PutTransparency(TransparencyTable::KeyOf(waiting.place.opacity));
  }
  uint32_t color = kNoColor;
  for (const PlacementTable::Waiting &waiting : placements.waiting()) {
    if (waiting.color != color) out_.Color(waiting.color).Text(" rg\n");
    color = waiting.color;
    out_.Text("q\n");
    PutPageMatrix();
    PutImage(waiting.place, placements.Image(waiting.image), waiting.image);
  }
}

// To the place, turned, to the size; and back again.
void PageContent::PutImage(const RasterPlacementPayload &place, const ImageEntry &image, size_t number) {
  const double cosine = std::cos(place.angle), sine = std::sin(place.angle);
  const auto size = [&](double scale, uint32_t pixels) { return scale * pixels * kMillimetresPerInch / image.dpi; };
  out_.Text("1 0 0 1 ");
  PutPoint(place.x, place.y).Text(" cm\n").Factor(cosine).Byte(' ').Factor(sine).Byte(' ');
  out_.Factor(-sine).Byte(' ').Factor(cosine).Text(" 0 0 cm\n").Real(size(place.scaleX, image.width));
  out_.Text(" 0 0 ").Real(size(place.scaleY, image.height)).Text(" 0 0 cm\n/Im");
  out_.Integer(static_cast<int64_t>(number)).Text(" Do\nQ\n");
}

}  // namespace kapdf
