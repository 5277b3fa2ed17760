#include "records/kinds.h"

#include <algorithm>

namespace kapdf::tool {
namespace {

constexpr FieldType kReal = FieldType::kReal;
constexpr FieldType kPoints = FieldType::kPoints;
constexpr FieldType kU32 = FieldType::kU32;
constexpr FieldType kFlag = FieldType::kFlag;
constexpr FieldType kText = FieldType::kText;
constexpr Need kRequired = Need::kRequired;
constexpr Need kShown = Need::kShown;
constexpr Need kOptional = Need::kOptional;

constexpr Field kPoint[] = {{"at", offsetof(PointPayload, x), kPoints, kRequired},
                            {"size", offsetof(PointPayload, size), kReal, kShown},
                            {"pointStyle", offsetof(PointPayload, pointStyle), kU32}};
// The vertices follow the table's fields.
constexpr Field kPolyline[] = {{"width", offsetof(PolylinePayload, width), kReal, kShown},
                               {"curved", offsetof(PolylinePayload, curved), kU32}};
constexpr Field kLine[] = {{"width", offsetof(LinePayload, width), kReal, kShown},
                           {"points", offsetof(LinePayload, x1), kPoints, kRequired, 0, 2}};
constexpr Field kCircle[] = {{"width", offsetof(CirclePayload, width), kReal, kShown},
                             {"center", offsetof(CirclePayload, cx), kPoints, kRequired},
                             {"radius", offsetof(CirclePayload, radius), kReal, kRequired}};
constexpr Field kArc[] = {{"width", offsetof(ArcPayload, width), kReal, kShown},
                          {"center", offsetof(ArcPayload, cx), kPoints, kRequired},
                          {"radius", offsetof(ArcPayload, radius), kReal, kRequired},
                          {"startAngle", offsetof(ArcPayload, startAngle), kReal, kRequired},
                          {"endAngle", offsetof(ArcPayload, endAngle), kReal, kRequired}};
constexpr Field kSolid[] = {{"points", offsetof(SolidPayload, x0), kPoints, kRequired, 0, 4}};
constexpr Field kTextFields[] = {{"text", offsetof(TextPayload, text), kText},
                                 {"at", offsetof(TextPayload, x), kPoints, kRequired},
                                 {"height", offsetof(TextPayload, height), kReal, kRequired},
                                 {"angle", offsetof(TextPayload, angle), kReal},
                                 {"widthFactor", offsetof(TextPayload, widthFactor), kReal, kOptional, 1},
                                 {"styleCode", offsetof(TextPayload, style), kU32},
                                 {"font", offsetof(TextPayload, fontName), kText}};
constexpr Field kEllipseArc[] = {{"width", offsetof(EllipseArcPayload, width), kReal, kShown},
                                 {"center", offsetof(EllipseArcPayload, cx), kPoints, kRequired},
                                 {"majorRadius", offsetof(EllipseArcPayload, majorRadius), kReal, kRequired},
                                 {"minorRadius", offsetof(EllipseArcPayload, minorRadius), kReal, kRequired},
                                 {"rotation", offsetof(EllipseArcPayload, rotation), kReal},
                                 {"startAngle", offsetof(EllipseArcPayload, startAngle), kReal},
                                 {"endAngle", offsetof(EllipseArcPayload, endAngle), kReal}};
// The contours follow.
constexpr Field kPolygon[] = {{"width", offsetof(FilledPolygonPayload, width), kReal},
                              {"opacity", offsetof(FilledPolygonPayload, opacity), kReal, kShown, 100},
                              {"strokeToo", offsetof(FilledPolygonPayload, strokeToo), kFlag}};
constexpr Field kLayer[] = {{"name", offsetof(LayerDefPayload, name), kText, kRequired},
                            {"color", offsetof(LayerDefPayload, color), FieldType::kColor, kShown, KAPDF_COLOR_BLACK},
                            {"width", offsetof(LayerDefPayload, width), kReal, kShown, -2},
                            {"lineType", offsetof(LayerDefPayload, lineType), kText},
                            {"layerOff", offsetof(LayerDefPayload, layerOff), kFlag},
                            {"flagB", offsetof(LayerDefPayload, flagB), kU32}};
// The segments follow.
constexpr Field kLineType[] = {{"name", offsetof(LineTypeDefPayload, name), kText, kRequired}};
// The two halves of charsetAndCodePage and the font program follow.
constexpr Field kFont[] = {{"name", offsetof(FontDefPayload, styleName), kText, kRequired},
                           {"face", offsetof(FontDefPayload, faceName), kText},
                           {"file", offsetof(FontDefPayload, fileName), kText},
                           {"height", offsetof(FontDefPayload, defaultHeight), kReal, kOptional, 3},
                           {"widthFactor", offsetof(FontDefPayload, defaultWidthFactor), kReal, kOptional, 1}};
// The palette follows.
constexpr Field kRasterHeader[] = {{"pixelsWide", offsetof(RasterHeaderPayload, width), kU32, kRequired},
                                   {"pixelsHigh", offsetof(RasterHeaderPayload, height), kU32, kRequired},
                                   {"dpi", offsetof(RasterHeaderPayload, dpi), kU32, kShown},
                                   {"depthHint", offsetof(RasterHeaderPayload, depthHint), kU32},
                                   {"pixelType", offsetof(RasterHeaderPayload, pixelType), kU32, kShown}};
constexpr Field kRaster[] = {{"at", offsetof(RasterPlacementPayload, x), kPoints, kRequired},
                             {"scaleX", offsetof(RasterPlacementPayload, scaleX), kReal, kShown, 1},
                             {"scaleY", offsetof(RasterPlacementPayload, scaleY), kReal, kShown, 1},
                             {"angle", offsetof(RasterPlacementPayload, angle), kReal},
                             {"opacity", offsetof(RasterPlacementPayload, opacity), kReal, kOptional, 100},
                             {"clipMode", offsetof(RasterPlacementPayload, clipMode), kU32}};
constexpr Field kProperty[] = {{"name", offsetof(NamedPropertyPayload, name), kText, kRequired},
                               {"type", offsetof(NamedPropertyPayload, type), kU32, kOptional, 4},
                               {"value", offsetof(NamedPropertyPayload, value), kText}};

constexpr const char *kLineTypeKey = "lineType";
constexpr const char *kTextStyleKey = "textStyle";
constexpr const char *kImageKey = "image";
constexpr const char *kOtherKey = "styleName";

constexpr Kind kKinds[] = {
    {ElemRasterRows, "rasterRow", "raster rows", kImageKey, 0, 4, false, {}},
    {ElemLayerDef, "layer", "layers", kOtherKey, sizeof(LayerDefPayload), 3, false, kLayer},
    {ElemLineTypeDef, "lineType", "line types", kOtherKey, sizeof(LineTypeDefPayload), 3, false, kLineType},
    {ElemFontDef, "font", "fonts", kTextStyleKey, sizeof(FontDefPayload), 3, false, kFont},
    {ElemRasterHeader, "rasterHeader", "raster headers", kImageKey, sizeof(RasterHeaderPayload), 4, false,
     kRasterHeader},
    {ElemNamedProperty, "property", "properties", kOtherKey, sizeof(NamedPropertyPayload), 0, false, kProperty},
    {ElemPoint, "point", "points", kLineTypeKey, sizeof(PointPayload), 4, true, kPoint},
    {ElemPolyline, "polyline", "polylines", kLineTypeKey, sizeof(PolylinePayload), 4, true, kPolyline},
    {ElemLine, "line", "lines", kLineTypeKey, sizeof(LinePayload), 4, true, kLine},
    {ElemCircle, "circle", "circles", kLineTypeKey, sizeof(CirclePayload), 4, true, kCircle},
    {ElemArc, "arc", "arcs", kLineTypeKey, sizeof(ArcPayload), 4, true, kArc},
    {ElemSolid, "solid", "solids", kLineTypeKey, sizeof(SolidPayload), 4, true, kSolid},
    {ElemText, "text", "texts", kTextStyleKey, sizeof(TextPayload), 4, true, kTextFields},
    {ElemComposite, "composite", "composites", kLineTypeKey, 0, 4, true, {}},
    {ElemEllipseArc, "ellipseArc", "ellipse arcs", kLineTypeKey, sizeof(EllipseArcPayload), 4, true, kEllipseArc},
    {ElemFilledPolygon, "polygon", "polygons", kLineTypeKey, sizeof(FilledPolygonPayload), 4, true, kPolygon},
    {ElemRasterPlacement, "raster", "rasters", kImageKey, sizeof(RasterPlacementPayload), 4, true, kRaster},
};

}  // namespace

const Kind *FindKind(uint32_t kind) {
  const auto *found = std::find_if(std::begin(kKinds), std::end(kKinds), [&](const Kind &k) { return k.kind == kind; });
  return found == std::end(kKinds) ? nullptr : found;
}

const Kind *FindKind(std::string_view word) {
  const auto *found = std::find_if(std::begin(kKinds), std::end(kKinds), [&](const Kind &k) { return k.word == word; });
  return found == std::end(kKinds) ? nullptr : found;
}

std::string WithArticle(const Kind &kind) {
  return (std::string_view("aeiou").find(kind.word[0]) == std::string_view::npos ? "a " : "an ") +
         std::string(kind.word);
}

const char *KindWord(uint32_t kind) {
  const Kind *found = FindKind(kind);
  return found != nullptr ? found->word : "element of an unknown kind";
}

}  // namespace kapdf::tool
