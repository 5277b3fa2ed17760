// The operators of one page's content.
#pragma once

#include <cstdint>
#include <string>

#include "kapdf/kapdf.h"
#include "writer/font_out.h"
#include "writer/page_layout.h"
#include "writer/placements.h"
#include "writer/tables.h"
#include "writer/text_out.h"
#include "writer/write_options.h"

namespace kapdf {

// Remembers what is in force - layer, colour, line width, opacity - and sends only what changes. Coordinates go out in
// millimetres less the page's origin; one matrix at the start scales them. Lines end in LF.
//
// The run of elements of one layer lies between one BDC and one EMC; the end of the content closes the last.
class PageContent {
 public:
  // All are borrowed and must outlive the object.
  PageContent(TextOut &out, const WriteOptions &options, const PageLayout &page, const LayerTable &layers,
              TransparencyTable &states)
      : out_(out), options_(options), page_(page), layers_(layers), states_(states) {}

  // First and last operators. `End` leaves the last line open.
  void Begin();
  void End();

  // Puts the element's layer and colour in force. The layer table must not be empty.
  void Select(const ElementRecord &record);
  // The element's colour, without putting it in force; packed. Black where only a layer would tell and there is none.
  uint32_t ColorOf(const ElementRecord &record) const;

  void Draw(const LinePayload &line);
  void Draw(const PolylinePayload &polyline);
  void Draw(const CirclePayload &circle, bool filled);
  void Draw(const PointPayload &point);
  void Draw(const ArcPayload &arc);
  void Draw(const EllipseArcPayload &arc);
  void Draw(const SolidPayload &solid);
  // The text's characters must be in the font's use.
  void Draw(const TextPayload &text, const FontOut &font);
  // The first `contours` contours of the polygon; their starts must ascend within its vertices.
  void Draw(const FilledPolygonPayload &polygon, int32_t contours);
  // `number` names the image. Its size on the page is that at its resolution, times the placement's scale.
  void Draw(const RasterPlacementPayload &place, const ImageEntry &image, size_t number);
  // A page of images alone: every waiting placement scales for itself. All opacities are put in force ahead of all of
  // them, so that the last one holds for all.
  void DrawWaiting(const PlacementTable &placements);

 private:
  void PutWidth(double elementWidth);
  void PutFill(int32_t transparencyKey);
  void PutTransparency(int32_t key);
  void PutImage(const RasterPlacementPayload &place, const ImageEntry &image, size_t number);
  void PutPageMatrix();
  int32_t LayerOf(std::u16string_view name) const;
  void PutMove(double x, double y) { PutPoint(x, y).Text(" m\n"); }
  void PutLine(double x, double y) { PutPoint(x, y).Text(" l\n"); }
  void PutCurve(double x1, double y1, double x2, double y2, double x3, double y3) {
    out_.Point(x1, y1).Byte(' ').Point(x2, y2).Byte(' ').Point(x3, y3).Text(" c\n");
  }
  TextOut &PutPoint(double x, double y) { return out_.Point(x - page_.originX, y - page_.originY); }

  static constexpr uint32_t kNoColor = 0xFFFFFFFF;

  TextOut &out_;
  const WriteOptions &options_;
  const PageLayout &page_;
  const LayerTable &layers_;
  TransparencyTable &states_;

  int32_t layer_ = -1;
  std::u16string lastLayerName_;  // asked for last, found or not
  uint32_t color_ = kNoColor;     // packed
  double lineWidth_ = -1;
  int32_t transparencyKey_ = TransparencyTable::kOpaque;
};

}  // namespace kapdf
