// What the parts of the interpreter share.
#pragma once

#include <cmath>
#include <cstdint>

#include "base/settings_table.h"
#include "content/content_stream.h"
#include "content/graphics_state.h"
#include "content/reading_rules.h"

namespace kapdf {

struct InterpreterSettings {
  uint32_t imageFrame = DefaultOf<uint32_t>("ImageFrame");        // handed to the host with every raster
  bool clipping = DefaultOf<bool>("Clipping");                    // points outside the page's box are dropped
  bool convertPoly = DefaultOf<bool>("ConvertPoly");              // smooth polylines may become circles, arcs, ellipses
  double fitTolerance = DefaultOf<double>("FitTolerance");        // of that recognition
  int32_t codePage = DefaultOf<int32_t>("CodePage");              // of fonts that imply none
  double defaultTextWidth = DefaultOf<double>("DefaultTextW2H");  // width factor of text before the content tells one
  bool plainStatements =
      true;  // numbers before an operator are taken straight from the content; the result is the same
  ReadingRules rules = kClassicReading;
};

// The content at hand, the state in force while it is read, and how the host wants it read.
struct DrawingContext {
  const InterpreterSettings settings;
  CPDFContentStream *content;  // of the page, or of the form being drawn
  GraphicsState state;

  // The first thing that `find` gives for the resources at hand or of one of the contents around them; null for none.
  template <class Find>
  auto FindOutwards(Find find) const {
    CPDFContentStream *around = content;
    auto *found = find(around->resources);
    while (!found && (around = around->parent)) found = find(around->resources);
    return found;
  }

  double OpacityPercent() const {
    const double opacity = state.alpha * content->opacity * 100.0;
    return std::isfinite(opacity) ? opacity : 0.0;
  }
};

}  // namespace kapdf
