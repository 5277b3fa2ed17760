// The 3 by 3 matrix of drawing, without its constant column. Points are row vectors.
#pragma once

#include <cmath>

namespace kapdf {

// Rows (a, b, 0), (c, d, 0), (e, f, 1): x' = a x + c y + e, y' = b x + d y + f.
struct Affine {
  double a = 1, b = 0, c = 0, d = 1, e = 0, f = 0;

  void Apply(double &x, double &y) const {
    const double px = x;
    x = a * px + c * y + e;
    y = b * px + d * y + f;
  }
};

// The matrix that applies `first` and then `second`.
inline Affine operator*(const Affine &first, const Affine &second) {
  return {first.a * second.a + first.b * second.c,
          first.a * second.b + first.b * second.d,
          first.c * second.a + first.d * second.c,
          first.c * second.b + first.d * second.d,
          first.e * second.a + first.f * second.c + second.e,
          first.e * second.b + first.f * second.d + second.f};
}

// Factor for line widths: the larger of the two axis scales, taken along the direction of the x axis, with its sign.
inline double AxisScale(const Affine &m) {
  double cosine = 1, sine = 0;
  if (m.b != 0 || !(m.a > 0)) {  // most pages turn nothing
    const double angle = std::atan2(m.b, m.a);
    cosine = std::cos(angle);
    sine = std::sin(angle);
  }
  double sx = std::fabs(m.a) > 1e-6 ? m.a / cosine : m.b / sine;
  double sy = std::fabs(m.d) > 1e-6 ? m.d / cosine : -m.c / sine;
  if (!std::isfinite(sx)) sx = 0;
  if (!std::isfinite(sy)) sy = 0;
  return sx > sy ? sx : sy;
}

}  // namespace kapdf
