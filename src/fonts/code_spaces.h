// How the bytes of a shown string fall into character codes of one or two bytes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace kapdf {

// Codes of `bytes` (1 or 2) bytes from low to high. With two bytes, each byte has bounds of its own.
struct CodeSpace {
  uint32_t bytes;
  uint32_t low;
  uint32_t high;
};

// The code spaces of a font, in the order in which they are tried. The first block that is announced fixes how many
// there is room for; what comes after, from later blocks and texts as well, is dropped.
class CodeSpaces {
 public:
  std::span<const CodeSpace> list() const { return {list_.data(), list_.size() < room_ ? list_.size() : room_}; }
  bool empty() const { return list().empty(); }

  // A block of `count` code spaces begins; a count below 1 announces nothing.
  void Announce(int64_t count) {
    if (room_ == 0 && count > 0) room_ = static_cast<size_t>(count);
  }
  void Add(const CodeSpace &space);
  // Adds what another list was given, as far as there is room here; an unused list takes over the other's room.
  void Append(const CodeSpaces &other);
  void Clear() { *this = {}; }
  // The list of a font that has none: every byte is a code.
  void SetBytes() {
    Clear();
    Announce(1);
    Add({1, 0, 0xFF});
  }

 private:
  std::vector<CodeSpace> list_;  // also those without room here, for Append
  size_t room_ = 0;
};

// Length of the code that begins with the byte `first`: 0 when it lies in no code space. second() gives the byte behind
// it (0 at the end) and is asked at most once. A first byte alone in bounds makes two bytes, unless a later code space
// takes the code as it is.
template <typename Second>
int CodeLength(std::span<const CodeSpace> spaces, uint8_t first, Second &&second) {
  int length = 0;
  int next = -1;
  for (const CodeSpace &space : spaces) {
    if (space.bytes == 1) {
      if (first >= space.low && first <= space.high) return 1;
      continue;
    }
    if (first < space.low >> 8 || first > space.high >> 8) continue;
    length = 2;
    if (next < 0) next = static_cast<uint8_t>(second());
    if (static_cast<uint32_t>(next) >= (space.low & 0xFF) && static_cast<uint32_t>(next) <= (space.high & 0xFF)) break;
  }
  return length;
}

}  // namespace kapdf
