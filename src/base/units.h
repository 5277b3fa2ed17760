// Units of length. A point is a 72nd of an inch.
#pragma once

namespace kapdf {

inline constexpr double kMillimetresPerInch = 25.4;
inline constexpr double kPointsPerInch = 72;
inline constexpr double kMillimetresPerPoint = kMillimetresPerInch / kPointsPerInch;
inline constexpr double kPointsPerMillimetre = kPointsPerInch / kMillimetresPerInch;

}  // namespace kapdf
