#include "fonts/font_cache.h"

#include "base/limits.h"
#include "fonts/font_loader.h"

namespace kapdf {

FontCache::FontCache(ObjectLocator &objects, const FontSettings &settings, EncodingFolder encodings)
    : objects_(objects),
      settings_(settings),
      encodings_(std::move(encodings)),
      streamBytes_(limits::kFontStreams + limits::kFontStreamsPerByte * objects.source().length()) {}

std::shared_ptr<const CPDFFontObject> FontCache::Get(int32_t objectNumber) {
  if (const auto known = fonts_.find(objectNumber); known != fonts_.end()) return known->second.font;
  if (memory_ > limits::kFontCache) DropUnused();
  if (memory_ > limits::kFontMemory) return nullptr;
  auto font = std::make_shared<CPDFFontObject>();
  Entry entry;
  if (FontLoader(objects_, settings_, encodings_, families_, streamBytes_, *font).Load(objectNumber)) {
    entry.memory = font->MemoryUsed();
    entry.font = std::move(font);
    memory_ += entry.memory;
  }
  return fonts_.emplace(objectNumber, std::move(entry)).first->second.font;
}

void FontCache::DropUnused() {
  std::erase_if(fonts_, [&](const auto &item) {
    const Entry &entry = item.second;
    if (!entry.font || entry.font.use_count() > 1) return false;
    memory_ -= entry.memory;
    return true;
  });
}

}  // namespace kapdf
