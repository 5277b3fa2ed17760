// Small files that ask for much work. Each would take minutes, or gigabytes, if the work were done as asked for.
#include <gtest/gtest.h>

#include <chrono>
#include <string>

#include "support/opened_pdf.h"
#include "support/pdf_builder.h"

namespace kapdf {
namespace {

using test::BigEndian;

std::string Repeated(char c, size_t count) {
  std::string text;
  text.resize(count, c);
  return text;
}

// A catalog and a tree of `count` pages from object `first` on.
std::string Tree(int first, int count) {
  std::string text = "%PDF-1.4\n1 0 obj<</Pages 2 0 R>>\n2 0 obj<</Type/Pages/Kids[";
  for (int i = first; i < first + count; ++i) text += std::to_string(i) + " 0 R ";
  return text + "]>>\n";
}

std::string PlainRow(size_t position) { return BigEndian(1, 1) + BigEndian(position, 4) + BigEndian(0, 1); }

// Each of the pages is said to begin one blank further on in the same long run of blanks.
std::string SharedWhiteSpace() {
  const std::string text = Tree(3, 20000);
  std::string rows = PlainRow(0) + PlainRow(9) + PlainRow(text.find("2 0 obj"));
  for (size_t i = 0; i < 20000; ++i) rows += PlainRow(text.size() + i);
  return test::WithXRefStream(text + std::string(1000000, ' ') + "3 0 obj<</Type/Page>>\n", 30000,
                              "/Root 1 0 R/W[1 4 1]/Size 20003", rows);
}

// Every page is said to be the one or the other member of an object stream that inflates to much.
std::string LargeMembers() {
  const std::string text = Tree(4, 20000), members = "4 0 5 0 " + Repeated(' ', 100'000'000) + "<</Type/Page>>";
  const std::string packed = test::Deflate(members);
  std::string rows = PlainRow(0) + PlainRow(9) + PlainRow(text.find("2 0 obj")) + PlainRow(text.size());
  for (unsigned i = 0; i < 20000; ++i) rows += BigEndian(2, 1) + BigEndian(3, 4) + BigEndian(i % 2, 1);
  return test::WithXRefStream(text + "3 0 obj<</Type/ObjStm/N 2/First 8/Filter/Fl/Length " +
                                  std::to_string(packed.size()) + ">>stream\n" + packed + "\n",
                              30000, "/Root 1 0 R/W[1 4 1]/Size 20004", rows);
}

// Streams of a chain that each want a number looked up while the table grows.
std::string LongChain() {
  std::string out = "%PDF-1.5\n";
  size_t previous = 0;
  for (int i = 0; i < 60000; ++i) {
    const size_t here = out.size();
    out += "4 0 obj<</Type/XRef/W[1 1 1]/Index[" + std::to_string(i * 7 % 60000) +
           " 1]/Size 9/Length 3/Length1 70000 0 R" + (previous ? "/Prev " + std::to_string(previous) : std::string()) +
           ">>stream\n\1\1\1\n";
    previous = here;
  }
  return out + "startxref " + std::to_string(previous) + " %%EOF";
}

TEST(Hostile, WorkIsBounded) {
  const std::string manyEntries = test::WithXRefStream("%PDF-1.5\n", 4, "/W[1 0 0]/Size 2000000000/Filter/Fl",
                                                       test::Deflate(Repeated('\1', 100'000'000)));
  const std::pair<std::string, uint32_t> cases[] = {
      {SharedWhiteSpace(), 0}, {LargeMembers(), 0}, {manyEntries, FilterNoRoot}, {LongChain(), FilterNoRoot}};
  for (const auto &[bytes, result] : cases) {
    SCOPED_TRACE(bytes.size());
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(test::OpenedPdf(bytes).result, result);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(60));
  }
}

}  // namespace
}  // namespace kapdf
