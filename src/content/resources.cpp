#include "content/resources.h"

#include <cmath>

#include "base/scan.h"

namespace kapdf {
namespace {

constexpr double kMillimetresPerPoint = 25.4 / 72.0;

double NumberOr0(const CPDFNumeric *number) {
  return number && std::isfinite(number->realValue) ? number->realValue : 0.0;
}

}  // namespace

const CPDFDictionary *PageResources::Dictionary() {
  if (dictionaryRead_) return dictionary_;
  dictionaryRead_ = true;
  if (!owner_) return nullptr;
  dictionary_ = owner_->GetAs<CPDFDictionary>("Resources");
  if (const auto *reference = owner_->GetAs<CPDFIndirectObject>("Resources")) {
    ownDictionary_ = FetchDictionary(objects_, *reference);
    dictionary_ = ownDictionary_.get();
  }
  return dictionary_;
}

// What a dictionary of parameters says; nothing when it has neither value.
std::optional<ExtGState> PageResources::ReadExtGState(const CPDFIndirectObject &reference) {
  const auto state = FetchDictionary(objects_, reference);
  if (!state) return std::nullopt;
  const auto *alpha = state->GetAs<CPDFNumeric>("ca");
  const auto *width = state->GetAs<CPDFNumeric>("LW");
  if (!alpha && !width) return std::nullopt;
  return ExtGState{NumberOr0(alpha), NumberOr0(width)};
}

// Only entries behind references in a direct dictionary count. An object with many names is read once.
void PageResources::LoadExtGStates() {
  extGStatesRead_ = true;
  const CPDFDictionary *all = Dictionary();
  const auto *table = all ? all->GetAs<CPDFDictionary>("ExtGState") : nullptr;
  if (!table) return;
  std::unordered_map<int32_t, std::optional<ExtGState>> byNumber;
  for (const CPDFDictionary::Entry *entry : table->Sorted()) {
    const auto *reference = dynamic_cast<const CPDFIndirectObject *>(entry->value.get());
    if (!reference) continue;
    const auto [place, isNew] = byNumber.try_emplace(reference->objectNumber);
    if (isNew) place->second = ReadExtGState(*reference);
    if (place->second) extGStates_.emplace(entry->name, *place->second);
  }
}

const ExtGState *PageResources::FindExtGState(std::string_view name) {
  if (!extGStatesRead_) LoadExtGStates();
  const auto found = extGStates_.find(std::string(name));
  return found == extGStates_.end() ? nullptr : &found->second;
}

std::pair<const LineStyles::Entry *, bool> LineStyles::Find(std::string_view pattern) {
  auto [place, isNew] = entries_.try_emplace(std::string(pattern));
  if (isNew) {
    std::u16string name = u"D";
    for (const char digit : std::to_string(entries_.size())) name += static_cast<char16_t>(digit);
    place->second = std::make_unique<Entry>(Entry{std::move(name), std::string(pattern)});
  }
  return {place->second.get(), isNew};
}

void FillLineType(std::string_view pattern, LineTypeDefPayload &lineType) {
  uint32_t count = 0;
  while (!pattern.empty()) {
    const size_t start = pattern.find_first_not_of(' ');
    if (start == std::string_view::npos) break;
    pattern.remove_prefix(start);
    const std::string part(pattern.substr(0, pattern.find(' ')));
    pattern.remove_prefix(part.size());
    if (count < KAPDF_LINE_TYPE_SEGMENTS) {
      const double length = RealFrom(part.c_str()) * kMillimetresPerPoint;
      lineType.segments[count].length = count % 2 == 0 ? length : -length;
    }
    ++count;
  }
  lineType.segmentCount = count;
}

}  // namespace kapdf
