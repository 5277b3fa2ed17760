#include <gtest/gtest.h>

#include <string>

#include "io/codec_ascii.h"
#include "io/codec_flate.h"
#include "io/memory_file.h"
#include "support/pdf_builder.h"

namespace kapdf {
namespace {

std::span<const uint8_t> Bytes(std::string_view text) {
  return {reinterpret_cast<const uint8_t *>(text.data()), text.size()};
}

// All that comes out in reads of `piece` bytes.
std::string Drain(CCompressionClass &codec, size_t piece) {
  std::string all, part(piece, '\0');
  while (const size_t got = codec.Read(part.data(), piece)) all.append(part, 0, got);
  return all;
}

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

}  // namespace
}  // namespace kapdf
