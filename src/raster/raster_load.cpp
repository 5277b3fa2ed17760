// Loading image XObjects: their dictionaries, masks and stripes.
#include "base/ascii.h"
#include "base/limits.h"
#include "raster/raster_object.h"

namespace kapdf {

bool CPDFRasterObject::Load(int32_t objectNumber, const LoadPath *above, bool isMask) {
  int depth = 0;
  for (const LoadPath *path = above; path; path = path->above) {
    if (path->objectNumber == objectNumber || ++depth > limits::kStripeDepth) return false;
  }
  uint8_t firstChar;
  if (!OpenObject(objects_, objectNumber, firstChar)) return false;
  dictionary_ = std::make_unique<CPDFDictionary>(objects_.source());
  if (!dictionary_->Parse(firstChar)) return false;
  uint32_t stripes = 0;
  const LoadPath path{objectNumber, above, above ? above->stripes : &stripes};
  isMask_ = isMask;
  const auto *subtype = dictionary_->GetAs<CPDFNameObject>("Subtype");
  if (subtype && subtype->name == "Form") return false;
  if (const auto *mask = dictionary_->GetAs<CPDFBool>("ImageMask")) imageMask_ = mask->value;
  const bool isImage = subtype && subtype->name == "Image";
  const bool loaded = isImage ? LoadImage(path) : !isMask && LoadStripes(path);
  if (!loaded) dictionary_.reset();
  return loaded;
}

bool CPDFRasterObject::LoadImage(const LoadPath &path) {
  if (!FindData()) return false;
  if (!isMask_) LoadSoftMask(path);
  return true;
}

// The data start behind the line end that "stream" has.
bool CPDFRasterObject::FindData() {
  CZVBaseIO &source = objects_.source();
  if (objects_.source().blockActive()) return false;  // a stream never stands inside another one
  uint8_t c = dictionary_->lastChar;
  while (IsSpace(c) && !source.AtEnd()) c = source.GetByte();
  if (c != 's') return false;
  for (const char wanted : std::string_view("tream")) {
    if (source.GetByte() != static_cast<uint8_t>(wanted)) return false;
  }
  do c = source.GetByte();
  while (c != '\n' && c != '\r' && !source.AtEnd());
  if (c == '\r' && source.GetByte() != '\n' && !source.AtEnd()) source.Seek(-1, SeekOrigin::kCurrent);
  coding_.dataStart = source.Tell();
  return true;
}

// An image whose soft mask cannot be read is an image without one.
void CPDFRasterObject::LoadSoftMask(const LoadPath &path) {
  const auto *reference = dictionary_->GetAs<CPDFIndirectObject>("SMask");
  if (!reference) return;
  softMask_ = std::make_unique<CPDFRasterObject>(objects_, settings_);
  if (!softMask_->Load(reference->objectNumber, &path, true) || !softMask_->Prepare()) softMask_.reset();
}

// Every reference of the dictionary is a stripe. One that cannot be read fails the container.
bool CPDFRasterObject::LoadStripes(const LoadPath &path) {
  const auto entries = dictionary_->Sorted();
  bool good = !entries.empty();
  for (const CPDFDictionary::Entry *entry : entries) {
    const auto *reference = dynamic_cast<const CPDFIndirectObject *>(entry->value.get());
    if (!reference) continue;
    auto stripe = std::make_unique<CPDFRasterObject>(objects_, settings_);
    if (++*path.stripes > limits::kStripes || !stripe->Load(reference->objectNumber, &path) || !stripe->Prepare()) {
      good = false;
      break;
    }
    height_ += stripe->height();
    stripe->name = entry->name;
    stripes_.push_back(std::move(stripe));
  }
  if (good) dictionary_.reset();
  return good;
}

}  // namespace kapdf
