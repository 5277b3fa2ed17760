// An ellipse or a part of one: nearness of points, and which of them lie on the part.
#pragma once

#include <numbers>

namespace kapdf {

inline constexpr double kWholeTurn = 2 * std::numbers::pi;

// Whether an angle lies on the counter-clockwise run from `start` to `end`, all of them radians within one turn either
// way. Always true when the two are nearly the same.
bool AngleBetween(double mid, double start, double end);

// Angles are radians; `start` and `end` are those of the ellipse's parameter, counter-clockwise from the axis `a`,
// which itself is turned by `rotation`.
struct Ellipse {
  // A point this near to an axis counts as lying on it, which moves its distance by no more.
  static constexpr double kOnAxis = 1e-4;

  double centreX, centreY, a, b, rotation;
  double start = 0, end = kWholeTurn;

  // Whether the point's parameter lies on the run from start to end; how far away the point is does not matter.
  bool Contains(double x, double y) const;
  // From the point to the whole ellipse. `angleOut` gets the parameter of the nearest point. 1e20, with the angle 0,
  // when none is found.
  double Distance(double x, double y, double &angleOut) const;

 private:
  void ToFrame(double &x, double &y) const;
};

}  // namespace kapdf
