#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <string>

#include "io/codec_ascii.h"
#include "io/codec_flate.h"
#include "io/codec_lzw.h"
#include "io/codec_packbits.h"
#include "io/memory_file.h"
#include "support/bytes.h"
#include "support/pdf_builder.h"

namespace kapdf {
namespace {

using test::Bytes, test::Drain;

struct Case {
  std::string coded, plain;
  unsigned state;
};

template <class Codec>
void ExpectDecoded(const Case &c) {
  for (const size_t piece : {1u, 3u, 1000u}) {
    MemorySource source(Bytes(c.coded));
    Codec codec(source, static_cast<uint32_t>(c.coded.size()));
    EXPECT_EQ(Drain(codec, piece), c.plain) << c.coded;
    EXPECT_EQ(codec.error(), c.state) << c.coded;
  }
}

TEST(Codecs, Ascii85) {
  const std::string full = "\xFF\xFF\xFF\xFF", zeros(4, '\0');
  const Case cases[] = {
      {" 87\ncU\tR D\rZ ~", "Hello", kCodecFinished},
      {"87cURDZ", "Hello", kCodecFinished},
      {"z~>", zeros, kCodecFinished},
      {"87cUz~>", "Hel", kCodecDamaged},  // "z" stands for a whole group
      {"8~>", "", kCodecFinished},
      {"87~>", "H", kCodecFinished},
      {"87cUR\xFF", "Hell", kCodecDamaged},
      {"s8W-!~>", full, kCodecFinished},
  };
  for (const Case &c : cases) ExpectDecoded<CZVASCII85>(c);
}

TEST(Codecs, AsciiHex) {
  const Case cases[] = {
      {"4 8\n6C6c6>", "Hll`", kCodecFinished},
      {"48", "H", kCodecFinished},
      {">41", "", kCodecFinished},
      {"48x9", "H", kCodecDamaged},
  };
  for (const Case &c : cases) ExpectDecoded<CZVASCIIHex>(c);
}

TEST(Codecs, FlateDamage) {
  std::string plain;
  for (int i = 0; i < 5000; ++i) plain += std::to_string(i * i);
  const std::string coded = test::Deflate(plain);
  std::string wrongSum = coded;
  wrongSum.back() ^= 1;
  for (const std::string &whole : {coded, coded + "rubbish", wrongSum})
    ExpectDecoded<CZVFlate>({whole, plain, kCodecFinished});
  for (const char *bad : {"no zlib data", ""}) ExpectDecoded<CZVFlate>({bad, "", kCodecDamaged});

  MemorySource source(Bytes(std::string_view(coded).substr(0, coded.size() / 2)));
  CZVFlate codec(source, 0);
  const std::string half = Drain(codec, 100);
  EXPECT_GT(half.size(), plain.size() / 4);
  EXPECT_EQ(half, plain.substr(0, half.size()));
  EXPECT_EQ(codec.error(), kCodecDamaged);
}

TEST(Codecs, FlateWritesWhatItReads) {
  CZVMemoryFileFlat sink;
  CZVFlate codec(sink, 0);
  std::string plain;
  for (unsigned i = 0; i < 50000; ++i) plain += static_cast<char>(i * i >> 5);
  for (size_t at = 0; at < plain.size(); at += 1000) codec.Write(plain.data() + at, 1000);
  EXPECT_TRUE(codec.flush());
  EXPECT_EQ(codec.Write("x", 1), 0u);  // the stream has ended
  sink.Seek(0, SeekOrigin::kStart);
  codec.reset();
  EXPECT_EQ(Drain(codec, 4096), plain);
}

template <class Codec, class... More>
std::string Encoded(std::string_view plain, More... more) {
  CZVMemoryFileFlat sink;
  Codec codec(sink, 0, more...);
  for (const char c : plain) codec.putByte(static_cast<uint8_t>(c));
  EXPECT_TRUE(codec.flush());
  return {sink.bytes().begin(), sink.bytes().end()};
}

TEST(Codecs, PackBits) {
  const std::string row(128, 'r'), many = "abcdefgh" + row + "rr" + "xyyzz", end(1, '\x80');
  std::string noise;
  for (int i = 0; i < 130; ++i) noise += static_cast<char>(i);
  const Case bothWays[] = {
      {end, "", kCodecFinished},
      {std::string("\0x\x80", 3), "x", kCodecFinished},
      {"\xFFx\2abb\x80", "xxabb", kCodecFinished},
      {"\x07"
       "abcdefgh\x81r\xFFr\x04xyyzz\x80",
       many, kCodecFinished},
      {"\x7F" + noise.substr(0, 128) + "\1" + noise.substr(128) + "\x80", noise, kCodecFinished},
  };
  for (const Case &c : bothWays) {
    ExpectDecoded<CZVPackBits>(c);
    EXPECT_EQ(Encoded<CZVPackBits>(c.plain), c.coded);
  }
  const Case damaged[] = {{"\2ab", "ab", kCodecDamaged}, {"\xFE", "", kCodecDamaged}, {"\xFEq", "qqq", kCodecFinished}};
  for (const Case &c : damaged) ExpectDecoded<CZVPackBits>(c);
}

TEST(Codecs, Lzw) {
  const auto nines = [](std::initializer_list<unsigned> codes) {
    std::string bytes;
    unsigned window = 0, held = 0;
    for (const unsigned code : codes) {
      window = window << 9 | code;
      for (held += 9; held >= 8; held -= 8) bytes += static_cast<char>(window >> (held - 8));
    }
    return bytes + static_cast<char>(window << (8 - held));
  };
  const std::string known("\x80\x0B\x60\x50\x22\x0C\x0C\x85\x01", 9), plain = "-----A---B";
  EXPECT_EQ(Encoded<CZVLzw>(plain, CodecMode::kEncode), known);
  const Case cases[] = {
      {known, plain, kCodecFinished},
      {nines({'a', 258, 'b', 257}), "aaab", kCodecFinished},  // no clear code, and a string that is used as it is made
      {nines({256, 'a', 'b', 256, 'c', 258, 257}), "abccc", kCodecFinished},
      {nines({256, 'a', 259, 'b'}), "a", kCodecDamaged},
      {nines({256, 258, 'b'}), "", kCodecDamaged},
      {nines({256, 'a', 256, 258}), "a", kCodecDamaged},
      {nines({256, 'a', 'b'}), "ab", kCodecDamaged},
  };
  for (const Case &c : cases) ExpectDecoded<CZVLzw>(c);
}

// Each code enters one string. A full table that nobody clears keeps its codes of 12 bits.
TEST(Codecs, LzwGrowsItsCodes) {
  for (const bool early : {false, true}) {
    std::string bits, plain, coded;
    for (int code = 1; code <= 5000; ++code) {
      const int width = code <= 255 - early ? 9 : code <= 767 - early ? 10 : code <= 1791 - early ? 11 : 12;
      plain += static_cast<char>(code * code >> 3);
      for (int bit = width; bit-- > 0;) bits += bit < 8 && (plain.back() >> bit & 1) ? '1' : '0';
    }
    bits.resize((bits.size() + 7) / 8 * 8, '0');
    for (size_t at = 0; at < bits.size(); at += 8)
      coded += static_cast<char>(std::stoi(bits.substr(at, 8), nullptr, 2));
    MemorySource source(Bytes(coded));
    CZVLzw codec(source, 0);
    codec.SetEarlyChange(early);
    EXPECT_TRUE(Drain(codec, 777) == plain) << early;
  }
  std::string plain;
  for (unsigned i = 0; i < 200000; ++i) plain += static_cast<char>(i * i >> (i / 9999));
  const std::string coded = Encoded<CZVLzw>(plain, CodecMode::kEncode);
  EXPECT_LT(coded.size(), plain.size());
  ExpectDecoded<CZVLzw>({coded, plain, kCodecFinished});
}

TEST(Codecs, RowPrediction) {
  const auto hex = [](const char *text) {
    MemorySource source(Bytes(text));
    CZVASCIIHex codec(source, 0);
    return Drain(codec, 100);
  };
  const struct {
    uint8_t predictor;
    SampleShape shape;
    const char *coded, *plain;
  } cases[] = {
      {1, {3, 1, 8}, "0102030405", "0102030405"},
      {2, {3, 1, 8}, "010203 FF0101 0505", "010306 FF0001 050A"},
      {2, {2, 3, 8}, "010203010101", "010203020304"},
      {2, {2, 5, 8}, "01020304050101010101", "01020304050203040506"},
      {2, {16, 1, 1}, "A480 FF80", "C700 AAFF"},
      {2, {3, 2, 4}, "12F1E0 FFFFFF", "12 03 E3 FF EE DD"},
      {2, {8, 1, 2}, "6C40", "7AFF"},
      {2, {2, 1, 16}, "01FF0001 FFFF0002 80", "01FF0200 FFFF0001 80"},
      {12, {3, 1, 8}, "00010203 01010101 02010101 09070707 0205", "010203 010203 020304 070707 0C"},
      {15,
       {3, 3, 8},
       "000A141E28323C05FF80 04010203F0F1F2112233 030102030405FF010203 01FFFFFF0101",
       "0A141E28323C05FF80 0B162118232E1621B3 060D13131D1F15216C FFFFFF0000"},
      {10, {5, 3, 2}, "0201020304 0504010101", "01020304 04010101"},
      {10, {1, 2, 16}, "0100010002 0200010001 04FF", "00010002 00020003 FF"},
      // Shapes that no image has.
      {15, {0, 1, 8}, "0201", "0201"},
      {15, {3, 1, 7}, "0201", "0201"},
      {15, {3, 257, 8}, "0201", "0201"},
      {2, {0xFFFFFFFF, 256, 16}, "0201", "0201"},
      {2, {0xFFFFFFFF, 1, 1}, "FF01", "AA01"},  // long, but not beyond the bound
  };
  for (const auto &c : cases) {
    const std::string coded = test::Deflate(hex(c.coded));
    for (const size_t piece : {1u, 4u, 1000u}) {
      MemorySource source(Bytes(coded));
      CZVFlate codec(source, 0);
      codec.UsePredictor(c.predictor);
      codec.SetSampleShape(c.shape);
      EXPECT_EQ(Drain(codec, piece), hex(c.plain)) << int{c.predictor} << ": " << c.coded;
      EXPECT_EQ(codec.error(), kCodecFinished);
    }
  }
}

// Larger than what is decoded at a time, of samples that are often equally near to the predicted one.
TEST(Codecs, RowPredictionOfWholePictures) {
  constexpr int kHeight = 260;
  for (const int colors : {1, 3}) {
    const int rowBytes = 300 * colors;
    std::string plain, predicted;
    for (uint32_t i = 0, noise = 1; i < kHeight * static_cast<uint32_t>(rowBytes); ++i) {
      noise = noise * 1664525 + 1013904223;
      plain += static_cast<char>(126 + (noise >> 24) % 5);
    }
    const auto at = [&](int x, int y) { return x < 0 || y < 0 ? 0 : static_cast<uint8_t>(plain[y * rowBytes + x]); };
    for (int y = 0; y < kHeight; ++y) {
      const int tag = (y + 4) % 5;
      predicted += static_cast<char>(tag);
      for (int x = 0; x < rowBytes; ++x) {
        const int a = at(x - colors, y), b = at(x, y - 1), c = at(x - colors, y - 1), p = a + b - c;
        const int nearest = std::min({std::abs(p - a), std::abs(p - b), std::abs(p - c)});
        const int paeth = std::abs(p - a) == nearest ? a : std::abs(p - b) == nearest ? b : c;
        predicted += static_cast<char>(at(x, y) - std::array{0, a, b, (a + b) / 2, paeth}[static_cast<size_t>(tag)]);
      }
    }
    const std::string coded = test::Deflate(predicted);
    MemorySource source(Bytes(coded));
    CZVFlate codec(source, 0);
    codec.UsePredictor(15);
    codec.SetSampleShape({300, static_cast<uint32_t>(colors), 8});
    EXPECT_TRUE(Drain(codec, 5000) == plain) << colors;
  }
}

}  // namespace
}  // namespace kapdf
