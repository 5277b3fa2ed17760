// The input is a polyline: an ellipse, a curve or nothing, then points moved to anywhere. What is recognised in it is
// finite and near to every point; what is not leaves the points as they are.
#include <cmath>
#include <vector>

#include "geometry/bezier.h"
#include "geometry/ellipse.h"
#include "geometry/recognition.h"
#include "support/host.h"
#include "support/input.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  using namespace kapdf;
  fuzz::Input input({data, size});
  const uint32_t shape = input.Below(2);
  const double x = input.Real(), y = input.Real(), a = input.Real(), b = input.Real(), turn = input.Real();
  const double c = input.Real(), d = input.Real(), tolerance = input.Below(3) ? 0.002 : input.Real();
  CoordArray drawn;
  if (shape != 0) drawn.PushPoint(x, y);
  for (uint32_t i = input.Below(200); shape == 0 && i > 0; --i)
    drawn.PushPoint(x + a * std::cos(i * turn / 64), y + b * std::sin(i * turn / 64));
  if (shape == 1) FlattenCubic(drawn, x + a, y + b, turn - c, b - d, turn, b, 20'000);
  while (!input.empty()) {
    const size_t at = input.Take<uint16_t>() % (drawn.size() + 2);
    drawn.At(at) = input.Below(4) ? (at < 2 ? 0 : drawn.data()[at - 2]) + input.Below(9) * 0.01 : input.Real();
  }
  if (drawn.size() % 2) drawn.Push(0);
  const std::vector<double> points(drawn.values().begin(), drawn.values().end());
  const RecognizedCurve found = RecognizeCurve(points, tolerance);
  fuzz::Require(points.empty() || std::memcmp(points.data(), drawn.data(), points.size() * sizeof(double)) == 0,
                "the points stay");
  if (found.kind == RecognizedCurve::Kind::kNone) return 0;
  for (const double value : {found.centreX, found.centreY, found.a, found.b, found.rotation, found.start, found.end})
    fuzz::Require(std::isfinite(value), "results are finite");
  fuzz::Require(found.a >= found.b && found.b > 0, "axes in their order");
  const Ellipse whole{found.centreX, found.centreY, found.a, found.b, found.rotation};
  const double room = tolerance * (found.kind == RecognizedCurve::Kind::kEllipse ? 2 : 1) * found.a;
  for (size_t i = 0; i < points.size(); i += 2) {
    double angle, off = std::hypot(points[i] - found.centreX, points[i + 1] - found.centreY) - found.a;
    if (found.a != found.b) off = whole.Distance(points[i], points[i + 1], angle);
    fuzz::Require(std::fabs(off) <= room * (1 + 1e-9) + 2e-4, "every point is near");
  }
  return 0;
}
