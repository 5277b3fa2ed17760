#include "records/dash_breaker.h"

#include <algorithm>
#include <cmath>

#include "records/kinds.h"
#include "records/shapes.h"

namespace kapdf::tool {
namespace {

constexpr size_t kMostPieces = 100'000;
constexpr double kSmallestDot = 0.05;  // mm

struct Dash {
  double from, to;  // along the element
};

// The dashes of a pattern along a length; `dot` is how long a dash of no length is drawn. Empty with `tooMany` set
// when the pattern is too fine.
std::vector<Dash> DashesAlong(const DashPattern &pattern, double length, double dot, bool &tooMany) {
  double period = 0;
  for (const double segment : pattern) period += std::abs(segment);
  std::vector<Dash> dashes;
  tooMany = period == 0 || !(length / period * static_cast<double>(pattern.size()) <= static_cast<double>(kMostPieces));
  if (tooMany) return dashes;
  for (double start = 0; start < length; start += period) {
    double at = start;
    for (const double segment : pattern) {
      if (at >= length) break;
      if (segment >= 0) dashes.push_back({at, std::min(length, at + (segment > 0 ? segment : dot))});
      at += std::abs(segment);
    }
  }
  return dashes;
}

// Places along a chain of points by the distance from its start.
class Chain {
 public:
  explicit Chain(std::span<const Point> points) : points_(points) {
    distances_.reserve(points.size());
    double sum = 0;
    for (size_t i = 0; i < points.size(); ++i) {
      if (i > 0) sum += std::hypot(points[i].x - points[i - 1].x, points[i].y - points[i - 1].y);
      distances_.push_back(sum);
    }
  }
  double length() const { return distances_.empty() ? 0 : distances_.back(); }

  // Index of the vertex at or ahead of the place, and how far the place lies towards the next one, 0 to 1.
  std::pair<size_t, double> Locate(double distance) const {
    const auto next = std::upper_bound(distances_.begin(), distances_.end() - 1, distance);
    const auto index = static_cast<size_t>(next == distances_.begin() ? 0 : next - distances_.begin() - 1);
    const double step = distances_[index + 1] - distances_[index];
    return {index, step > 0 ? std::clamp((distance - distances_[index]) / step, 0.0, 1.0) : 0.0};
  }
  Point At(double distance) const {
    const auto [index, part] = Locate(distance);
    const Point a = points_[index], b = points_[index + 1];
    return {a.x + (b.x - a.x) * part, a.y + (b.y - a.y) * part};
  }
  // The vertices that lie inside the dash with its own two ends around them.
  void Cut(Dash dash, std::vector<Point> &piece) const {
    piece.assign(1, At(dash.from));
    const auto first = std::upper_bound(distances_.begin(), distances_.end(), dash.from);
    for (auto it = first; it != distances_.end() && *it < dash.to; ++it) {
      piece.push_back(points_[static_cast<size_t>(it - distances_.begin())]);
    }
    piece.push_back(At(dash.to));
  }

 private:
  std::span<const Point> points_;
  std::vector<double> distances_;
};

class Breaker {
 public:
  Breaker(const ElementRecord &record, const DashPattern &pattern, const std::function<bool(ElementRecord &)> &send)
      : source_(record), pattern_(pattern), send_(send), piece_(record) {
    piece_.styleName[0] = 0;
    piece_.next = nullptr;
    width_ = WidthOf(record);
    dot_ = std::max(width_, kSmallestDot);
  }

  DashResult Run() {
    switch (source_.kind) {
      case ElemLine: {
        const auto line = ReadAt<LinePayload>(source_.payload, 0);
        const Point ends[] = {{line.x1, line.y1}, {line.x2, line.y2}};
        return Finish(BreakChain(ends));
      }
      case ElemPolyline:
        if (ReadAt<PolylinePayload>(source_.payload, 0).curved != 0) return DashResult::kNotMine;
        return Finish(BreakChain(VerticesOf(source_)));
      case ElemCircle:
      case ElemArc:
      case ElemEllipseArc: {
        const auto arc = ArcOf(source_);
        return arc ? Finish(BreakArc(*arc)) : DashResult::kNotMine;
      }
      case ElemFilledPolygon:
        return BreakPolygon();
      case ElemSolid:
      case ElemPoint:
        return SendWhole(DashResult::kBroken);
      default:
        return DashResult::kNotMine;
    }
  }

 private:
  enum class Step { kDone, kTooMany, kStopped };

  DashResult Finish(Step step) {
    if (step == Step::kTooMany) return SendWhole(DashResult::kPlain);
    return step == Step::kStopped ? DashResult::kStopped : DashResult::kBroken;
  }
  DashResult SendWhole(DashResult result) {
    ElementRecord whole = source_;
    whole.styleName[0] = 0;
    whole.next = nullptr;
    return send_(whole) ? result : DashResult::kStopped;
  }

  template <class Payload>
  bool Send(uint32_t kind, Payload &payload, size_t more = 0) {
    piece_.kind = kind;
    piece_.payload = &payload;
    piece_.payloadBytes = static_cast<uint32_t>(sizeof payload + more);
    return send_(piece_);
  }

  Step BreakChain(std::span<const Point> points) {
    if (points.size() < 2) return Step::kDone;
    const Chain chain(points);
    if (!std::isfinite(chain.length())) return Step::kTooMany;
    bool tooMany = false;
    const std::vector<Dash> dashes = DashesAlong(pattern_, chain.length(), dot_, tooMany);
    if (tooMany) return Step::kTooMany;
    std::vector<Point> piece;
    for (const Dash dash : dashes) {
      chain.Cut(dash, piece);
      if (!SendChain(piece)) return Step::kStopped;
    }
    return Step::kDone;
  }
  bool SendChain(std::vector<Point> &piece) {
    if (piece.size() == 2) {
      LinePayload line{width_, piece[0].x, piece[0].y, piece[1].x, piece[1].y};
      return Send(ElemLine, line);
    }
    // The structure with the vertices behind it, so that the payload is as long as it says.
    block_.resize(9 + piece.size() * 2);
    std::copy_n(&piece[0].x, piece.size() * 2, block_.begin() + 9);
    PolylinePayload polyline{};
    polyline.width = width_;
    polyline.vertexCount = static_cast<int32_t>(piece.size());
    polyline.vertices = block_.data() + 9;
    std::memcpy(block_.data(), &polyline, sizeof polyline);
    piece_.kind = ElemPolyline;
    piece_.payload = block_.data();
    piece_.payloadBytes = static_cast<uint32_t>(sizeof polyline + piece.size() * sizeof(Point));
    return send_(piece_);
  }

  // Lengths along an ellipse come from a chain of chords; the ends of the dashes are then put back on the curve.
  Step BreakArc(const EllipseArc &arc) {
    const bool circle = arc.major == arc.minor;
    const auto steps = static_cast<size_t>(circle ? 1 : std::ceil(arc.sweep * 720 / (2 * std::numbers::pi)) + 1);
    std::vector<Point> points;
    for (size_t i = 0; i <= steps; ++i) {
      points.push_back(arc.At(arc.start + arc.sweep * static_cast<double>(i) / static_cast<double>(steps)));
    }
    const Chain chain(points);
    const double length = circle ? std::abs(arc.major) * arc.sweep : chain.length();
    bool tooMany = false;
    const std::vector<Dash> dashes = DashesAlong(pattern_, length, dot_, tooMany);
    if (tooMany) return Step::kTooMany;
    const auto parameterAt = [&](double distance) {
      if (circle) return arc.start + arc.sweep * distance / length;
      const auto [index, part] = chain.Locate(distance);
      return arc.start + arc.sweep * (static_cast<double>(index) + part) / static_cast<double>(steps);
    };
    for (const Dash dash : dashes) {
      if (!SendArc(arc, parameterAt(dash.from), parameterAt(dash.to))) return Step::kStopped;
    }
    return Step::kDone;
  }
  bool SendArc(const EllipseArc &arc, double from, double to) {
    if (source_.kind == ElemEllipseArc) {
      EllipseArcPayload piece{width_, arc.center.x, arc.center.y, arc.major, arc.minor, arc.rotation, from, to};
      return Send(ElemEllipseArc, piece);
    }
    ArcPayload piece{width_, arc.center.x, arc.center.y, arc.major, to, from};
    return Send(ElemArc, piece);
  }

  DashResult BreakPolygon() {
    auto fill = ReadAt<FilledPolygonPayload>(source_.payload, 0);
    const bool outlined = fill.strokeToo != 0;
    // The fill has only its structure copied; the arrays stay the source's.
    fill.strokeToo = 0;
    if (!SendFill(fill)) return DashResult::kStopped;
    if (!outlined) return DashResult::kBroken;
    DashResult result = DashResult::kBroken;
    for (std::vector<Point> &contour : ContoursOf(source_)) {
      if (contour.empty()) continue;
      contour.push_back(contour.front());
      Step step = BreakChain(contour);
      if (step == Step::kTooMany) {
        result = DashResult::kPlain;
        step = SendChain(contour) ? Step::kDone : Step::kStopped;
      }
      if (step == Step::kStopped) return DashResult::kStopped;
    }
    return result;
  }
  bool SendFill(const FilledPolygonPayload &fill) {
    std::vector<std::byte> block(source_.payloadBytes);
    std::memcpy(block.data(), source_.payload, block.size());
    std::memcpy(block.data(), &fill, sizeof fill);
    piece_.kind = ElemFilledPolygon;
    piece_.payload = block.data();
    piece_.payloadBytes = source_.payloadBytes;
    return send_(piece_);
  }

  const ElementRecord &source_;
  const DashPattern &pattern_;
  const std::function<bool(ElementRecord &)> &send_;
  ElementRecord piece_;
  double width_ = 0, dot_ = 0;
  std::vector<double> block_;
};

}  // namespace

DashPattern PatternOf(const LineTypeDefPayload &lineType) {
  DashPattern pattern;
  if (lineType.segmentCount < 2) return pattern;
  double period = 0;
  for (uint32_t i = 0; i < std::min<uint32_t>(lineType.segmentCount, KAPDF_LINE_TYPE_SEGMENTS); ++i) {
    pattern.push_back(ReadAt<double>(&lineType, offsetof(LineTypeDefPayload, segments) + i * sizeof(LineTypeSegment)));
    period += std::abs(pattern.back());
  }
  if (!(period > 1e-9) || !std::isfinite(period)) pattern.clear();
  return pattern;
}

DashResult BreakIntoDashes(const ElementRecord &record, const DashPattern &pattern,
                           const std::function<bool(ElementRecord &)> &send) {
  const Kind *kind = FindKind(record.kind);
  if (kind == nullptr || kind->payloadBytes == 0 || record.payload == nullptr ||
      record.payloadBytes < kind->payloadBytes) {
    return DashResult::kNotMine;
  }
  return Breaker(record, pattern, send).Run();
}

}  // namespace kapdf::tool
