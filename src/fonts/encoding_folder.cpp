#include "fonts/encoding_folder.h"

#include <array>

#include "base/limits.h"
#include "platform/file.h"
#include "platform/module.h"
#include "platform/path_rules.h"
#include "platform/text.h"

namespace kapdf {

EncodingFolder::EncodingFolder() : folder_(platform::ModuleFolder()) {
  if (folder_.empty()) return;
  for (const char16_t *part : {u"fonts", u"etc", u"encoding"}) folder_.append(part) += platform::kPathSeparator;
}

const EncodingFolder::Encoding *EncodingFolder::Find(std::string_view name) {
  if (const auto known = found_.find(name); known != found_.end()) return known->second.get();
  CMap cmap;
  bool any = false;
  if (name.ends_with('V')) any = Read(std::string(name.substr(0, name.size() - 1)) + 'H', cmap, false);
  any = Read(name, cmap, any) || any;
  std::unique_ptr<Encoding> encoding;
  if (any) {
    encoding = std::make_unique<Encoding>();
    encoding->codeSpaces = std::move(cmap.codeSpaces());
    if (!cmap.ranges().empty()) encoding->table = MakeCodeTable(cmap.ranges());
  }
  return found_.emplace(name, std::move(encoding)).first->second.get();
}

bool EncodingFolder::Read(std::string_view name, CMap &cmap, bool append) const {
  if (folder_.empty() || name.empty()) return false;
  const auto file = platform::OpenFile(folder_ + platform::FromUtf8(name), "rb", platform::Share::kRead);
  if (!file) return false;
  std::string text;
  std::array<char, 65536> piece;
  while (text.size() < limits::kCMapText) {
    const size_t size = std::fread(piece.data(), 1, piece.size(), file.get());
    if (size == 0) break;
    text.append(piece.data(), size);
  }
  cmap.Parse(std::move(text), append);
  return true;
}

}  // namespace kapdf
