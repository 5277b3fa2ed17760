// A table from character codes to 16-bit targets (CIDs, UTF-16 units, codes of a code page), and the ranges it is made
// of.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <span>

namespace kapdf {

// Codes first, first + 1 ... go to target, target + 1 ..., modulo 65,536.
struct CodeRange {
  uint32_t count;
  int32_t first;
  uint16_t target;
};

inline constexpr uint16_t kNoTarget = 0xFFFF;
// Target by code; kNoTarget where there is none. 128 KiB: shared, never copied.
using CodeTable = std::array<uint16_t, 65536>;

// A table without targets, to be filled.
std::shared_ptr<CodeTable> MakeCodeTable();
// A code in several ranges gets the target of the last one. Codes above 0xFFFF are left out. Takes time in proportion
// to the number of ranges, not to their lengths.
std::shared_ptr<CodeTable> MakeCodeTable(std::span<const CodeRange> ranges);

}  // namespace kapdf
