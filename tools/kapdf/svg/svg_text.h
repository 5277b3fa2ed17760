// Numbers, names and shapes as SVG writes them. y points up in a drawing and down in SVG, so every y is negated here.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "records/shapes.h"

namespace kapdf::tool {

// Four decimals of a millimetre at most, no trailing zeros.
void AppendSvgNumber(std::string &out, double value);
std::string SvgNumber(double value);
// " name=\"value\"".
void AppendAttribute(std::string &out, const char *name, double value);
// Markup characters escaped; characters that XML forbids become U+FFFD.
void AppendXml(std::string &out, std::string_view utf8);
void AppendXml(std::string &out, std::u16string_view text);
// A path with slashes as an address: what may not stand there is written as %XX.
void AppendAddress(std::string &out, std::string_view utf8Path);
// "x,y x,y ..."
void AppendPoints(std::string &out, std::span<const Point> points);
// "M x y A ..." of an arc that is not a whole ellipse.
void AppendArcPath(std::string &out, const EllipseArc &arc);

}  // namespace kapdf::tool
