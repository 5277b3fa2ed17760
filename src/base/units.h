// Units of length. A point is a 72nd of an inch.
#pragma once

namespace kapdf {

inline constexpr double kMillimetresPerInch = 25.4;
inline constexpr double kMillimetresPerPoint = 25.4 / 72.0;
inline constexpr double kPointsPerMillimetre = 72.0 / 25.4;

}  // namespace kapdf
