// Projections, their parameters and their methods, as georeferences of PDF pages name them. Reading and writing walk
// the same tables.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "kapdf/kapdf.h"

namespace kapdf::georeference {

inline constexpr double kDegreesPerRadian = 57.29577951308232;

struct Parameter {
  std::string_view key;
  int32_t code;   // EPSG; -1 for none
  double factor;  // from the block's unit to that of the dictionary
};

inline constexpr Parameter kParameters[] = {
    {"CentralMeridian", 8802, kDegreesPerRadian},
    {"FalseEasting", 8806, 1},
    {"FalseNorthing", 8807, 1},
    {"Height", -1, 1},
    {"Hemisphere", -1, 1},
    {"LatitudeOne", -1, kDegreesPerRadian},
    {"LatitudeTwo", -1, kDegreesPerRadian},
    {"LatitudeOfTrueScale", 8833, kDegreesPerRadian},
    {"LongitudeOne", -1, kDegreesPerRadian},
    {"LongitudeTwo", -1, kDegreesPerRadian},
    {"LongitudeDownFromPole", 8832, kDegreesPerRadian},
    {"Orientation", -1, 1},
    {"OriginHeight", -1, 1},
    {"OriginLatitude", 8801, kDegreesPerRadian},
    {"OriginLongitude", 8802, kDegreesPerRadian},
    {"ScaleFactor", 8805, 1},
    {"StandardParallel", 8823, kDegreesPerRadian},
    {"StandardParallelOne", 8823, kDegreesPerRadian},
    {"StandardParallelTwo", 8824, kDegreesPerRadian},
    {"Zone", -1, 1},
};

// Indexes into the parameters, one for each slot of the block; -1 for an empty one.
using Slots = std::array<int8_t, KAPDF_COORDSYS_PARAMETERS>;

template <class... Index>
constexpr Slots SlotsOf(Index... index) {
  Slots slots{};
  slots.fill(-1);
  size_t at = 0;
  ((slots[at++] = static_cast<int8_t>(index)), ...);
  return slots;
}

struct Projection {
  std::string_view name;
  std::string_view code;
  Slots slots;
  int32_t id;  // of the block; -1 for one that only the dictionary knows
};

// Found by code or by id, in this order: of equal ones the first counts.
inline constexpr Projection kProjections[] = {
    {"Plant", "NONE", SlotsOf(), 0},
    {"Geodetic", "GEODETIC", SlotsOf(), -1},
    {"Geographic", "GEOGRAPHIC", SlotsOf(), -1},
    {"Local Cartesian", "LOCALCARTESIAN", SlotsOf(11, 12, 13, 14), -1},
    {"Military Grid Reference System (MGRS)", "MG", SlotsOf(), -1},
    {"Universl Transverse Mercator (UTM)", "UT", SlotsOf(19, 4), -1},
    {"Universl Polar Stereographic (UPS)", "UP", SlotsOf(4), -1},
    {"State Plane 1927", "SPCS", SlotsOf(19), -1},
    {"State Plane 1983", "SPCS", SlotsOf(19), -1},
    {"Albers Equal Area Conic", "AC", SlotsOf(13, 0, 17, 18, 1, 2), 16},
    {"Azimuthal Equidstant", "AL", SlotsOf(13, 0, 1, 2), 20},
    {"Bonne", "BF", SlotsOf(13, 0, 1, 2), 19},
    {"Cassini", "CS", SlotsOf(13, 0, 1, 2), 3},
    {"Cylindrical Equal Area", "LI", SlotsOf(13, 0, 1, 2), -1},
    {"Eckert IV", "EF", SlotsOf(0, 1, 2, -1, -1, -1, -1, -1, -1, 0), -1},
    {"Eckert VI", "ED", SlotsOf(0, 1, 2), -1},
    {"Equidistant Cylindrical", "CP", SlotsOf(16, 0, 1, 2), -1},
    {"Gnomonic", "GN", SlotsOf(13, 0, 1, 2), -1},
    {"Lambert Conformal Conic", "LE", SlotsOf(13, 0, 17, 18, 1, 2), 8},
    {"Mercator", "MC", SlotsOf(13, 0, 15, 1, 2), 1},
    {"Miller Cylindrical*", "MH", SlotsOf(0, 1, 2), -1},
    {"Mollweide", "MP", SlotsOf(0, 1, 2), -1},
    {"Ney's (Modified Lambert Conformal Conic)", "NY", SlotsOf(13, 0, 17, 1, 2), 10},
    {"New Zealand Map Grid", "NT", SlotsOf(), 21},
    {"Oblique Mercator", "OC", SlotsOf(13, 5, 8, 6, 9, 15, 1, 2), -1},
    {"Orthographic", "OD", SlotsOf(13, 0, 1, 2), -1},
    {"Polar Stereographic", "PG", SlotsOf(1, 2, 10, 7), 14},
    {"Polyconic", "PH", SlotsOf(13, 0, 1, 2), 22},
    {"Sinusoidal", "SA", SlotsOf(0, 1, 2), -1},
    {"Stereographic", "SD", SlotsOf(13, 0, 1, 2), -1},
    {"Transverse Mercator", "TC", SlotsOf(13, 0, 15, 1, 2), 4},
    {"Transverse Cylindrical Equal Area", "TX", SlotsOf(13, 0, 15, 1, 2), -1},
    {"Van der Grinten", "VA", SlotsOf(0, 1, 2), -1},
};
static_assert(std::size(kProjections) == 33);

// EPSG coordinate operation methods, by the id of the projection.
inline constexpr int32_t kMethods[] = {-1,   9804, 9805, 9806, 9807, 9815, 9812, 9801, 9802, 9803, 9817, 9820,
                                       9809, 9810, 9829, 9830, 9822, 9823, 9825, 9827, 9832, 9811, 9818};
static_assert(std::size(kMethods) == 23);

struct CodeOf {
  std::string_view text;
  int32_t code;
};

// By what a datum's text begins with; any other is WGS 84.
inline constexpr CodeOf kDatums[] = {{"NAS", 6267}, {"NAR", 6269}, {"WE", 6326}, {"EUR", 6230}, {"ARF", 6209}};
inline constexpr int32_t kDatumWgs84 = 6326;
inline constexpr CodeOf kEllipsoids[] = {{"BR", 7004}, {"WE", 7030}, {"WD", 7043}};
inline constexpr int32_t kUnitDegree = 9102;

}  // namespace kapdf::georeference
