// Four numbers at a time, in whatever registers the processor has. Nothing is fused, so that the same bits come out
// everywhere. A function that is compiled a second time with the attribute of wide registers calls the same inline
// body.
#pragma once

#include <cstring>

namespace kapdf {

using FourLanes = double __attribute__((vector_size(32)));

// Four points, x and y in turn; the lanes hold the first, the third, the second and the fourth of them.
inline void LoadFourPoints(const double *points, FourLanes &x, FourLanes &y) {
  FourLanes a, b;
  std::memcpy(&a, points, sizeof a);
  std::memcpy(&b, points + 4, sizeof b);
  x = FourLanes{a[0], b[0], a[2], b[2]};
  y = FourLanes{a[1], b[1], a[3], b[3]};
}

#define KAPDF_WIDE_LANES [[gnu::target("avx2")]]

// Whether what has that attribute may be called.
inline bool HasWideLanes() {
  static const bool wide = __builtin_cpu_supports("avx2");
  return wide;
}

}  // namespace kapdf
