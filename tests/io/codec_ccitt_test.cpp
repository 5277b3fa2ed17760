#include "io/codec_ccitt.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <random>
#include <string>

#include "base/bytes.h"
#include "io/memory_file.h"

namespace kapdf {
namespace {

enum Kind { k1D, k1DBytes, kMixed, kG4 };

std::unique_ptr<CZVCCITT> Make(Kind kind, CZVBaseIO &io, uint32_t length, uint32_t columns) {
  std::unique_ptr<CZVCCITT> codec;
  if (kind == kG4) codec = std::make_unique<CZVCCITT4>(io, length);
  if (kind == kMixed) codec = std::make_unique<CZVCCITT3Fax>(io, length);
  if (!codec) codec = std::make_unique<CZVCCITT3>(io, length);
  codec->SetColumns(columns);
  codec->SetOptions(kind == k1DBytes ? CZVCCITT::kRowsStartAtBytes : 0);
  return codec;
}

struct Decoded {
  std::vector<uint8_t> packed;
  unsigned state;
};

// In reads of `piece` bytes, or as run lists when that is 0.
Decoded Decode(Kind kind, std::span<const uint8_t> coded, uint32_t columns, size_t piece) {
  MemorySource source(coded);
  const auto codec = Make(kind, source, piece == 0 ? 0 : static_cast<uint32_t>(coded.size()), columns);
  codec->SetBitlineOutput(piece == 0);
  std::vector<uint8_t> all, part(piece + 4 * columns + 12);
  while (const size_t got = codec->Read(part.data(), piece == 0 ? columns : piece)) {
    if (piece > 0) {
      all.insert(all.end(), part.begin(), part.begin() + got);
      continue;
    }
    EXPECT_EQ(got, 4 + 8 * size_t{LoadAs<uint32_t>(part.data())});
    const size_t row = all.size();
    all.resize(row + (columns + 7) / 8);
    uint32_t least = 0;  // runs do not touch one another
    for (size_t at = 4; at < got; at += 8) {
      const auto first = LoadAs<uint32_t>(&part[at]), last = LoadAs<uint32_t>(&part[at + 4]);
      EXPECT_TRUE(least <= first && first <= last && last < columns);
      for (uint32_t x = first; x <= last; ++x) all[row + x / 8] |= static_cast<uint8_t>(128 >> x % 8);
      least = last + 2;
    }
  }
  return {all, codec->error()};
}

// One text for each row, "#" is black. Padding is shown when it is not white.
std::vector<std::string> ToText(const std::vector<uint8_t> &packed, uint32_t columns) {
  std::vector<std::string> rows;
  for (size_t at = 0; at < packed.size(); at += (columns + 7) / 8) {
    std::string &row = rows.emplace_back();
    for (size_t x = 0; x < (columns + 7) / 8 * 8; ++x) row += packed[at + x / 8] & 128 >> x % 8 ? '#' : '.';
    if (row.find('#', columns) == row.npos) row.resize(columns);
  }
  return rows;
}

std::vector<uint8_t> ToBytes(std::string_view bits) {
  std::vector<uint8_t> bytes;
  size_t count = 0;
  for (const char bit : bits) {
    if (bit == ' ') continue;
    if (count++ % 8 == 0) bytes.push_back(0);
    bytes.back() |= static_cast<uint8_t>((bit - '0') << (8 - count % 8) % 8);
  }
  return bytes;
}

TEST(Ccitt, BitByBit) {
  const std::string eol = "000000000001 ", eol0 = eol + "0", eol1 = eol + "1", eofb = eol + eol;
  const std::string rowA = "0111 10 1000 ", a = "..###...", white = "........", rtc = eofb + eofb + eofb;
  const std::string all = "00110101 000101 ", black = "########";
  const std::string wide = "000000011111 10010 000111 0011 1110  00110101 000000011111 0000001100101 0000110111";
  const std::string verticals = "001 0111 10 1  011 010 1  000011 010 1  0000010 000010 1  0000011 1";
  const struct {
    Kind kind;
    uint32_t columns;
    std::string bits;
    std::vector<std::string> rows;
    unsigned state = kCodecFinished;
  } cases[] = {
      // Rows that stand alone.
      {k1D, 8, rowA + all + "10011 10011", {a, black, white, white}},
      {kMixed, 8, rowA + all + "10011 10011", {a, black, white, white}},
      {k1D, 8, "0111 0000110111 1110 " + rowA + rtc, {white, a}},  // no black pixel parts the white ones
      {kMixed, 8, eol + rowA + eol + all + "0000000" + eol + "10011" + rtc, {a, black, white}},
      {k1D, 8, rowA + eol + all + eol + rowA, {a, black, a}},
      {k1DBytes, 8, rowA + "000000 " + all + "00 10011 000", {a, black, white}},
      {k1DBytes, 8, "0000" + eol + rowA + "00" + eol + all, {a, black}},
      {k1D, 2700, wide, {std::string(2689, '.') + "#####......", std::string(2700, '#')}, kCodecDamaged},
      // Rows that refer to others, by a bit behind each end-of-line code; or the white run of 3 that looks like one.
      {kMixed, 8, eol1 + rowA + eol0 + "1 011 1" + eol1 + all + eol1 + eol1, {a, "..####..", black}},
      {kMixed, 8, eol + "1000 11 1000" + eol + rowA, {"...##...", a}},
      // Damage: reading goes on at the end-of-line code, even if its first zeros were taken for the row's.
      {k1D, 8, eol + rowA + eol + "0111 10 00000000011" + eol + rowA + eol + all, {a, "..###...", a, black}},
      {k1D, 8, eol + rowA + eol + "1011 1" + eol + rowA + eol + all, {a, "....###.", a, black}},
      {k1D, 8, eol + rowA + eol + all + "000010000001" + rowA + eol + all, {a, black, a, black}},
      {k1D, 8, rowA + "0111 10 00000000 1" + all + "1001 1111", {a, a, black, white, white}, kCodecDamaged},
      {kMixed, 8, eol1 + rowA + eol0 + "0000000001" + eol0 + "1 1 1" + eol1 + all, {a, white, white, black}},
      // All rows refer to the one above.
      {kG4, 8, "001 0111 10 1" + eofb, {a}},
      {kG4, 8, verticals, {a, "...#....", ".....##.", a, ".....###"}},
      {kG4, 8, "1  001 00110101 000101  1 1  001 0111 10 1  0001 1", {white, black, black, a, white}},
      {kG4, 8, "001 0111 10 1  1 0000001111  1" + eol, {a, white, white}},
      {kG4, 8, "001 0111 10 1 000000001 1 1 1" + eofb + "1 1", {a, a}},
      {kG4, 8, "001 0111 10 1 1 1", {a, a}, kCodecDamaged},
      {kG4, 8, "0000 0000 0000 0000", {}},
  };
  for (const auto &c : cases) {
    for (const size_t piece : {0u, 1u, 3u, 1000u}) {
      const Decoded decoded = Decode(c.kind, ToBytes(c.bits), c.columns, piece);
      EXPECT_EQ(ToText(decoded.packed, c.columns), c.rows) << c.bits;
      EXPECT_EQ(decoded.state, c.state) << c.bits;
    }
  }
}

// Packed rows of one of four kinds: noise, long runs, strokes that drift from row to row, hardly anything.
std::vector<uint8_t> Picture(int kind, uint32_t columns, int rows, std::mt19937 &random) {
  const size_t rowBytes = (columns + 7) / 8;
  std::vector<uint8_t> all(rowBytes * static_cast<size_t>(rows));
  for (uint32_t y = 0, drift = 0; y < static_cast<uint32_t>(rows); ++y, drift += random() % 3) {
    uint32_t run = 0, left = 0;
    for (uint32_t x = 0; x < columns; ++x, --left) {
      if (left == 0) left = 1 + random() % (++run % 9 == 0 ? 9000 : 70);
      const bool black = kind == 0   ? random() % 2 == 0
                         : kind == 1 ? run % 2 == 0
                         : kind == 2 ? (x + drift) % 31 < 5
                                     : random() % 500 == 0;
      all[y * rowBytes + x / 8] |= static_cast<uint8_t>(black << (7 - x % 8));
    }
  }
  return all;
}

std::vector<uint8_t> Encode(const std::vector<uint8_t> &plain, uint32_t columns, std::mt19937 &random) {
  CZVMemoryFileFlat sink;
  CZVCCITT4 codec(sink, 0);
  codec.SetColumns(columns);
  for (size_t at = 0; at < plain.size();) {
    const size_t part = std::min<size_t>(plain.size() - at, 1 + random() % 700);
    EXPECT_EQ(codec.Write(plain.data() + at, part), part);
    at += part;
  }
  EXPECT_TRUE(codec.flush());
  return {sink.bytes().begin(), sink.bytes().end()};
}

TEST(Ccitt, WhatIsWrittenComesBackAndSurvivesDamage) {
  std::mt19937 random(1);
  for (const uint32_t columns : {1u, 7u, 64u, 65u, 1728u, 9001u}) {
    for (int kind = 0; kind < 4; ++kind) {
      const auto plain = Picture(kind, columns, 40, random);
      auto coded = Encode(plain, columns, random);
      for (const size_t piece : {0u, 100u}) {
        const Decoded decoded = Decode(kG4, coded, columns, piece);
        EXPECT_TRUE(decoded.packed == plain) << columns << " " << kind;
        EXPECT_EQ(decoded.state, kCodecFinished);
      }
      coded[coded.size() / 2] ^= 0x55;
      coded.resize(coded.size() - coded.size() / 4);
      const auto found = Decode(kG4, coded, columns, 0).packed;
      const auto same = std::mismatch(found.begin(), found.end(), plain.begin(), plain.end());
      EXPECT_GE(static_cast<size_t>(same.first - found.begin()), plain.size() / 3) << columns << " " << kind;
    }
  }
}

}  // namespace
}  // namespace kapdf
