// Breaks an element whose line type is a pattern into its dashes, for a module that draws plain lines only.
#pragma once

#include <functional>
#include <span>
#include <vector>

#include "kapdf/kapdf.h"

namespace kapdf::tool {

// Lengths in millimetres: a dash above zero, a gap below, zero a dot.
using DashPattern = std::vector<double>;

// The stored segments of a definition; empty when the line type is plain, or when its lengths make no pattern.
DashPattern PatternOf(const LineTypeDefPayload &lineType);

enum class DashResult {
  kBroken,   // every piece went out
  kPlain,    // the pattern is empty or too fine for the element (above 100,000 pieces): it went out in one piece
  kStopped,  // `send` answered false
  kNotMine   // not an element that can be broken
};

// Sends the pieces of `record` as records with a plain line type: lines and polylines stay such, circles and arcs
// become arcs, ellipse arcs become ellipse arcs, of polygons the fill goes out first and each outline after it. The
// pattern starts anew with each element and each contour. Elements that have no line to break go out plain. `send`
// takes a record that is valid during the call, and answers false to stop.
DashResult BreakIntoDashes(const ElementRecord &record, const DashPattern &pattern,
                           const std::function<bool(ElementRecord &)> &send);

}  // namespace kapdf::tool
