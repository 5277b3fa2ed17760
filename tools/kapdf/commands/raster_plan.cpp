#include "commands/raster_plan.h"

#include <set>

namespace kapdf::tool {
namespace {

constexpr size_t kNone = static_cast<size_t>(-1);

// Headers by what later placements may know them by.
struct Known {
  std::unordered_map<uint64_t, size_t> byKey;
  std::unordered_map<uint32_t, size_t> byName;
};

size_t HeaderOf(const std::vector<Record> &records, size_t placement, Known &known) {
  const Record &record = records[placement];
  const bool follows = placement + 1 < records.size() && records[placement + 1].kind == ElemRasterHeader;
  if (follows) {
    if (record.imageKey != 0) known.byKey[record.imageKey] = placement + 1;
    known.byName[record.style] = placement + 1;
    return placement + 1;
  }
  if (const auto found = known.byKey.find(record.imageKey); found != known.byKey.end()) return found->second;
  const auto found = known.byName.find(record.style);
  return record.imageKey == 0 && found != known.byName.end() ? found->second : kNone;
}

}  // namespace

RasterPlan PlanRasters(const Drawing &drawing) {
  const std::vector<Record> &records = drawing.records;
  RasterPlan plan;
  Known known;
  std::unordered_map<size_t, size_t> imageOf;  // by header
  std::set<uint64_t> keys = {0};
  uint64_t made = 0;
  const auto add = [&](size_t header, uint64_t key) {
    const auto [image, added] = imageOf.try_emplace(header, plan.images.size());
    if (!added) return image->second;
    while (!keys.insert(key).second) key = ++made;
    size_t end = header + 1;
    while (end < records.size() && records[end].kind == ElemRasterRows) ++end;
    plan.images.push_back({header, end, key});
    return image->second;
  };
  for (size_t i = 0; i < records.size(); ++i) {
    if (records[i].kind != ElemRasterHeader) continue;
    if (records[i].imageKey != 0) known.byKey.try_emplace(records[i].imageKey, i);
    known.byName.try_emplace(records[i].style, i);
  }
  for (size_t i = 0; i < records.size(); ++i) {
    if (records[i].kind != ElemRasterPlacement) continue;
    if (const size_t header = HeaderOf(records, i, known); header != kNone) {
      plan.placed.emplace(i, add(header, records[i].imageKey));
    }
  }
  for (size_t i = 0; i < records.size(); ++i) {
    if (records[i].kind == ElemRasterHeader) add(i, records[i].imageKey);
  }
  return plan;
}

}  // namespace kapdf::tool
