#include "fonts/cmap_names.h"

#include <algorithm>
#include <string>

#include "fonts/cmap_name_table.h"

namespace kapdf {

static_assert(kCMapNames.size() == 77);

int FindCMapName(std::string_view name) {
  const auto row = std::ranges::find(kCMapNames, name, &CMapName::name);
  return row == kCMapNames.end() ? -1 : static_cast<int>(row - kCMapNames.begin());
}

const CMapName &CMapNameAt(int row) { return kCMapNames[static_cast<size_t>(row)]; }

std::string_view UnicodeMapFor(const CMapName &row, std::string_view ordering) {
  std::string lower(ordering);
  for (char &c : lower)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c | 0x20);
  if (row.unicodeMap.find(lower) != std::string_view::npos) return row.unicodeMap;
  const auto map = std::ranges::find(kOrderingMaps, ordering, &OrderingMap::ordering);
  return map == kOrderingMaps.end() ? std::string_view() : map->unicodeMap;
}

}  // namespace kapdf
