#include "fonts/code_page_table.h"

#include <string_view>

#include "platform/text.h"

namespace kapdf {
namespace {

char16_t FirstOf(std::string_view bytes, uint32_t codePage) {
  const std::u16string text = platform::ToWide(bytes, codePage);
  return text.empty() ? u'\0' : text.front();
}

}  // namespace

CodePageTable::CodePageTable(uint32_t codePage) : codePage_(codePage) {
  for (unsigned byte = 0; byte < 256; ++byte) {
    const char c = static_cast<char>(byte);
    single_[byte] = FirstOf({&c, 1}, codePage);
  }
}

char16_t CodePageTable::Convert(uint32_t code) {
  if (!pair_) {
    pair_ = std::make_unique_for_overwrite<std::array<char16_t, 65536>>();
    pair_->fill(kUnknown);
  }
  const char bytes[] = {static_cast<char>(code >> 8), static_cast<char>(code)};
  return (*pair_)[code] = FirstOf({bytes, 2}, codePage_);
}

CodePageTable &CodePageTables::Of(int32_t codePage) {
  auto &table = tables_[codePage < 0 ? 0 : static_cast<uint32_t>(codePage)];
  if (!table) table = std::make_unique<CodePageTable>(codePage < 0 ? 0 : static_cast<uint32_t>(codePage));
  return *table;
}

}  // namespace kapdf
