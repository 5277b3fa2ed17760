#include "fonts/cmap.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

#include "base/limits.h"
#include "fonts/text_scan.h"

namespace kapdf {
namespace {

enum class Block { kSingle, kRange, kCodeSpace };

struct Keyword {
  const char *text;
  Block block;
  bool numeric;  // its targets are numbers, not hexadecimal strings
};

// In the order of the search in a line.
constexpr std::array kKeywords = {
    Keyword{"beginbfchar", Block::kSingle, false},
    Keyword{"begincidchar", Block::kSingle, true},
    Keyword{"beginbfrange", Block::kRange, false},
    Keyword{"begincidrange", Block::kRange, true},
    Keyword{"begincodespacerange", Block::kCodeSpace, false},
};

const Keyword *FindKeyword(const char *line) {
  const char *begin = std::strstr(line, "begin");
  if (!begin) return nullptr;
  for (const Keyword &keyword : kKeywords)
    if (std::strstr(begin, keyword.text)) return &keyword;
  return nullptr;
}

// Ends each line with a zero as it goes; empty lines do not count.
class Lines {
 public:
  explicit Lines(std::string &text) : at_(text.data()) {}

  // Null at the end.
  const char *Next() {
    at_ += std::strspn(at_, "\r\n");
    if (*at_ == '\0') return nullptr;
    char *line = at_;
    at_ += std::strcspn(at_, "\r\n");
    if (*at_ != '\0') *at_++ = '\0';
    return line;
  }

 private:
  char *at_;
};

// "<%0Wx> <%0Wx", W being the width.
bool ScanBounds(const char *&at, int width, uint32_t &low, uint32_t &high) {
  if (!Take(at, '<') || !ScanHex(at, width, low) || !Take(at, '>')) return false;
  SkipSpaces(at);
  return Take(at, '<') && ScanHex(at, width, high);
}

// "> <%04x" or "> %i". Further digits are left: of several units the first one counts.
bool ScanTarget(const char *&at, bool numeric, uint16_t &target) {
  if (!Take(at, '>')) return false;
  SkipSpaces(at);
  uint32_t hex = 0;
  int32_t number = 0;
  if (numeric ? !ScanAnyInteger(at, number) : !Take(at, '<') || !ScanHex(at, 4, hex)) return false;
  target = static_cast<uint16_t>(numeric ? static_cast<uint32_t>(number) : hex);
  return true;
}

bool ScanMapping(const char *at, Block block, bool numeric, CodeRange &range) {
  uint32_t low = 0;
  uint32_t high = 0;
  if (block == Block::kRange ? !ScanBounds(at, 4, low, high) : !Take(at, '<') || !ScanHex(at, 4, low)) return false;
  if (!ScanTarget(at, numeric, range.target)) return false;
  range.first = static_cast<int32_t>(low & 0xFFFF);
  range.count = block == Block::kRange ? high - low + 1 : 1;
  return static_cast<int32_t>(range.count) > 0;
}

bool ScanCodeSpace(const char *line, CodeSpace &space) {
  const char *at = line;
  space.bytes = 1;
  // Bounds of four digits fail here or end in a zero.
  if (ScanBounds(at, 2, space.low, space.high) && space.high != 0) return true;
  space.bytes = 2;
  at = line;
  return ScanBounds(at, 4, space.low, space.high);
}

// A block on one line: `line` is the one with its count and keyword.
bool ScanCodeSpaceLine(const char *line, CodeSpace &space) {
  constexpr std::string_view kKeyword = "begincodespacerange";
  int32_t count;
  if (!ScanAnyInteger(line, count)) return false;
  SkipSpaces(line);
  if (std::strncmp(line, kKeyword.data(), kKeyword.size()) != 0) return false;
  line += kKeyword.size();
  SkipSpaces(line);
  for (const uint32_t bytes : {1u, 2u}) {
    const char *at = line;
    space.bytes = bytes;
    if (ScanBounds(at, bytes == 1 ? 2 : 4, space.low, space.high)) return true;
  }
  return false;
}

void ReadCodeSpaces(const char *header, int64_t count, Lines &lines, CodeSpaces &spaces) {
  spaces.Announce(count);
  CodeSpace space;
  if (ScanCodeSpaceLine(header, space)) {
    // Counted as often as announced, deliberately; the same code space again changes no code.
    for (count = std::min<int64_t>(count, limits::kCodeSpaces); count > 0; --count) spaces.Add(space);
    return;
  }
  for (; count > 0; --count) {
    const char *line = lines.Next();
    if (!line) return;
    SkipSpaces(line);
    if (ScanCodeSpace(line, space)) spaces.Add(space);
  }
}

}  // namespace

size_t CMap::Parse(std::string text, bool append) {
  text.resize(std::min({text.size(), text.find('\0'), limits::kCMapText}));
  if (!append) ranges_.clear();
  Lines lines(text);
  bool numeric = false;  // stays for the blocks behind, whatever they are
  while (const char *header = lines.Next()) {
    const Keyword *keyword = FindKeyword(header);
    if (!keyword) continue;
    numeric = numeric || keyword->numeric;
    const char *at = header;
    int32_t announced = 0;
    if (!ScanAnyInteger(at, announced)) continue;
    // No entry takes fewer than five bytes.
    int64_t count = std::min(static_cast<int64_t>(announced), static_cast<int64_t>(text.size() / 5));
    if (keyword->block == Block::kCodeSpace) {
      ReadCodeSpaces(header, count, lines, codeSpaces_);
      continue;
    }
    for (; count > 0; --count) {
      const char *line = lines.Next();
      if (!line) break;
      SkipSpaces(line);
      CodeRange range;
      if (ScanMapping(line, keyword->block, numeric, range)) ranges_.push_back(range);
    }
  }
  std::ranges::stable_sort(ranges_, {}, &CodeRange::target);
  return codeSpaces_.list().size();
}

}  // namespace kapdf
