// Four numbers at a time, in whatever registers the processor has. Nothing is fused, so that the same bits come out
// everywhere. A function that is compiled a second time with the attribute of wide registers calls the same inline
// body.
#pragma once

#include <cstring>

namespace kapdf {

using FourLanes = double __attribute__((vector_size(32)));

#define KAPDF_WIDE_LANES [[gnu::target("avx2")]]

// Whether what has that attribute may be called.
inline bool HasWideLanes() {
  static const bool wide = __builtin_cpu_supports("avx2");
  return wide;
}

}  // namespace kapdf
