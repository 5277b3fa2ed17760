// The path under construction and the finished ones before it, in millimetres.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "geometry/coord_array.h"

namespace kapdf {

// All points stand in one array, path behind path; the current one is its end. So a path costs little more than its
// points, and the contours of a polygon already lie as the host gets them.
class PathList {
 public:
  // The current path: values (twice the points) and its points.
  size_t currentSize() const { return values_.size() - start_; }
  std::span<const double> current() const { return values_.values().subspan(start_); }
  // Points of all paths.
  size_t points() const { return values_.size() / 2; }

  void Append(double x, double y) { values_.PushPoint(x, y); }
  void AppendFirst() {
    const double x = values_.data()[start_], y = values_.data()[start_ + 1];
    values_.PushPoint(x, y);
  }
  // The array whose last point is the current path's, for curves; only when the current path has one.
  CoordArray &Tail() { return values_; }
  void EmptyCurrent() { values_.Truncate(start_); }
  // Ends the current path and starts an empty one behind it.
  void Finish() {
    starts_.push_back(start_);
    start_ = values_.size();
  }

  // Finished paths.
  size_t count() const { return starts_.size(); }
  std::span<const double> path(size_t index) const {
    const size_t end = index + 1 < starts_.size() ? starts_[index + 1] : start_;
    return values_.values().subspan(starts_[index], end - starts_[index]);
  }
  // The first path as a block: `CoordArray::kHeadBytes` of room, then its points.
  uint8_t *FirstBlock() { return values_.head(); }
  // Forgets the finished paths and the current one.
  void Clear() {
    values_.Clear();
    starts_.clear();
    start_ = 0;
  }

 private:
  CoordArray values_;
  std::vector<size_t> starts_;
  size_t start_ = 0;
};

// First and last point are the same.
inline bool IsClosed(std::span<const double> path) {
  return path[0] == path[path.size() - 2] && path[1] == path[path.size() - 1];
}

// Twice the signed area, positive or negative by the direction in which the points go round.
double SignedArea(std::span<const double> path);

}  // namespace kapdf
