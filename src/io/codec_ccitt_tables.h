// The codes of facsimile rows, and the tables made of them when this is compiled.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace kapdf::ccitt {

inline constexpr size_t kRunCodes = 64 + 40;
inline constexpr int32_t kLongestRunCode = 2560;

// clang-format off
// Runs of white pixels: 0 to 63, then multiples of 64 from 64 to 2560.
inline constexpr std::string_view kWhiteCodes[kRunCodes] = {
    "00110101", "000111", "0111", "1000", "1011", "1100", "1110", "1111",  // 0
    "10011", "10100", "00111", "01000", "001000", "000011", "110100", "110101",  // 8
    "101010", "101011", "0100111", "0001100", "0001000", "0010111", "0000011", "0000100",  // 16
    "0101000", "0101011", "0010011", "0100100", "0011000", "00000010", "00000011", "00011010",  // 24
    "00011011", "00010010", "00010011", "00010100", "00010101", "00010110", "00010111", "00101000",  // 32
    "00101001", "00101010", "00101011", "00101100", "00101101", "00000100", "00000101", "00001010",  // 40
    "00001011", "01010010", "01010011", "01010100", "01010101", "00100100", "00100101", "01011000",  // 48
    "01011001", "01011010", "01011011", "01001010", "01001011", "00110010", "00110011", "00110100",  // 56
    "11011", "10010", "010111", "0110111", "00110110", "00110111", "01100100", "01100101",  // 64
    "01101000", "01100111", "011001100", "011001101", "011010010", "011010011", "011010100", "011010101",  // 576
    "011010110", "011010111", "011011000", "011011001", "011011010", "011011011", "010011000", "010011001",  // 1088
    "010011010", "011000", "010011011",  // 1600
    "00000001000", "00000001100", "00000001101", "000000010010", "000000010011", "000000010100", "000000010101", "000000010110",  // 1792
    "000000010111", "000000011100", "000000011101", "000000011110", "000000011111",  // 2304
};

// Runs of black pixels: 0 to 63, then multiples of 64 from 64 to 2560.
inline constexpr std::string_view kBlackCodes[kRunCodes] = {
    "0000110111", "010", "11", "10", "011", "0011", "0010", "00011",  // 0
    "000101", "000100", "0000100", "0000101", "0000111", "00000100", "00000111", "000011000",  // 8
    "0000010111", "0000011000", "0000001000", "00001100111", "00001101000", "00001101100", "00000110111", "00000101000",  // 16
    "00000010111", "00000011000", "000011001010", "000011001011", "000011001100", "000011001101", "000001101000", "000001101001",  // 24
    "000001101010", "000001101011", "000011010010", "000011010011", "000011010100", "000011010101", "000011010110", "000011010111",  // 32
    "000001101100", "000001101101", "000011011010", "000011011011", "000001010100", "000001010101", "000001010110", "000001010111",  // 40
    "000001100100", "000001100101", "000001010010", "000001010011", "000000100100", "000000110111", "000000111000", "000000100111",  // 48
    "000000101000", "000001011000", "000001011001", "000000101011", "000000101100", "000001011010", "000001100110", "000001100111",  // 56
    "0000001111", "000011001000", "000011001001", "000001011011", "000000110011", "000000110100", "000000110101", "0000001101100",  // 64
    "0000001101101", "0000001001010", "0000001001011", "0000001001100", "0000001001101", "0000001110010", "0000001110011", "0000001110100",  // 576
    "0000001110101", "0000001110110", "0000001110111", "0000001010010", "0000001010011", "0000001010100", "0000001010101", "0000001011010",  // 1088
    "0000001011011", "0000001100100", "0000001100101",  // 1600
    "00000001000", "00000001100", "00000001101", "000000010010", "000000010011", "000000010100", "000000010101", "000000010110",  // 1792
    "000000010111", "000000011100", "000000011101", "000000011110", "000000011111",  // 2304
};
// clang-format on

// The place of a run's code: of a run below 64, or of a multiple of 64.
constexpr size_t RunCodeIndex(int32_t run) { return static_cast<size_t>(run < 64 ? run : 63 + run / 64); }

struct Code {
  uint16_t bits;  // the last ones of it
  uint8_t count;
};

constexpr Code ToCode(std::string_view text) {
  Code code{0, static_cast<uint8_t>(text.size())};
  for (const char digit : text) code.bits = static_cast<uint16_t>(code.bits << 1 | (digit - '0'));
  return code;
}

constexpr std::array<Code, kRunCodes> ToCodes(const std::string_view (&texts)[kRunCodes]) {
  std::array<Code, kRunCodes> codes{};
  for (size_t i = 0; i < kRunCodes; ++i) codes[i] = ToCode(texts[i]);
  return codes;
}

// To code a run: by colour, 1 is black.
inline constexpr std::array<Code, kRunCodes> kRunCodesOf[2] = {ToCodes(kWhiteCodes), ToCodes(kBlackCodes)};

// To decode one: by the next 13 bits. An entry is the run times 16 plus the bits of its code, 0 where no code starts.
using RunTable = std::array<uint16_t, 1 << 13>;
inline constexpr int kRunPeek = 13;

constexpr RunTable ToRunTable(const std::array<Code, kRunCodes> &codes) {
  RunTable table{};
  for (size_t i = 0; i < kRunCodes; ++i) {
    const size_t run = i < 64 ? i : (i - 63) * 64;
    const int rest = kRunPeek - codes[i].count;
    for (size_t j = 0; j < size_t{1} << rest; ++j) {
      table[(static_cast<size_t>(codes[i].bits) << rest) + j] = static_cast<uint16_t>(run << 4 | codes[i].count);
    }
  }
  return table;
}

inline constexpr RunTable kRunTables[2] = {ToRunTable(kRunCodesOf[0]), ToRunTable(kRunCodesOf[1])};

// What starts with eight zeros is no code, and everything else is one: so no code is missing, wrong or there twice.
constexpr bool IsComplete(const RunTable &table) {
  for (size_t i = 0; i < table.size(); ++i) {
    if ((table[i] == 0) != (i < table.size() >> 8)) return false;
  }
  return true;
}
static_assert(IsComplete(kRunTables[0]) && IsComplete(kRunTables[1]));
inline constexpr int kNoRunZeros = 8;

// What the rows that refer to the row above are made of.
enum class ModeKind : int8_t { kVertical, kHorizontal, kPass, kExtension, kNone };
struct Mode {
  ModeKind kind = ModeKind::kNone;
  int8_t delta = 0;  // kVertical: pixels to the right of the change above
  int8_t step = 0;   // kVertical: from that change to the next one worth a look, in the row above
  uint8_t bits = 0;
};
inline constexpr int kModePeek = 7;
inline constexpr int kNoModeZeros = 7;
inline constexpr int kExtensionBits = 10;

inline constexpr Code kPassCode = ToCode("0001");
inline constexpr Code kHorizontalCode = ToCode("001");
inline constexpr Code kVerticalCodes[7] = {ToCode("0000010"), ToCode("000010"), ToCode("010"),    ToCode("1"),
                                           ToCode("011"),     ToCode("000011"), ToCode("0000011")};  // -3 to 3
inline constexpr Code kEndOfLine = ToCode("000000000001");
inline constexpr int kEndOfLineZeros = 11;

constexpr std::array<Mode, 1 << kModePeek> ToModes() {
  std::array<Mode, 1 << kModePeek> modes{};
  const auto put = [&modes](Code code, ModeKind kind, int delta = 0) {
    const int rest = kModePeek - code.count;
    for (size_t i = 0; i < size_t{1} << rest; ++i) {
      modes[(static_cast<size_t>(code.bits) << rest) + i] = {kind, static_cast<int8_t>(delta),
                                                             static_cast<int8_t>(delta < 0 ? -1 : 1), code.count};
    }
  };
  for (int delta = -3; delta <= 3; ++delta) put(kVerticalCodes[delta + 3], ModeKind::kVertical, delta);
  put(kHorizontalCode, ModeKind::kHorizontal);
  put(kPassCode, ModeKind::kPass);
  put(ToCode("0000001"), ModeKind::kExtension);
  return modes;
}
inline constexpr std::array<Mode, 1 << kModePeek> kModes = ToModes();

}  // namespace kapdf::ccitt
