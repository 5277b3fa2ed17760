// One page as an SVG drawing in millimetres.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "kapdf/kapdf.h"
#include "records/dash_breaker.h"
#include "records/shapes.h"

namespace kapdf::tool {

// Collects the elements by layer: the text of the drawing can only be put together at the end, when its box is known.
// A layer is one group as long as that keeps what lies on top on top; where fills of other layers come between, it
// goes on in a further group of the same name.
class SvgPage {
 public:
  void Add(const ElementRecord &record);
  // The picture that belongs to the placement added last. Appends to the text that is given back; the picture's address
  // goes behind it, and CloseRaster ends it ahead of the next element. Null when it has no place.
  std::string *OpenRaster(const ElementRecord &header);
  void CloseRaster(std::string &text) const { text += "\"/>\n"; }
  // Packed colour of that placement, for bilevel pictures.
  uint32_t placementInk() const { return placementInk_; }
  // Appends the whole document. `title` in UTF-8.
  void Finish(std::string &out, const std::string &title) const;

 private:
  struct Layer {
    std::u16string name;
    uint32_t color = 0;  // packed
    double width = -2;   // below zero: the elements' own
    bool off = false;
  };
  struct Font {
    std::u16string face;
    bool carried;  // its program came along
  };
  struct Group {
    size_t layer;
    std::string text;
    Box ink, filled;
  };
  struct Ink {
    std::string color;  // "#rrggbb"
    double width;       // resolved by the layer
    const DashPattern *pattern;
  };

  void Define(const ElementRecord &record);
  size_t LayerOf(const ElementRecord &record);
  std::string &GroupFor(size_t layer, const Box &box, bool fills);
  Ink InkOf(const ElementRecord &record, size_t layer);
  void Draw(std::string &out, const ElementRecord &record, const Ink &ink) const;
  void DrawText(std::string &out, const ElementRecord &record, const Ink &ink) const;

  std::vector<Layer> layers_;
  std::map<std::u16string, size_t> layerIndex_;
  std::map<std::u16string, DashPattern> patterns_;
  std::map<std::u16string, Font> fonts_;  // by the name of the style
  std::vector<Group> groups_;
  uint32_t current_ = 0;  // packed colour of the last element
  bool whiteInk_ = false;
  Box box_;
  // The placement that a raster header belongs to.
  RasterPlacementPayload placement_{};
  size_t placementLayer_ = 0;
  uint32_t placementInk_ = 0;
};

}  // namespace kapdf::tool
