// Real roots of polynomials up to the fourth degree.
#pragma once

#include <array>
#include <span>

namespace kapdf {

struct RealRoots {
  std::array<double, 4> values;
  int count = 0;

  void Add(double root) { values[static_cast<size_t>(count++)] = root; }
  const double *begin() const { return values.data(); }
  const double *end() const { return values.data() + count; }
};

// `coefficients`: one to five of them, the constant first. Leading ones below 1e-16 in size lower the degree. A
// quadratic whose discriminant lies between -1e-9 and 1e-20 counts as a double root, which is told once. Every root is
// polished by up to four Newton steps; one that is not finite is left out. In no order.
RealRoots SolvePolynomial(std::span<const double> coefficients);
// The largest of them, but not less than `least`; the others are not polished.
double LargestRoot(std::span<const double> coefficients, double least);

}  // namespace kapdf
