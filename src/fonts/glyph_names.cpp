#include "fonts/glyph_names.h"

#include <algorithm>
#include <limits>

#include "fonts/glyph_name_table.h"
#include "fonts/text_scan.h"

namespace kapdf {

static_assert(std::ranges::is_sorted(kGlyphNames, {}, &GlyphName::name));

GlyphCode CodeOfGlyphName(const std::string &name) {
  if (name.starts_with("MT")) return {static_cast<uint16_t>(IntegerFrom(name.c_str() + 2)), "MT"};
  if (name.empty()) return {};
  const char *number = name.c_str() + 1;
  uint32_t hex;
  if (name[0] == 'B' && ScanHex(number, std::numeric_limits<int>::max(), hex)) return {static_cast<uint16_t>(hex), "B"};
  int32_t any;
  if (name[0] == 'g' && ScanAnyInteger(number, any)) return {static_cast<uint16_t>(any), "g"};
  if (name.size() == 1) return {static_cast<uint8_t>(name[0]), {}};
  const auto known = std::ranges::lower_bound(kGlyphNames, name, {}, &GlyphName::name);
  if (known != kGlyphNames.end() && known->name == name) return {known->code, {}};
  return {static_cast<uint16_t>(IntegerFrom(name.c_str())), {}};
}

}  // namespace kapdf
