#include "pdfmodel/xref_table.h"

#include <gtest/gtest.h>

#include <random>

namespace kapdf {
namespace {

PDFXRefBlock Block(int32_t first, int32_t count, uint32_t mark) {
  return {first, count, std::vector<PDFXRefEntry>(static_cast<size_t>(count), {mark, 0, 'n'})};
}

TEST(XRefTable, TheFirstBlockThatHoldsANumberWins) {
  std::mt19937 random(3);
  for (int round = 0; round < 300; ++round) {
    PDFXRef table;
    for (uint32_t mark = 1; mark < 30; ++mark) {
      table.AddBlock(
          Block(static_cast<int32_t>(random() % 60) - 5, static_cast<int32_t>(random() % (1 + random() % 25)), mark));
      if (random() % 3) continue;  // lookups and additions alternate
      for (int32_t number = -8; number < 90; ++number) {
        uint32_t expected = 0;
        for (const PDFXRefBlock &block : table.blocks()) {
          const bool holds = number >= block.firstObject && number < block.firstObject + block.count;
          if (expected == 0 && holds) expected = block.entries[0].offset;
        }
        const PDFXRefEntry *found = table.Find(number);
        ASSERT_EQ(found ? found->offset : 0, number < 0 ? 0 : expected) << number;
      }
    }
  }
}

TEST(XRefTable, ABlockWithFewerEntriesThanAnnouncedHidesOlderOnes) {
  PDFXRef table;
  PDFXRefBlock shortBlock = Block(4, 2, 1);
  shortBlock.count = 4;
  table.AddBlock(shortBlock);
  table.AddBlock(Block(0, 20, 2));
  EXPECT_EQ(table.Find(5)->offset, 1u);
  EXPECT_EQ(table.Find(6), nullptr);
  EXPECT_EQ(table.Find(8)->offset, 2u);
  PDFXRef copy;
  copy.CopyFrom(table);
  EXPECT_EQ(copy.Find(6)->type, 'f');
}

TEST(XRefTable, NumbersAreGivenInTheOrderOfTheFile) {
  PDFXRef table;
  table.BeginSection(0);
  EXPECT_EQ(table.Append(100, -1, 'n'), 1);
  EXPECT_EQ(table.Find(1)->generation, 0u);
  EXPECT_EQ(table.Find(2), nullptr);
  EXPECT_EQ(table.Append(200, 0, 'n'), 2);
  EXPECT_EQ(table.Find(2)->offset, 200u);  // seen although the block is an old one
  table.BeginSection(10);
  EXPECT_EQ(table.Append(300, 0, 'n'), 10);
  table.Set(400, 77, 'n');  // a number that nobody holds goes to the end
  EXPECT_EQ(table.HighestObject(), 11);
}

}  // namespace
}  // namespace kapdf
