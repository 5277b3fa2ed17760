#include "records/coordinate_system.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdio>
#include <numbers>
#include <span>
#include <string_view>

#include "base/ascii.h"
#include "records/kinds.h"
#include "system/utf.h"

namespace kapdf::tool {
namespace {

constexpr uint32_t kBinary = 32;

struct Named {
  int32_t code;
  const char *name;
  const char *unit = "";
};

// Of the EPSG register, with the number that the block has for an export.
struct Method : Named {
  int32_t projection;
};
constexpr Method kMethods[] = {{{9802, "Lambert Conformal Conic"}, 8},
                               {{9804, "Mercator"}, 1},
                               {{9806, "Cassini"}, 3},
                               {{9807, "Transverse Mercator"}, 4},
                               {{9811, "New Zealand Map Grid"}, 21},
                               {{9817, "Modified Lambert Conformal Conic"}, 10},
                               {{9818, "Polyconic"}, 22},
                               {{9822, "Albers Equal Area Conic"}, 16},
                               {{9827, "Bonne"}, 19},
                               {{9829, "Polar Stereographic"}, 14},
                               {{9832, "Azimuthal Equidistant"}, 20}};
// Angles stand in the block as radians.
constexpr const char *kDegrees = " deg";
constexpr Named kParameters[] = {{8801, "origin latitude", kDegrees},
                                 {8802, "central meridian", kDegrees},
                                 {8805, "scale factor"},
                                 {8806, "false easting"},
                                 {8807, "false northing"},
                                 {8823, "first standard parallel", kDegrees},
                                 {8824, "second standard parallel", kDegrees},
                                 {8832, "longitude down from pole", kDegrees},
                                 {8833, "latitude of true scale", kDegrees}};
constexpr Named kDatums[] = {{6209, "Arc 1950"},
                             {6230, "European Datum 1950"},
                             {6267, "North American Datum 1927"},
                             {6269, "North American Datum 1983"},
                             {6326, "WGS 84"}};
constexpr Named kEllipsoids[] = {{7004, "Bessel 1841"}, {7030, "WGS 84"}, {7043, "WGS 72"}};
constexpr Named kUnits[] = {{9102, "degree"}};

template <class Row>
const Row *Find(std::span<const Row> rows, int32_t code) {
  const auto row = std::ranges::find(rows, code, &Row::code);
  return row == rows.end() ? nullptr : &*row;
}

std::string Number(double value) {
  char text[40];
  std::snprintf(text, sizeof text, "%.10g", value);
  return text;
}

// "Mercator (9804)"; nothing for no code.
template <class Row, size_t Count>
std::string TellCode(const Row (&rows)[Count], int32_t code) {
  if (code < 0) return {};
  const Row *row = Find<Row>(rows, code);
  return std::string(row != nullptr ? row->name : "of a code unknown here") + " (" + std::to_string(code) + ")";
}

void AddLine(std::string &out, std::string word, const std::string &text) {
  word.resize(11, ' ');
  if (!text.empty()) out += word + text + "\n";
}

void Join(std::string &out, const std::string &text) {
  if (!text.empty()) out += (out.empty() ? "" : ", ") + text;
}

std::string TellParameters(const CoordinateSystemBlock &block) {
  std::string out;
  for (int i = 0; i < KAPDF_COORDSYS_PARAMETERS; ++i) {
    const Named *row = Find<Named>(kParameters, block.paramCodes[i]);
    if (row == nullptr) continue;
    const double factor = *row->unit != 0 ? 180 / std::numbers::pi : 1;
    Join(out, row->name + (" " + Number(block.paramValues[i] * factor)) + row->unit);
  }
  return out;
}

std::string TellEllipsoid(const CoordinateSystemBlock &block) {
  std::string out = TellCode(kEllipsoids, block.ellipsoidCode);
  if (block.semiMajorAxis != 0) Join(out, "semi-major axis " + Number(block.semiMajorAxis));
  if (block.semiMinorAxis != 0) Join(out, "semi-minor axis " + Number(block.semiMinorAxis));
  if (block.invFlattening != 0) Join(out, "flattening 1/" + Number(block.invFlattening));
  return out;
}

}  // namespace

std::optional<CoordinateSystemBlock> CoordinateSystemOf(const ElementRecord &record) {
  NamedPropertyPayload property{};
  if (record.kind != ElemNamedProperty || !CopyPayload(record, property)) return std::nullopt;
  if (property.name == nullptr || property.value == nullptr || property.type != kBinary) return std::nullopt;
  const std::u16string_view value = property.value;
  if (std::u16string_view(property.name) != u"COORDSYS" || value.size() != 2 * KAPDF_COORDSYS_BYTES)
    return std::nullopt;
  std::array<uint8_t, KAPDF_COORDSYS_BYTES> bytes;
  for (size_t i = 0; i < bytes.size(); ++i) {
    const int high = HexValue(value[2 * i]), low = HexValue(value[2 * i + 1]);
    if (high < 0 || low < 0) return std::nullopt;
    bytes[i] = static_cast<uint8_t>(high << 4 | low);
  }
  return std::bit_cast<CoordinateSystemBlock>(bytes);
}

std::u16string ValueForExport(CoordinateSystemBlock block) {
  const Method *method = Find<Method>(kMethods, block.methodCode);
  if (block.projectionId < 0 && method != nullptr) block.projectionId = method->projection;
  static constexpr std::u16string_view kDigits = u"0123456789ABCDEF";
  std::u16string value;
  for (const uint8_t byte : std::bit_cast<std::array<uint8_t, KAPDF_COORDSYS_BYTES>>(block)) {
    value.push_back(kDigits[byte >> 4]);
    value.push_back(kDigits[byte & 15]);
  }
  return value;
}

std::string Tell(const CoordinateSystemBlock &block) {
  std::string out;
  const std::string method = TellCode(kMethods, block.methodCode);
  AddLine(out, "projection", method.empty() ? "none that is known" : method);
  AddLine(out, "", TellParameters(block));
  AddLine(out, "datum", TellCode(kDatums, block.datumCode));
  AddLine(out, "ellipsoid", TellEllipsoid(block));
  const char16_t *unitEnd = std::ranges::find(block.unitName, u'\0');
  std::string units = ToUtf8({block.unitName, unitEnd});
  const std::string angles = TellCode(kUnits, block.unitCode);
  if (!angles.empty()) Join(units, "angles in " + angles);
  AddLine(out, "units", units);
  AddLine(out, "EPSG", block.epsgCode >= 0 ? std::to_string(block.epsgCode) : "none told");
  return out;
}

}  // namespace kapdf::tool
