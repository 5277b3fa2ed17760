// The state that operators change and `q` saves.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "geometry/affine.h"

namespace kapdf {

enum class ColorKind { kRgb = 0, kGray = 1, kCmyk = 2, kResource = 3 };

class ColorSpace;

struct GraphicsState {
  Affine ctm;                  // to page coordinates, points
  double lineWidth = 1.0;      // PDF units
  uint32_t strokeColor = 256;  // colour codes; 256 is unset
  uint32_t fillColor = 256;
  ColorKind strokeKind = ColorKind::kRgb;
  ColorKind fillKind = ColorKind::kRgb;
  const ColorSpace *colorSpace = nullptr;  // set by the last `cs` or `CS`, for both; its context keeps it
  double alpha = 1.0;
  double charSpacing = 0;
  double wordSpacing = 0;
  double horizontalScale = 1.0;  // 1 for the font's own width
  double leading = 0;
  double fontSize = 1.0;
  int32_t renderMode = 0;  // 3 hides text
  std::string fontName;    // set outside text objects only
};

// The stack of `q` and `Q`. Beyond the bound states are only counted: their `Q` brings nothing back.
class StateStack {
 public:
  void Push(const GraphicsState &state);
  // Puts the state saved last back; nothing at the bottom.
  void Pop(GraphicsState &state);

 private:
  std::vector<GraphicsState> states_;
  uint64_t uncopied_ = 0;
};

}  // namespace kapdf
