// The text of a georeference. It keeps LF as its line end, unlike the rest of a written file.
#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <iterator>

#include "pdfmodel/georeference.h"
#include "pdfmodel/georeference_tables.h"
#include "platform/text.h"

namespace kapdf {
namespace {

using namespace georeference;
using namespace std::string_literals;

constexpr uint32_t kUnitNameCodePage = 1252;
constexpr int kSignificantDigits = 16;
constexpr size_t kNumberBytes = 512;  // the least number has 340 characters

std::string InBrackets(double value) { return "(" + FormatNumber(value) + ")"; }

// Type and parameters; nothing for a projection that has no row.
std::string ProjectionText(const CoordinateSystemBlock &block) {
  const auto *row = std::ranges::find(kProjections, block.projectionId, &Projection::id);
  if (row == std::end(kProjections)) return {};
  std::string text = "/ProjectionType (" + std::string(row->code) + ")\n";
  for (size_t slot = 0; slot < row->slots.size(); ++slot) {
    if (row->slots[slot] < 0) continue;
    const Parameter &parameter = kParameters[row->slots[slot]];
    text.append("/").append(parameter.key).append(" ");
    text += InBrackets(block.paramValues[slot] * parameter.factor) + "\n";
  }
  return text;
}

std::string SystemText(const CoordinateSystemBlock &block) {
  const auto *end = std::ranges::find(block.unitName, u'\0');
  const std::u16string_view unit(block.unitName, end);
  std::string text = "<</Type /Projection\n" + ProjectionText(block);
  text += "/Units (" + FormatString(unit, kUnitNameCodePage) + ")\n/Datum ";  // hexadecimal, inside of brackets
  text += "<< /Ellipsoid << /SemiMajorAxis " + InBrackets(block.semiMajorAxis);
  text += " /InvFlattening " + InBrackets(block.invFlattening);
  text += "\n/ToWGS84\n<< /dx (0.0) /dy (0.0) /dz (0.0)>>\n>>\n>>\n\n>>\n";
  return text;
}

}  // namespace

void WriteGeoreference(CZVBaseIO &sink, const CoordinateSystemBlock &block, const SheetPlace &place) {
  const std::string pointSize = InBrackets(1 / place.scale);
  std::string text = "/LGIDict <</Type /LGIDict\n/Version (2.1)\n/CTM [" + pointSize + " (0) (0) " + pointSize + " " +
                     InBrackets(place.originX) + " " + InBrackets(place.originY) + "]\n";
  if (block.epsgCode == -1) {
    text += "/Projection\n<</Type /Projection\n/ProjectionType (NONE)>>\n";
    // The second goes out with the length of the first: three bytes of what lies behind it come along.
    text += "/Display\n<</Type /Projection\n/ProjectionType (NONE)>>\n\0\0/"s;
  } else {
    const std::string system = SystemText(block);
    text += "/Projection\n" + system + "/Display\n" + system;
  }
  text += ">>\n";
  sink.Write(text.data(), text.size());
}

std::string FormatNumber(double value) {
  if (value == 0 || !std::isfinite(value)) return "0";
  const int digits = static_cast<int>(std::log10(std::fabs(value))) + 1;
  const int decimals = digits < kSignificantDigits ? kSignificantDigits - digits : 6;
  std::array<char, kNumberBytes> buffer;
  char *const first = buffer.data();
  char *end = std::to_chars(first, first + buffer.size(), value, std::chars_format::fixed, decimals).ptr;
  while (end[-1] == '0') --end;
  if (end[-1] == '.') --end;
  return std::string(first, end);
}

std::string FormatString(std::u16string_view text, uint32_t codePage) {
  static constexpr std::string_view kEscaped = "()<>[]", kHexDigits = "0123456789abcdef";
  std::string out(codePage == 0 ? "(" : "<");
  for (const char c : platform::ToNarrow(text, codePage)) {
    if (codePage != 0) {
      out += kHexDigits[static_cast<uint8_t>(c) >> 4];
      out += kHexDigits[static_cast<uint8_t>(c) & 15];
      continue;
    }
    if (kEscaped.find(c) != std::string_view::npos) out += '\\';
    out += c;
  }
  return out += codePage == 0 ? ")" : ">";
}

}  // namespace kapdf
