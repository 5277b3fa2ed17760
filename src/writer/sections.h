// The sections of the element sequence, as the host begins and ends them.
#pragma once

#include <cstdint>
#include <vector>

#include "kapdf/kapdf.h"

namespace kapdf {

// Lives as long as the host's object: what one document leaves open still holds in the next.
class Sections {
 public:
  Sections() = default;
  explicit Sections(int32_t section) { Begin(section); }

  void Begin(int32_t section) {
    begun_.push_back(section);
    fresh_ = true;
  }
  // An end too many does nothing.
  void End() {
    if (begun_.size() > 1) begun_.pop_back();
    fresh_ = false;
  }
  void StartDocument() { fresh_ = false; }

  int32_t innermost() const { return begun_.back(); }
  bool InTables() const { return innermost() == KAPDF_SECTION_TABLES; }
  bool InDrawing() const {
    const int32_t section = innermost();
    return section == KAPDF_SECTION_PAGE || section == KAPDF_SECTION_DRAWING || section == KAPDF_SECTION_RASTERS ||
           section == KAPDF_SECTION_OVERLAY;
  }
  // The section that rasters are placed in: one that the document has begun, and none has ended since. Else 0.
  int32_t ForPlacements() const { return fresh_ ? innermost() : 0; }

 private:
  std::vector<int32_t> begun_{0};  // its first is never ended
  bool fresh_ = false;
};

}  // namespace kapdf
