#include "svg/svg_writer.h"

#include <algorithm>
#include <cmath>

#include "base/color.h"
#include "base/units.h"
#include "records/kinds.h"
#include "svg/svg_text.h"

namespace kapdf::tool {
namespace {

constexpr double kMargin = 2;                // mm of paper around the elements
constexpr double kThinDashed = 0.1;          // mm: dashes of a hairline would be counted in pixels
constexpr size_t kGroupsLookedThrough = 64;  // a layer scattered more widely starts anew
constexpr uint32_t kNearlyWhite = 232;       // of 255, every component
constexpr double kShortest = 0.0001;         // mm: as long as a line must be for its ends to be told apart
constexpr double kCapHeight = 0.716;         // of an em: how high capitals usually are

std::string Hex(uint32_t packed) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string out = "#";
  for (const uint32_t byte : {RedOf(packed), GreenOf(packed), BlueOf(packed)}) {
    out += kDigits[byte >> 4];
    out += kDigits[byte & 15];
  }
  return out;
}

bool IsNearlyWhite(uint32_t packed) {
  return RedOf(packed) > kNearlyWhite && GreenOf(packed) > kNearlyWhite && BlueOf(packed) > kNearlyWhite;
}

bool Fills(const ElementRecord &record) {
  if (PointPayload point; record.kind == ElemPoint && CopyPayload(record, point)) return point.pointStyle != 2;
  return record.kind == ElemFilledPolygon || record.kind == ElemSolid;
}

bool IsDrawn(uint32_t kind) {
  const Kind *found = FindKind(kind);
  return found != nullptr && found->drawn;
}

// Six capitals and a plus sign tell the subsets of one face apart; nobody has installed it under such a name.
std::u16string_view WithoutSubsetPrefix(std::u16string_view face) {
  constexpr size_t kLetters = 6;
  const auto capital = [](char16_t unit) { return unit >= 'A' && unit <= 'Z'; };
  const bool subset =
      face.size() > kLetters + 1 && face[kLetters] == '+' && std::ranges::all_of(face.substr(0, kLetters), capital);
  return subset ? face.substr(kLetters + 1) : face;
}

void AppendStroke(std::string &out, const std::string &color, double width, const DashPattern *pattern) {
  const bool dashed = pattern != nullptr && !pattern->empty();
  out += " stroke=\"" + color + "\"";
  if (width > 0 || dashed) {
    AppendAttribute(out, "stroke-width", width > 0 ? width : kThinDashed);
  } else {
    out += " class=\"hair\"";
  }
  if (!dashed) return;
  // SVG's list alternates dash and gap from a dash on; neighbours of one sort are added up.
  std::vector<double> list;
  bool dash = true;
  for (const double segment : *pattern) {
    const bool isDash = segment >= 0;
    if (list.empty() && !isDash) {
      list.push_back(0);
      dash = false;
    } else if (!list.empty() && isDash == dash) {
      list.back() += std::abs(segment);
      continue;
    }
    dash = isDash;
    list.push_back(std::abs(segment));
  }
  if (list.size() % 2 != 0) list.push_back(0);
  out += " stroke-dasharray=\"";
  for (size_t i = 0; i < list.size(); ++i) {
    if (i > 0) out += ' ';
    // A dot is as long as the line is wide.
    AppendSvgNumber(out, i % 2 == 0 && list[i] == 0 ? std::max(width, kThinDashed) : list[i]);
  }
  out += '"';
}

// A line without length, as pads and vias often are. Without a round cap nothing would show.
bool IsDot(std::span<const Point> points) {
  return std::ranges::all_of(points, [&](Point p) {
    return std::abs(p.x - points[0].x) < kShortest && std::abs(p.y - points[0].y) < kShortest;
  });
}

void AppendDot(std::string &out, const std::string &color, double width) {
  AppendStroke(out, color, width, nullptr);
  out += " stroke-linecap=\"round\"/>\n";
}

}  // namespace

void SvgPage::Add(const ElementRecord &record) {
  if (!IsDrawn(record.kind)) return Define(record);
  const Kind *kind = FindKind(record.kind);
  if (record.payload == nullptr || record.payloadBytes < kind->payloadBytes) return;
  const size_t layer = LayerOf(record);
  const Ink ink = InkOf(record, layer);
  const Box box = BoundsOf(record, ink.width);
  box_.Merge(box);
  if (RasterPlacementPayload placement; record.kind == ElemRasterPlacement && CopyPayload(record, placement)) {
    placement_ = placement;
    placementLayer_ = layer;
    placementInk_ = current_;
    return;
  }
  Draw(GroupFor(layer, box, Fills(record)), record, ink);
}

void SvgPage::Define(const ElementRecord &record) {
  if (LayerDefPayload def; record.kind == ElemLayerDef && CopyPayload(record, def)) {
    Layer layer{def.name != nullptr ? def.name : u"", ResolveLayerColor(def.color), def.width, def.layerOff != 0};
    if (layerIndex_.try_emplace(layer.name, layers_.size()).second) layers_.push_back(std::move(layer));
  } else if (LineTypeDefPayload lineType; record.kind == ElemLineTypeDef && CopyPayload(record, lineType)) {
    patterns_.try_emplace(lineType.name != nullptr ? lineType.name : u"", PatternOf(lineType));
  } else if (FontDefPayload font; record.kind == ElemFontDef && CopyPayload(record, font)) {
    const bool carried = (record.payloadBytes & ~KAPDF_FONT_MAPPED) > sizeof font;
    fonts_.try_emplace(font.styleName != nullptr ? font.styleName : u"",
                       Font{font.faceName != nullptr ? font.faceName : u"", carried});
  }
}

size_t SvgPage::LayerOf(const ElementRecord &record) {
  const auto [found, isNew] = layerIndex_.try_emplace(record.layerName, layers_.size());
  if (isNew) layers_.push_back({record.layerName});
  return found->second;
}

SvgPage::Ink SvgPage::InkOf(const ElementRecord &record, size_t layer) {
  const uint32_t color = ResolveColor(record.color, layers_[layer].color, current_);
  current_ = color;
  if (!Fills(record) && record.kind != ElemRasterPlacement && IsNearlyWhite(color)) whiteInk_ = true;
  const auto pattern = patterns_.find(record.styleName);
  return {Hex(color), layers_[layer].width >= 0 ? layers_[layer].width : WidthOf(record),
          pattern != patterns_.end() ? &pattern->second : nullptr};
}

// An element may join an earlier group of its layer unless that would put it below a fill of a later group that it
// lies on, or, being a fill itself, below anything there.
std::string &SvgPage::GroupFor(size_t layer, const Box &box, bool fills) {
  size_t chosen = groups_.size();
  for (size_t i = groups_.size(); i-- > 0 && groups_.size() - i <= kGroupsLookedThrough;) {
    if (groups_[i].layer == layer) {
      chosen = i;
      break;
    }
    if (box.Touches(fills ? groups_[i].ink : groups_[i].filled)) break;
  }
  if (chosen == groups_.size()) groups_.push_back({layer, {}, {}, {}});
  groups_[chosen].ink.Merge(box);
  if (fills) groups_[chosen].filled.Merge(box);
  return groups_[chosen].text;
}

void SvgPage::Draw(std::string &out, const ElementRecord &record, const Ink &ink) const {
  switch (record.kind) {
    case ElemLine: {
      const auto line = ReadAt<LinePayload>(record.payload, 0);
      out += "<line";
      AppendAttribute(out, "x1", line.x1);
      AppendAttribute(out, "y1", -line.y1);
      AppendAttribute(out, "x2", line.x2);
      AppendAttribute(out, "y2", -line.y2);
      if (const Point ends[] = {{line.x1, line.y1}, {line.x2, line.y2}}; IsDot(ends)) {
        return AppendDot(out, ink.color, ink.width);
      }
      break;
    }
    case ElemPolyline: {
      const auto vertices = VerticesOf(record);
      out += "<polyline points=\"";
      AppendPoints(out, vertices);
      out += '"';
      if (IsDot(vertices)) return AppendDot(out, ink.color, ink.width);
      break;
    }
    case ElemCircle:
    case ElemArc:
    case ElemEllipseArc: {
      const auto arc = ArcOf(record);
      if (!arc) return;
      if (!arc->whole()) {
        out += "<path d=\"";
        AppendArcPath(out, *arc);
        out += '"';
        break;
      }
      const bool circle = arc->major == arc->minor;
      out += circle ? "<circle" : "<ellipse";
      AppendAttribute(out, "cx", arc->center.x);
      AppendAttribute(out, "cy", -arc->center.y);
      AppendAttribute(out, circle ? "r" : "rx", std::abs(arc->major));
      if (circle) break;
      AppendAttribute(out, "ry", std::abs(arc->minor));
      if (arc->rotation != 0) {
        out += " transform=\"rotate(" + SvgNumber(-arc->rotation * 180 / std::numbers::pi) + " " +
               SvgNumber(arc->center.x) + " " + SvgNumber(-arc->center.y) + ")\"";
      }
      break;
    }
    case ElemPoint: {
      const auto point = ReadAt<PointPayload>(record.payload, 0);
      out += "<circle";
      AppendAttribute(out, "cx", point.x);
      AppendAttribute(out, "cy", -point.y);
      AppendAttribute(out, "r", std::abs(point.size) / 2);
      if (point.pointStyle == 2) break;
      out += " fill=\"" + ink.color + "\"/>\n";
      return;
    }
    case ElemSolid: {
      const auto solid = ReadAt<SolidPayload>(record.payload, 0);
      const Point corners[] = {{solid.x0, solid.y0}, {solid.x1, solid.y1}, {solid.x2, solid.y2}, {solid.x3, solid.y3}};
      out += "<polygon points=\"";
      AppendPoints(out, corners);
      out += "\" fill-rule=\"evenodd\" fill=\"" + ink.color + "\"/>\n";
      return;
    }
    case ElemFilledPolygon: {
      const auto polygon = ReadAt<FilledPolygonPayload>(record.payload, 0);
      out += "<path d=\"";
      for (const auto &contour : ContoursOf(record)) {
        if (contour.empty()) continue;
        out += 'M';
        AppendPoints(out, contour);
        out += 'Z';
      }
      out += "\" fill-rule=\"evenodd\" fill=\"" + ink.color + "\"";
      if (polygon.opacity < 100) AppendAttribute(out, "fill-opacity", std::max(0.0, polygon.opacity) / 100);
      if (polygon.strokeToo != 0) break;
      out += "/>\n";
      return;
    }
    case ElemText:
      return DrawText(out, record, ink);
    default:
      return;
  }
  AppendStroke(out, ink.color, ink.width, ink.pattern);
  out += "/>\n";
}

void SvgPage::DrawText(std::string &out, const ElementRecord &record, const Ink &ink) const {
  const auto text = ReadAt<TextPayload>(record.payload, 0);
  if (text.text == nullptr || text.text[0] == 0) return;
  out += "<text transform=\"translate(" + SvgNumber(text.x) + " " + SvgNumber(-text.y) + ")";
  if (text.angle != 0) out += " rotate(" + SvgNumber(-text.angle * 180 / std::numbers::pi) + ")";
  if (text.widthFactor != 1) out += " scale(" + SvgNumber(text.widthFactor) + " 1)";
  out += "\"";
  const auto found = fonts_.find(record.styleName);
  const Font font = found != fonts_.end() ? found->second : Font{};
  // The height is that of the capitals; of a font that came along it is about the em.
  AppendAttribute(out, "font-size", font.carried ? text.height : text.height / kCapHeight);
  if (font.carried) out += " style=\"font-size-adjust:none\"";
  const std::u16string face = !font.face.empty()         ? font.face
                              : text.fontName != nullptr ? text.fontName
                                                         : record.styleName;
  if (!face.empty()) {
    out += " font-family=\"";
    AppendXml(out, WithoutSubsetPrefix(face));
    out += "\"";
  }
  out += " fill=\"" + ink.color + "\" xml:space=\"preserve\">";
  AppendXml(out, text.text);
  out += "</text>\n";
}

// The frame lies with its lower left corner at the placement and is turned about it; a scale below zero mirrors it.
std::string *SvgPage::OpenRaster(const ElementRecord &header) {
  RasterHeaderPayload raster;
  if (!CopyPayload(header, raster) || raster.dpi == 0 || layers_.empty()) return nullptr;
  const double width = placement_.scaleX * raster.width * kMillimetresPerInch / raster.dpi;
  const double height = placement_.scaleY * raster.height * kMillimetresPerInch / raster.dpi;
  const double c = std::cos(placement_.angle), s = std::sin(placement_.angle);
  Box box;
  for (const auto &[along, up] : {Point{0, 0}, {width, 0}, {width, height}, {0, height}}) {
    box.Add({placement_.x + along * c - up * s, placement_.y + along * s + up * c});
  }
  box_.Merge(box);
  if (raster.pixelType == 0 && IsNearlyWhite(placementInk_)) whiteInk_ = true;
  std::string &out = GroupFor(placementLayer_, box, true);
  out += "<image transform=\"translate(" + SvgNumber(placement_.x) + " " + SvgNumber(-placement_.y) + ")";
  if (placement_.angle != 0) out += " rotate(" + SvgNumber(-placement_.angle * 180 / std::numbers::pi) + ")";
  if (width < 0 || height < 0) {
    out += std::string(" scale(") + (width < 0 ? "-1 " : "1 ") + (height < 0 ? "-1)" : "1)");
  }
  out += "\" x=\"0\"";
  AppendAttribute(out, "y", -std::abs(height));
  AppendAttribute(out, "width", std::abs(width));
  AppendAttribute(out, "height", std::abs(height));
  out += " preserveAspectRatio=\"none\"";
  if (placement_.opacity < 100) AppendAttribute(out, "opacity", std::max(placement_.opacity, 0.0) / 100);
  out += " xlink:href=\"";
  return &out;
}

void SvgPage::Finish(std::string &out, const std::string &title) const {
  Box box = box_;
  if (box.empty()) box = {0, 0, 210, 297};
  box.Grow(kMargin);
  const std::string x = SvgNumber(box.xmin), y = SvgNumber(-box.ymax);
  const std::string width = SvgNumber(box.width()), height = SvgNumber(box.height());
  out +=
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<svg xmlns=\"http://www.w3.org/2000/svg\" "
      "xmlns:xlink=\"http://www.w3.org/1999/xlink\" xmlns:inkscape=\"http://www.inkscape.org/namespaces/inkscape\" "
      "width=\"" +
      width + "mm\" height=\"" + height + "mm\" viewBox=\"" + x + " " + y + " " + width + " " + height + "\">\n<title>";
  AppendXml(out, std::string_view(title));
  // A hairline is a pixel wide at every size, and thin where a viewer knows no such lines. Capitals are as high as they
  // should be where a viewer can adjust the size to the face that it has, else about so.
  out += "</title>\n<style>text{font-size-adjust:cap-height " + SvgNumber(kCapHeight) + "}\n";
  out +=
      ".hair{stroke-width:0.1}@supports(vector-effect:non-scaling-stroke)"
      "{.hair{stroke-width:1px;vector-effect:non-scaling-stroke}}</style>\n<rect x=\"" +
      x + "\" y=\"" + y + "\" width=\"" + width + "\" height=\"" + height + "\" fill=\"" +
      // White lines need a paper that they stand out from.
      (whiteInk_ ? "#c8c8c8" : "#ffffff") + "\"/>\n<g fill=\"none\" stroke-linejoin=\"round\">\n";
  std::vector<size_t> parts(layers_.size());
  for (const Group &group : groups_) {
    const Layer &layer = layers_[group.layer];
    const size_t part = ++parts[group.layer];
    out += "<g id=\"layer" + std::to_string(group.layer + 1);
    if (part > 1) out += "-" + std::to_string(part);
    out += "\" inkscape:groupmode=\"layer\" inkscape:label=\"";
    AppendXml(out, layer.name);
    out += layer.off ? "\" style=\"display:none\">\n" : "\">\n";
    out += group.text;
    out += "</g>\n";
  }
  out += "</g>\n</svg>\n";
}

}  // namespace kapdf::tool
