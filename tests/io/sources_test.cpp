#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>

#include "io/ffile.h"
#include "io/memory_file.h"
#include "io/memory_file_read.h"
#include "support/temp_file.h"

namespace kapdf {
namespace {

constexpr char16_t kPath[] = u"Software\\kaPDF-tests";
constexpr char kBytes[] = "0123456789abcdefghijABCDEFGHIJ\xFF\xFEklmno";

// What every source has to do, said in the plainest way.
struct Model {
  std::string bytes;
  int64_t at = 0;
  bool ended = false;

  int64_t size() const { return static_cast<int64_t>(bytes.size()); }
  bool Seek(int64_t offset, SeekOrigin origin) {
    const int64_t target = offset + (origin == SeekOrigin::kStart ? 0 : origin == SeekOrigin::kCurrent ? at : size());
    ended = false;
    if (target < 0) return false;
    at = std::min(target, size());
    return true;
  }
  std::string Read(size_t count) {
    std::string part = bytes.substr(static_cast<size_t>(at), count);
    at += static_cast<int64_t>(part.size());
    return part;
  }
  uint8_t GetByte() {
    ended = ended || at == size();
    return at == size() ? 255 : static_cast<uint8_t>(bytes[static_cast<size_t>(at++)]);
  }
  void Write(std::string_view text) {
    bytes.replace(static_cast<size_t>(at), text.size(), text);
    at += static_cast<int64_t>(text.size());
  }
};

void CompareWithModel(CZVBaseIO &io, bool writes, unsigned seed) {
  Model model{kBytes};
  std::mt19937 random(seed);
  for (int step = 0; step < 20000; ++step) {
    const unsigned call = random() % (writes ? 6 : 5);
    std::string part(random() % 20, static_cast<char>('p' + random() % 8));
    if (call == 0) {
      const auto offset = static_cast<int64_t>(random() % 100) - 50;
      const auto origin = static_cast<SeekOrigin>(random() % 3);
      ASSERT_EQ(io.Seek(offset, origin), model.Seek(offset, origin)) << step;
    } else if (call == 1) {
      const std::string expected = model.Read(part.size());
      part.resize(io.Read(part.data(), part.size()));
      ASSERT_EQ(part, expected) << step;
    } else if (call == 5 && model.size() <= 200) {
      ASSERT_EQ(io.Write(part.data(), part.size()), part.size()) << step;
      model.Write(part);
    } else {
      ASSERT_EQ(io.GetByte(), model.GetByte()) << step;
      ASSERT_EQ(io.AtEnd(), model.ended) << step;
    }
    ASSERT_EQ(io.Tell(), model.at) << step;
  }
  EXPECT_TRUE(io.Flush());
  io.Seek(0, SeekOrigin::kStart);
  std::string all(1000, '\0');
  all.resize(io.Read(all.data(), all.size()));
  EXPECT_EQ(all, model.bytes);
}

TEST(Sources, BehaveAlikeWhateverTheOrderOfCalls) {
  const auto *first = reinterpret_cast<const uint8_t *>(kBytes);
  const size_t size = sizeof kBytes - 1;
  for (unsigned seed = 0; seed < 4; ++seed) {
    CZVMemoryFileFlat flat(std::vector<uint8_t>(first, first + size));
    CompareWithModel(flat, true, seed);
    MemorySource source({first, size});
    CompareWithModel(source, false, seed);
    for (const bool buffered : {true, false}) {
      const test::TempFile file({kBytes, size});
      CZVFFile stream(file.stream(), buffered, kPath);
      CompareWithModel(stream, true, seed);
    }
    for (const size_t block : {1u, 7u, 37u, 4096u}) {
      const test::TempFile file({kBytes, size});
      CZVMemoryFileRead blocks(block, kPath);
      ASSERT_TRUE(blocks.Attach(file.stream()));
      CompareWithModel(blocks, false, seed);
    }
  }
}

TEST(Sources, BlocksAreReadFromDiskOnce) {
  const test::TempFile file("abcdefghij");
  CZVMemoryFileRead blocks(4, kPath);
  ASSERT_TRUE(blocks.Attach(file.stream()));
  char text[10];
  ASSERT_EQ(blocks.Read(text, 10), 10u);
  EXPECT_EQ(std::string_view(text, 10), "abcdefghij");
  std::rewind(file.stream());
  std::fputs("XXXXXXXXXX", file.stream());
  std::fflush(file.stream());
  blocks.Seek(3, SeekOrigin::kStart);
  EXPECT_EQ(blocks.GetByte(), 'd');
  EXPECT_EQ(blocks.GetByte(), 'e');
}

}  // namespace
}  // namespace kapdf
