// Small files that ask for much work. Each would take minutes, or gigabytes, if the work were done as asked for.
#include <gtest/gtest.h>

#include <chrono>
#include <functional>
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

// A table of `count` objects from 1 on at the positions that `at` tells, and a trailer.
std::string WithTable(std::string out, int count, const std::function<size_t(int)> &at) {
  const size_t start = out.size();
  out += "xref\n1 " + std::to_string(count) + "\n";
  for (int i = 1; i <= count; ++i) {
    char line[32];
    std::snprintf(line, sizeof line, "%010u 00000 n \n", static_cast<unsigned>(at(i)));
    out += line;
  }
  return out + "trailer<</Root 1 0 R/Size 9>>\nstartxref\n" + std::to_string(start) + "\n%%EOF";
}

std::string Kids(int first, int count) {
  std::string text = "%PDF-1.4\n1 0 obj<</Pages 2 0 R>>\n2 0 obj<</Type/Pages/Kids[";
  for (int i = first; i < first + count; ++i) text += std::to_string(i) + " 0 R ";
  return text + "]>>\n";
}

std::string SharedWhiteSpace() {
  const std::string text = Kids(3, 20000);
  const size_t second = text.find("2 0 obj"), start = text.size();
  return WithTable(text + std::string(1000000, ' ') + "3 0 obj<</Type/Page>>", 20002, [=](int i) {
    return i == 1 ? 9 : i == 2 ? second : start + static_cast<size_t>(i);
  });
}

// A cross-reference stream whose rows say that every object is the one member of an object stream that inflates to
// much.
std::string LargeMembers() {
  std::string out = Kids(10, 20000);
  const size_t second = out.find("2 0 obj"), third = out.size();
  const std::string packed = test::Deflate("10 0 11 0 " + Repeated(' ', 100'000'000) + "<</Type/Page>>");
  out += "3 0 obj<</Type/ObjStm/N 2/First 10/Filter/Fl/Length " + std::to_string(packed.size()) + ">>stream\n" +
         packed + "\n";
  std::string rows;
  for (int i = 0; i < 20010; ++i) {
    const size_t plain = i == 1 ? 9 : i == 2 ? second : i == 3 ? third : 0;
    rows += i < 10 ? BigEndian(1, 1) + BigEndian(plain, 4) + BigEndian(0, 1)
                   : BigEndian(2, 1) + BigEndian(3, 4) + BigEndian(static_cast<unsigned>(i % 2), 1);
  }
  const size_t start = out.size();
  return out + "4 0 obj<</Type/XRef/Root 1 0 R/W[1 4 1]/Size 20010/Length " + std::to_string(rows.size()) +
         ">>stream\n" + rows + "\nstartxref " + std::to_string(start) + " %%EOF";
}

// 100 million rows of one byte.
std::string ManyEntries() {
  const std::string packed = test::Deflate(Repeated('\1', 100'000'000));
  return "%PDF-1.5\n4 0 obj<</Type/XRef/W[1 0 0]/Size 2000000000/Filter/Fl/Length " + std::to_string(packed.size()) +
         ">>stream\n" + packed + "\nstartxref 9 %%EOF";
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
  const struct {
    const char *what;
    std::string bytes;
    uint32_t result;
  } cases[] = {
      {"shared white space", SharedWhiteSpace(), 0},
      {"large members", LargeMembers(), 0},
      {"many entries", ManyEntries(), FilterNoRoot},
      {"long chain", LongChain(), FilterNoRoot},
  };
  for (const auto &c : cases) {
    const auto start = std::chrono::steady_clock::now();
    test::OpenedPdf pdf(c.bytes);
    EXPECT_EQ(pdf.result, c.result) << c.what;
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(60)) << c.what;
  }
}

}  // namespace
}  // namespace kapdf
