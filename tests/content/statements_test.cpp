// How content is cut into statements.
#include <gtest/gtest.h>

#include <ctime>

#include "drawing.h"

namespace kapdf::test {
namespace {

std::string Repeated(std::string_view text, size_t bytes) {
  std::string all;
  while (all.size() < bytes) all += text;
  return all;
}

struct Case {
  std::string content, drawn;
};

TEST(Statements, EndWhereTheyShould) {
  const std::string line = "line 256 w1 0,0 10,10";
  const Case cases[] = {
      {"0 0 m 10 10 l S", line},
      {"0 0 m\r10 10 l\r\nS\n", line},
      {"0 0 m 10\n10\n\r\nl S", line},  // a line end inside a statement
      {"0 0\tm 10 10 l S", ""},         // a TAB glues words: no point to start from
      {"0 0 m\t10 10 l S", ""},         //
      {"0 0 m \t10 10 l S", line},      // at the start of a statement it does no harm
      {"q 2 0 0 2 0 0 cm 0 0 m 5 5 l Q 12 12 l S", "poly 256 w1 0,0 10,10 12,12"},
      {"0 0 m 10 10 l (q Q) /q S", line},  // cut inside the string; what is left of it draws nothing
      {"0 0 m % 10 10 l S", line},         // a single % does not hide what follows
      {"0 0 m %% 10 10 l\n10 10 l S", line},
      {"0 0 m %%\n%% 5 5 l\n\n10 10 l S", line},
      {"0 0 m 10 10 l% S\nS", ""},                         // glued to the operator
      {std::string("0 0 m\0 1\0000 10 l\0 S", 19), line},  // zeros vanish
      {"1 2 3 0 0 m 10 10 l S", "line 256 w1 1,2 10,10"},  // numbers are taken from the left
      {"0 0 m 10 l 10 10 l S", line},                      // too few: ignored
      {"0 0 m 5 x l 10 10 l S", line},
      {"0 0 m +10. 1e1 l S", line},
      {"0 0 m 10 10 l/x S", line},  // words end at a slash and at brackets
      {"0 0 m 10 10 l[1 (]) 2]S", line},
      {"0 0 m 10 10 l<41>S", line},
      {"0 0 m <</A (>>) l>> 10 10 l S", ""},    // the text of the array is no number
      {"/m 0 0 m /l 10 10 l S", ""},            // nor is a name
      {"0 0 m 10 10 l (a(b)S) S", line},        // the first ) ends the string
      {"0 0 m 10 10 l [(a S", ""},              // an open array takes all that follows
      {"0 0 m 10 10 l ABCDEFGH ABCD S", line},  // no operators
  };
  for (const Case &c : cases) {
    EXPECT_EQ(Drawn(c.content), c.drawn) << c.content;
  }
}

TEST(Statements, GoOnInTheNextStream) {
  const struct {
    std::vector<std::string> streams;
    std::string drawn;
  } cases[] = {
      {{"0 0 m 1", "0 10 l S"}, "line 256 w1 0,0 1,0"},  // joined by a blank: 1 0 10 l
      {{"0 0 m 10", "10 l S"}, "line 256 w1 0,0 10,10"},
      {{"2 0 0", "2 1 1 cm", "0 0 m 4 0 l S"}, "line 256 w2 1,1 9,1"},
      {{"2 0 0", " ", "\n\t", "\r2 1 1", " cm 0 0 m 4 0 l S"}, "line 256 w2 1,1 9,1"},
      {{"0 0 m 10 10 l S", "0 0 m"}, "line 256 w1 0,0 10,10"},
      {{"0 0 m 10 10 l", "q", "Q", "S"}, "line 256 w1 0,0 10,10"},
      {{"0 0 m 10 10 l", "% S"}, "line 256 w1 0,0 10,10"},
      {{"0 0 m 10 10 l", "%%S\n5 5 l S"}, "poly 256 w1 0,0 10,10 5,5"},
      {{"0 0 m 10 10 l S 0 0 m 5 5 l 1"}, "line 256 w1 0,0 10,10"},  // nothing ends it
  };
  for (const auto &c : cases) EXPECT_EQ(Joined(ReadPage(PageBytes(c.streams))), c.drawn) << c.streams[0];
  std::vector<std::string> many(70, "0");
  many.push_back("0 m 10 10 l S");
  EXPECT_EQ(Joined(ReadPage(PageBytes(many))), "line 256 w1 0,0 10,10");
}

// A line that is too long for the buffer of 8191 characters is cut behind the last operator in it, or in what looks
// like one.
TEST(Statements, LongLinesAreCutAtAnOperator) {
  for (const bool plain : {true, false}) {
    InterpreterSettings settings;
    settings.plainStatements = plain;
    // A line of its own ahead: the first one of a stream goes through the buffer anyway.
    const auto draw = [&](const std::string &content) { return Drawn("0 J\n" + content, kLetter, settings); };
    std::string zigzag = "0 0 m", wanted = "poly 256 w1 0,0";
    for (int i = 1; i < 4000; ++i) {
      const std::string x = std::to_string(i % 600), y = std::to_string(i % 7);
      zigzag += " " + x + " " + y + " l";
      wanted += " " + x + "," + y;
    }
    EXPECT_EQ(draw(zigzag + " S"), wanted);
    // The cut hides in "cm": "c" is an operator too, and "m" starts a path with the numbers behind it.
    const std::string matrix = "2 0 0 2 0 0 cm", rest = " 0 0 m 10 10 l S";
    const auto padded = [&](size_t size) { return "1 w" + std::string(size - 3 - matrix.size(), ' ') + matrix + rest; };
    EXPECT_EQ(draw(padded(8191)), "line 256 w2 0,0 20,20");
    EXPECT_EQ(draw(padded(8192)), "line 256 w1 0,0 10,10");
    EXPECT_EQ(draw(padded(8193)), "line 256 w2 0,0 20,20");
    // Numbers alone fill the buffer and are dropped with it.
    EXPECT_EQ(draw("0 0 m " + std::string(8191, '1') + " 10 10 l S"), "line 256 w1 0,0 10,10");
  }
}

double SecondsFor(const std::string &content) {
  const std::clock_t start = std::clock();
  Drawn(content);
  return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

// Each of these took time by the square of its length once. What a machine, a sanitizer and a quarter of a million
// ordinary statements take is measured here.
TEST(Statements, HostileContentTakesTimeByItsLength) {
  const char *const pieces[] = {"1\n", "a\n", "1",     "x",   "1.",       "(a\n",   "(]\n", ">\n",
                                "1 ",  "q ",  "1%%\n", "re/", "BI /W 4 ", "(x) f ", "[1 "};
  const double ordinary = SecondsFor(Repeated("1 w\n", 1 << 20));
  for (const char *piece : pieces) {
    for (const char *before : {"", "BT ", "[", "<<", "BI\n"}) {
      const double took = SecondsFor(before + Repeated(piece, 1 << 19));
      EXPECT_LT(took, 20 * ordinary + 1) << before << piece;
    }
  }
}

}  // namespace
}  // namespace kapdf::test
