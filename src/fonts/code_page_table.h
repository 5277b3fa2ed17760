// Characters of 8-bit code pages one at a time, without a converter for each.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <memory>

namespace kapdf {

// One code page. Characters of two bytes are converted when they are first asked for.
class CodePageTable {
 public:
  explicit CodePageTable(uint32_t codePage);

  // 0 when the page has none.
  char16_t Character(uint8_t byte) const { return single_[byte]; }
  // Of two bytes; when they are two characters, the first of them.
  char16_t Character(uint8_t first, uint8_t second) {
    const uint32_t code = uint32_t{first} << 8 | second;
    if (pair_ && (*pair_)[code] != kUnknown) return (*pair_)[code];
    return Convert(code);
  }

 private:
  static constexpr char16_t kUnknown = 0xFFFF;
  char16_t Convert(uint32_t code);

  uint32_t codePage_;
  std::array<char16_t, 256> single_;
  std::unique_ptr<std::array<char16_t, 65536>> pair_;
};

// The code pages that a document's text has used.
class CodePageTables {
 public:
  // A negative number stands for the system's page. Lives as long as this object.
  CodePageTable &Of(int32_t codePage);

 private:
  std::map<uint32_t, std::unique_ptr<CodePageTable>> tables_;
};

}  // namespace kapdf
