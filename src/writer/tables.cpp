#include "writer/tables.h"

#include <algorithm>
#include <cmath>

#include "base/color.h"

namespace kapdf {

std::u16string_view FieldText(const char16_t (&field)[256]) {
  return {field, static_cast<size_t>(std::find(field, field + 256, u'\0') - field)};
}

std::u16string_view NameText(const char16_t *text) { return text ? std::u16string_view(text) : std::u16string_view(); }

void LayerTable::Add(const LayerDefPayload &definition) {
  const std::u16string_view name = NameText(definition.name);
  indices_.Add(name, static_cast<int32_t>(layers_.size()));
  layers_.push_back(
      {std::u16string(name), ResolveLayerColor(definition.color), definition.width, definition.layerOff != 0});
}

int32_t LayerTable::Find(std::u16string_view name) const {
  const int32_t *index = indices_.Find(name);
  return index ? *index : -1;
}

void LineTypeTable::Add(const LineTypeDefPayload &definition) {
  const std::u16string_view name = NameText(definition.name);
  plain_.Add(name, definition.segmentCount < 2);
  empty_ = false;
  lastName_.clear();
  lastPlain_ = true;
}

bool LineTypeTable::IsPlain(std::u16string_view name) {
  if (empty_ || name.empty()) return true;
  if (name != lastName_) {
    const bool *plain = plain_.Find(name);
    lastName_ = name;
    lastPlain_ = !plain || *plain;
  }
  return lastPlain_;
}

int32_t TransparencyTable::KeyOf(double percent) {
  const double key = percent * 100;
  if (std::isnan(key)) return 0;
  return static_cast<int32_t>(std::clamp<double>(key, INT32_MIN, INT32_MAX));
}

size_t TransparencyTable::FindOrAdd(int32_t key) {
  const auto [found, added] = indices_.try_emplace(key, keys_.size());
  if (added) keys_.push_back(key);
  return found->second;
}

}  // namespace kapdf
