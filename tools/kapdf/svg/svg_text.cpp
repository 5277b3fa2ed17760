#include "svg/svg_text.h"

#include <charconv>
#include <cmath>

#include "system/utf.h"

namespace kapdf::tool {

void AppendSvgNumber(std::string &out, double value) {
  if (!std::isfinite(value) || std::abs(value) > 1e15) value = 0;
  char digits[40];
  char *end = std::to_chars(digits, std::end(digits), value, std::chars_format::fixed, 4).ptr;
  while (end[-1] == '0') --end;
  if (end[-1] == '.') --end;
  const std::string_view text(digits, static_cast<size_t>(end - digits));
  out += text == "-0" ? "0" : text;
}

std::string SvgNumber(double value) {
  std::string out;
  AppendSvgNumber(out, value);
  return out;
}

void AppendAttribute(std::string &out, const char *name, double value) {
  out += ' ';
  out += name;
  out += "=\"";
  AppendSvgNumber(out, value);
  out += '"';
}

void AppendXml(std::string &out, std::string_view utf8) {
  for (const char c : utf8) {
    switch (c) {
      case '&':
        out += "&amp;";
        break;
      case '<':
        out += "&lt;";
        break;
      case '>':
        out += "&gt;";
        break;
      case '"':
        out += "&quot;";
        break;
      case '\t':
      case '\n':
      case '\r':
        out += ' ';
        break;
      default:
        if (static_cast<unsigned char>(c) < 0x20) {
          out += "\xEF\xBF\xBD";
        } else {
          out += c;
        }
    }
  }
}

void AppendXml(std::string &out, std::u16string_view text) {
  std::u16string allowed(text);
  for (char16_t &unit : allowed) {
    if (unit >= 0xFFFE) unit = 0xFFFD;
  }
  AppendXml(out, std::string_view(ToUtf8(allowed)));
}

void AppendAddress(std::string &out, std::string_view utf8Path) {
  constexpr std::string_view kDigits = "0123456789ABCDEF", kMarks = "-._~/";
  const bool drive = utf8Path.size() > 1 && utf8Path[1] == ':';
  if (drive || utf8Path.starts_with('/')) out += drive ? "file:///" : "file://";
  for (size_t i = 0; i < utf8Path.size(); ++i) {
    const auto byte = static_cast<unsigned char>(utf8Path[i]);
    const bool plain = (byte >= '0' && byte <= '9') || (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z');
    if (plain || kMarks.find(utf8Path[i]) != std::string_view::npos || (drive && i == 1)) {
      out += utf8Path[i];
    } else {
      out += '%';
      out += kDigits[byte >> 4];
      out += kDigits[byte & 15];
    }
  }
}

void AppendPoints(std::string &out, std::span<const Point> points) {
  bool first = true;
  for (const Point p : points) {
    if (!first) out += ' ';
    first = false;
    AppendSvgNumber(out, p.x);
    out += ',';
    AppendSvgNumber(out, -p.y);
  }
}

void AppendArcPath(std::string &out, const EllipseArc &arc) {
  const auto point = [&out](Point p) {
    AppendSvgNumber(out, p.x);
    out += ' ';
    AppendSvgNumber(out, -p.y);
  };
  // Counter-clockwise with y up is SVG's negative direction, unless one radius is negative.
  const char *direction = arc.major * arc.minor < 0 ? " 0 1 " : " 0 0 ";
  // In two halves, so that an end close to the start cannot fall together with it.
  out += 'M';
  point(arc.At(arc.start));
  for (const double part : {0.5, 1.0}) {
    out += 'A';
    AppendSvgNumber(out, std::abs(arc.major));
    out += ' ';
    AppendSvgNumber(out, std::abs(arc.minor));
    out += ' ';
    AppendSvgNumber(out, -arc.rotation * 180 / std::numbers::pi);
    out += direction;
    point(arc.At(arc.start + arc.sweep * part));
  }
}

}  // namespace kapdf::tool
