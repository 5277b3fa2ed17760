#include "fonts/document_families.h"

#include <algorithm>

#include "platform/text.h"

namespace kapdf {

bool BeginsWithItalic(std::string_view name) {
  constexpr std::string_view kItalic = "italic";
  return name.size() >= kItalic.size() &&
         std::equal(kItalic.begin(), kItalic.end(), name.begin(), [](char a, char b) { return a == (b | 0x20); });
}

const std::vector<DocumentFamilies::Family> &DocumentFamilies::List() {
  if (system_) return list_;
  system_ = platform::FontFamilies::Now();
  for (const std::u16string &name : system_->TrueType()) {
    std::string narrow = platform::ToNarrow(name, platform::kSystemCodePage);
    const bool italic = BeginsWithItalic(narrow);
    list_.push_back({name, std::move(narrow), italic});
  }
  return list_;
}

std::u16string DocumentFamilies::OfPostScriptName(std::u16string_view name) {
  List();
  return system_->OfPostScriptName(name);
}

}  // namespace kapdf
