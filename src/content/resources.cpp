#include "content/resources.h"

#include <cmath>
#include <cstring>

#include "base/scan.h"
#include "base/units.h"
#include "content/form_object.h"
#include "platform/text.h"

namespace kapdf {
namespace {

constexpr size_t kLayerName = 255;  // UTF-16 units

std::u16string WideText(const CPDFString &string) {
  if (!string.wide) return platform::ToWide(string.bytes, platform::kSystemCodePage);
  std::u16string text(string.bytes.size() / 2, u'\0');
  std::memcpy(text.data(), string.bytes.data(), text.size() * 2);
  return text;
}

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

// In a direct dictionary or one behind a reference.
const CPDFDictionary *PageResources::ColorSpaces() {
  if (colorSpacesRead_) return colorSpaceTable_;
  colorSpacesRead_ = true;
  if (const CPDFDictionary *all = Dictionary())
    colorSpaceTable_ = dynamic_cast<const CPDFDictionary *>(Follow(objects_, all->Get("ColorSpace"), ownColorSpaces_));
  return colorSpaceTable_;
}

// A space that is not known is none.
const ColorSpace *PageResources::FindColorSpace(std::string_view name) {
  const CPDFDictionary *table = ColorSpaces();
  const CPDFObject *value = table ? table->Get(name) : nullptr;
  if (!value) return nullptr;
  const auto [place, isNew] = colorSpaces_.try_emplace(std::string(name));
  if (isNew) {
    ColorSpace space(objects_);
    if (space.Load(value)) place->second.emplace(std::move(space));
  }
  return place->second ? &*place->second : nullptr;
}

// Only entries behind references that have a `Name` are layers.
void PageResources::LoadLayers() {
  layersRead_ = true;
  const CPDFDictionary *all = Dictionary();
  std::unique_ptr<CPDFObject> fetched;
  const auto *table =
      all ? dynamic_cast<const CPDFDictionary *>(Follow(objects_, all->Get("Properties"), fetched)) : nullptr;
  if (!table) return;
  for (const CPDFDictionary::Entry *entry : table->Sorted()) {
    const auto *reference = dynamic_cast<const CPDFIndirectObject *>(entry->value.get());
    const auto group = reference ? FetchDictionary(objects_, *reference) : nullptr;
    const auto *name = group ? group->GetAs<CPDFString>("Name") : nullptr;
    if (name) layers_.try_emplace(entry->name, LayerUse{WideText(*name).substr(0, kLayerName)});
  }
}

LayerUse *PageResources::FindLayer(std::string_view name) {
  if (!layersRead_) LoadLayers();
  const auto found = layers_.find(std::string(name));
  return found == layers_.end() ? nullptr : &found->second;
}

// The entries behind references count. A reference in place of the table may lead to one font, which then goes by the
// name that it gives itself.
void PageResources::LoadFonts() {
  fontsRead_ = true;
  const CPDFDictionary *all = Dictionary();
  if (!all || !settings_.fonts) return;
  std::unique_ptr<CPDFDictionary> fetched;
  const auto *table = all->GetAs<CPDFDictionary>("Font");
  if (const auto *reference = all->GetAs<CPDFIndirectObject>("Font")) {
    if (auto font = settings_.fonts->Get(reference->objectNumber)) {
      fonts_.try_emplace(font->name, FontUse{font});
      return;
    }
    fetched = FetchDictionary(objects_, *reference);
    table = fetched.get();
  }
  if (!table) return;
  for (const CPDFDictionary::Entry *entry : table->Sorted()) {
    if (const auto *item = dynamic_cast<const CPDFIndirectObject *>(entry->value.get()))
      fontNumbers_.try_emplace(entry->name, item->objectNumber);
  }
}

FontUse *PageResources::FindFont(std::string_view name) {
  if (!fontsRead_) LoadFonts();
  const std::string key(name);
  if (const auto found = fonts_.find(key); found != fonts_.end()) return &found->second;
  const auto number = fontNumbers_.find(key);
  if (number == fontNumbers_.end()) return nullptr;
  auto font = settings_.fonts->Get(number->second);
  fontNumbers_.erase(number);
  return font ? &fonts_.try_emplace(key, FontUse{std::move(font)}).first->second : nullptr;
}

// Of a direct dictionary the entries behind references count. One behind a reference counts as a container of images.
void PageResources::LoadXObjects() {
  xObjectsRead_ = true;
  const CPDFDictionary *all = Dictionary();
  if (!all) return;
  if (const auto *reference = all->GetAs<CPDFIndirectObject>("XObject")) return LoadXObjectsBehind(*reference);
  const auto *table = all->GetAs<CPDFDictionary>("XObject");
  if (!table) return;
  for (const CPDFDictionary::Entry *entry : table->Sorted()) {
    const auto *item = dynamic_cast<const CPDFIndirectObject *>(entry->value.get());
    if (item) xObjects_.try_emplace(entry->name, XObjectEntry{item->objectNumber, false, nullptr});
  }
}

// Stripes of equal width show as one image where that is wanted; else each is an image of its own.
void PageResources::LoadXObjectsBehind(const CPDFIndirectObject &reference) {
  auto container = std::make_unique<CPDFRasterObject>(objects_, settings_.raster);
  if (!container->Load(reference.objectNumber)) return;
  auto &stripes = container->stripes();
  bool one = stripes.size() < 2;
  if (!one && settings_.combineStripes) {
    one = true;
    for (const auto &stripe : stripes) one = one && stripe->width() == stripes.front()->width();
  }
  if (one) {
    container_ = std::move(container);
    container_->Prepare();  // a lone image has no name but the one that it gives itself
    for (const auto &stripe : container_->stripes()) stripeNames_.insert(stripe->name);
    return;
  }
  for (auto &stripe : stripes) {
    const std::string key = stripe->name;
    xObjects_.try_emplace(key, XObjectEntry{0, true, std::move(stripe)});
  }
}

// What cannot be read as an image is taken for a form.
CPDFXObject *PageResources::Resolve(XObjectEntry &entry, const std::string &name) {
  if (entry.tried) return entry.object.get();
  entry.tried = true;
  auto raster = std::make_unique<CPDFRasterObject>(objects_, settings_.raster);
  if (raster->Load(entry.objectNumber))
    entry.object = std::move(raster);
  else
    entry.object = std::make_unique<CPDFFormObject>(objects_, entry.objectNumber);
  entry.object->name = name;
  return entry.object.get();
}

CPDFXObject *PageResources::FindXObject(std::string_view name) {
  if (!xObjectsRead_) LoadXObjects();
  const std::string key(name);
  if (container_ && (container_->givenName() == name || stripeNames_.contains(key))) return container_.get();
  const auto found = xObjects_.find(key);
  return found == xObjects_.end() ? nullptr : Resolve(found->second, found->first);
}

uint32_t PageResources::RasterCount() {
  if (rasterCount_) return *rasterCount_;
  if (!xObjectsRead_) LoadXObjects();
  uint32_t count = container_ ? 1 : 0;
  std::unordered_map<int32_t, bool> rasters;  // there may be more of them than should be kept
  for (const auto &[name, entry] : xObjects_) {
    if (entry.tried) {
      count += dynamic_cast<CPDFRasterObject *>(entry.object.get()) ? 1 : 0;
      continue;
    }
    const auto [place, isNew] = rasters.try_emplace(entry.objectNumber);
    if (isNew) place->second = CPDFRasterObject(objects_, settings_.raster).Load(entry.objectNumber);
    count += place->second ? 1 : 0;
  }
  rasterCount_ = count;
  return count;
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
