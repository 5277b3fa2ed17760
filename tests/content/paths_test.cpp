// Paths and what painting makes of them.
#include <gtest/gtest.h>

#include <algorithm>

#include "base/limits.h"
#include "drawing.h"

namespace kapdf::test {
namespace {

const std::string kRed = "1 0 0 rg 0 0 1 RG ";

TEST(Paths, Painting) {
  const std::string square = "0,0 0,9 9,9 9,0 0,0", turned = "1,1 5,1 5,5 1,5 1,1";
  const std::string fill = "fill #FF0000 w1 o100 ", stroke = " #0000FF w1 ";
  const struct {
    std::string content, drawn;
  } cases[] = {
      {"0 0 m 10 0 l S", "line #0000FF w1 0,0 10,0"},
      {"0 0 m 10 0 l 10 10 l S", "poly #0000FF w1 0,0 10,0 10,10"},
      {"0 0 m 10 0 l 10 10 l s", "poly #0000FF w1 0,0 10,0 10,10 0,0"},
      {"0 0 m 10 0 l h h S", "poly #0000FF w1 0,0 10,0 0,0 0,0"},  // closed as often as asked
      {"0 0 m h 10 0 l S", "line #0000FF w1 0,0 10,0"},            // one point cannot be closed
      {"10 0 l 0 9 l S", "line #0000FF w1 10,0 0,9"},              // lines need no start
      {"0 0 m S 0 0 m f", ""},
      {"0 0 m 1 1 m 9 0 l S", "line #0000FF w1 1,1 9,0"},
      // Strokes leave last first.
      {"0 0 m 1 0 l 2 0 m 3 0 l 4 0 m 5 0 l S",
       "line #0000FF w1 4,0 5,0\nline #0000FF w1 2,0 3,0\nline #0000FF w1 0,0 1,0"},
      {"0 0 9 9 re f", fill + square},
      {"0 0 9 9 re S", "poly" + stroke + square},
      {"0 0 9 re f 0 0 9 9 re F", fill + square},
      {"0 0 m 9 0 l 9 9 l f", fill + "0,0 9,0 9,9 0,0"},
      {"0 0 m 9 0 l f", ""},
      {"0 0 9 9 re n 0 0 9 9 re W n 1 1 m 2 2 l S", "line #0000FF w1 1,1 2,2"},
      // A subpath before the last is not closed by f, and dropped below three points; f* closes it.
      {"0 0 m 9 0 l 9 9 l 0 0 m 9 9 l 0 9 l f", fill + "0,0 9,0 9,9\n" + fill + "0,0 9,9 0,9 0,0"},
      {"0 0 m 9 0 l 0 0 9 9 re f", fill + square},
      {"0 0 m 9 0 l 0 0 9 9 re f*", fill + "0,0 9,0 0,0 | " + square},
      // Contours of one direction are polygons of their own, of both directions one polygon.
      {"0 0 9 9 re 1 1 4 4 re f", fill + square + "\n" + fill + "1,1 1,5 5,5 5,1 1,1"},
      {"0 0 9 9 re 1 1 m 5 1 l 5 5 l 1 5 l h f", fill + square + " | " + turned},
      {"0 0 9 9 re 1 1 4 4 re f*", fill + square + " | 1,1 1,5 5,5 5,1 1,1"},
      // Below one square millimetre a contour says nothing about the next.
      {"0 0 1 1 re 1 1 m 5 1 l 5 5 l 1 5 l h f", fill + "0,0 0,1 1,1 1,0 0,0\n" + fill + turned},
      // The B family fills its contours as one and strokes each, last first and closed.
      {"0 0 9 9 re 1 1 4 4 re B",
       fill + square + " | 1,1 1,5 5,5 5,1 1,1\npoly" + stroke + "1,1 1,5 5,5 5,1 1,1\npoly" + stroke + square},
      {"0 0 m 9 0 l 9 9 l b", fill + "0,0 9,0 9,9 0,0\npoly" + stroke + "0,0 9,0 9,9 0,0"},
      {"0 0 m 9 0 l 0 0 9 9 re B*",
       fill + "0,0 9,0 0,0 | " + square + "\npoly" + stroke + square + "\npoly" + stroke + "0,0 9,0 0,0"},
      // Two equal points are closed as they are.
      {"5 5 m 5 5 l 0 0 9 9 re B*",
       fill + "5,5 5,5 | " + square + "\npoly" + stroke + square + "\nline #0000FF w1 5,5 5,5"},
      {"0 0 1 RG 0 0 1 rg 0 0 9 9 re b*", "fill #0000FF w1 o100 0,0 0,9 9,9 9,0 0,0 0,0"},  // one colour: no stroke
      // What a paint of nothing has set holds for the next one.
      {"B 0 0 9 9 re f", fill + square + "\npoly" + stroke + square},
      {"B 1 1 m 2 2 l S 0 0 9 9 re f", "line #0000FF w1 1,1 2,2\n" + fill + square},
      // That contours are closed ends with their polygon.
      {"0 0 9 9 re f* 0 0 m 9 0 l 9 9 l S", fill + square + "\npoly #0000FF w1 0,0 9,0 9,9"},
  };
  for (const auto &c : cases) EXPECT_EQ(Drawn(kRed + c.content), c.drawn) << c.content;
}

TEST(Paths, Curves) {
  const struct {
    const char *content;
    int points;
    std::string last;
  } cases[] = {
      {"0 0 m 1 0 1 1 2 1 c S", 11, " 2,1"},
      {"0 0 m 1 0 1 1 c S", 0, ""},
      {"1 0 1 1 2 1 c S", 0, ""},  // nothing to start from
      {"1 0 2 1 v S", 0, ""},
      {"0 0 m 1 0 2 1 v 3 3 l S", 12, " 3,3"},
      {"0 0 m 1 0 2 1 y S", 11, " 2,1"},
      {"0 0 m 100 0 100 0 200 0 c S", 353, " 200,0"},  // 70.56 mm in steps of 0.2
  };
  for (const auto &c : cases) {
    const std::string drawn = Drawn(c.content);
    EXPECT_EQ(std::count(drawn.begin(), drawn.end(), ','), c.points) << c.content;
    EXPECT_EQ(drawn.substr(std::min(drawn.size(), drawn.rfind(' '))), c.last) << c.content;
  }
  // The current point doubled, and the end doubled, are the full form.
  EXPECT_EQ(Drawn("5 5 m 20 7 30 9 v S"), Drawn("5 5 m 5 5 20 7 30 9 c S"));
  EXPECT_EQ(Drawn("5 5 m 20 7 30 9 y S"), Drawn("5 5 m 20 7 30 9 30 9 c S"));
}

// Smooth strokes of many points are the shapes that they look like.
TEST(Paths, Shapes) {
  const std::string quarters =
      "150 100 m 150 127.614 127.614 150 100 150 c 72.386 150 50 127.614 50 100 c "
      "50 72.386 72.386 50 100 50 c 127.614 50 150 72.386 150 100 c ";
  const std::string half = "150 100 m 150 127.614 127.614 150 100 150 c 72.386 150 50 127.614 50 100 c ";
  const std::string back = "50 100 m 50 127.614 72.386 150 100 150 c 127.614 150 150 127.614 150 100 c ";
  const struct {
    std::string content, drawn;
  } cases[] = {
      {"1 0 0 RG 2 w " + quarters + "S", "circle #FF0000 w2 100,100 50"},
      {"q 2 0 0 2 0 0 cm " + quarters + "S Q", "circle 256 w2 200,200 100"},
      {half + "S", "arc 256 w1 100,100 50 @180 @0"},
      {back + "S", "arc 256 w1 100,100 50 @180 @0"},
      {"q 0.866 0.5 -0.25 0.433 200 200 cm " + quarters + "s Q", "ellipse 256 w1 261.6,293.3 50 25 @30 @0 @0"},
      {"q 1 0 0 0.5 0 0 cm " + back + "S Q", "ellipse 256 w1 100,50 50 25 @0 @0 @180"},
      // Closed with the polygon that they were the contours of; the last one drawn leaves first.
      {"1 0 0 rg 0 0 9 9 re " + half + "h " + quarters + "B", "circle 256 w1 100,100 50"},
      {"0 0 m 4 0 l " + quarters + "S", "circle 256 w1 100,100 50\nline 256 w1 0,0 4,0"},
  };
  InterpreterSettings off;
  off.convertPoly = false;
  for (const auto &c : cases) {
    std::string drawn = Drawn(c.content);
    if (drawn.compare(0, 4, "fill") == 0) drawn.erase(0, drawn.find('\n') + 1);
    EXPECT_EQ(drawn.substr(0, c.drawn.size()), c.drawn) << c.content;
    EXPECT_NE(Drawn(c.content, kLetter, off).find("poly"), std::string::npos) << c.content;
  }
}

// Points beyond the page are left out one by one, curves as a whole.
TEST(Paths, ThePageIsTheClipBox) {
  const struct {
    std::string content, drawn, unclipped;
  } cases[] = {
      {"-1 0 m 5 5 l 9 9 l S", "line 256 w1 5,5 9,9", "poly 256 w1 -1,0 5,5 9,9"},
      {"0 0 m 612 792 l S", "line 256 w1 0,0 612,792", "line 256 w1 0,0 612,792"},
      {"600 0 20 20 re f", "fill 256 w1 o100 600,0 600,20 600,0", "fill 256 w1 o100 600,0 600,20 620,20 620,0 600,0"},
      {"600 780 20 20 re f", "", "fill 256 w1 o100 600,780 600,800 620,800 620,780 600,780"},
      {"-9 0 m 0 0 l 9 0 l 9 9 l 9 99999 l f", "fill 256 w1 o100 0,0 9,0 9,9 0,0",
       "fill 256 w1 o100 -9,0 0,0 9,0 9,9 9,99999 -9,0"},
      {"0 0 m 1 -1 2 2 3 3 c 4 4 l S", "line 256 w1 0,0 4,4", "."},
      {"0 0 m 1 1 2 -2 3 3 c 4 4 l S", "line 256 w1 0,0 4,4", "."},
      {"0 0 m 1 1 2 -2 v 4 4 l S", "line 256 w1 0,0 4,4", "."},
      {"0 0 m 1 -1 2 2 y 4 4 l S", "line 256 w1 0,0 4,4", "."},
      {"q 1e300 0 0 1e300 0 0 cm 1e300 0 m 1e300 1e300 l Q 1 1 m 2 2 l S", "line 256 w1 1,1 2,2",
       "line 256 w1 1,1 2,2"},
  };
  InterpreterSettings open;
  open.clipping = false;
  for (const auto &c : cases) {
    EXPECT_EQ(Drawn(c.content), c.drawn) << c.content;
    if (c.unclipped == ".") continue;
    EXPECT_EQ(Drawn(c.content, kLetter, open), c.unclipped) << c.content;
  }
  EXPECT_EQ(Drawn("600 780 20 20 re S"), "line 256 w1 600,780 600,780");
}

// Memory for one path has an end, whatever asks for more.
TEST(Paths, PointsAreBounded) {
  std::string content = "0 0 m ", piece = "h h h h h h h h ";
  while (piece.size() < 1 << 20) piece += piece;
  content += "1 0 l ";
  for (int i = 0; i < 34; ++i) content += piece;  // 17.8 million
  RecordDigest drawn;
  ReadPage(PageBytes({content + "0 0 9 9 re 1 1 2 2 3 3 c S"}), {}, &drawn);
  EXPECT_GT(drawn.bytes, limits::kPathPoints * 16);
  EXPECT_LT(drawn.bytes, limits::kPathPoints * 16 + 1000);
}

}  // namespace
}  // namespace kapdf::test
