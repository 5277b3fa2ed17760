// Colours, widths, dashes and other state.
#include <gtest/gtest.h>

#include "base/limits.h"
#include "drawing.h"

namespace kapdf::test {
namespace {

const std::string kLine = " 0 0 m 9 0 l S", kFill = " 0 0 m 9 0 l 9 9 l 0 0 l f";

// The colour of a record drawn by the content.
std::string ColorOf(const std::string &content) {
  const std::string drawn = Drawn(content);
  const size_t start = drawn.find(' ') + 1;
  return drawn.substr(start, drawn.find(' ', start) - start);
}

TEST(State, Colors) {
  const struct {
    const char *content, *color;
  } cases[] = {
      {"", "256"},
      {"0 0 0 RG", "7"},
      {"1 1 1 RG", "258"},
      {"1 0 0.5 RG", "#FF007F"},
      {".999 2 -1 RG", "#FEFF00"},
      {"0.5 G", "#7F7F7F"},
      {"0 0 0 0 K", "258"},
      {"0 0 0 1 K", "7"},
      {"1 0 0 0 K", "#00FFFF"},
      {"0.2 0.4 0.6 0.5 K", "#654C32"},  // 255 - (51 * 127.5 + 127) / 255 - 127.5 = 101.5, 76.0 and 50.5 less rounding
      {"1 0 0 RG 0 1 RG", "#FF0000"},    // too few
      {"1 0 0 SC", "#FF0000"},           // RGB unless told otherwise
      {"/DeviceGray CS 0.5 1 1 SCN", "#7F7F7F"},
      {"/DeviceCMYK CS 1 0 0 0 SCN", "#00FFFF"},
      {"0.2 G 1 0 0 SC", "258"},  // gray stays in force
      {"0 0 0 1 K 1 0 0 0 SC", "#00FFFF"},
      {"/DeviceGray CS 1 0 RG 0.5 SC", "#7F7F7F"},  // what is ignored selects nothing
      {"/DeviceGray CS /Other CS 0.5 SC", "#7F7F7F"},
      {"/DeviceGray cs 1 0 0 SC", "#FF0000"},  // the fill's
      {"1 0 0 RG q 0 1 0 RG Q", "#FF0000"},
      {"1 0 0 RG Q Q", "#FF0000"},
      {"BT 1 1 1 RG ET", "258"},  // only the fill's white differs in text
      {"BT 1 0 0 RG 0 0 1 m ET", "#FF0000"},
  };
  for (const auto &c : cases) EXPECT_EQ(ColorOf(c.content + kLine), c.color) << c.content;
}

TEST(State, FillColors) {
  const struct {
    const char *content, *color;
  } cases[] = {
      {"1 1 1 rg", "258"},
      {"0.5 g", "#7F7F7F"},
      {"0 0 0 0 k", "258"},
      {"1 0 0 0 k", "#00FFFF"},
      {"/DeviceCMYK cs 0 1 0 0 scn", "#FF00FF"},
      {"/DeviceGray CS 1 0 0 sc", "#FF0000"},
      {"BT 1 1 1 rg ET", "255"},
      {"BT 1 g ET", "255"},
      {"BT 0 0 0 0 k ET", "255"},
      {"BT /DeviceGray cs 1 sc ET", "255"},
      {"BT /DeviceCMYK cs 0 0 0 0 sc ET", "258"},
      {"BT /DeviceCMYK cs 0.2 0.4 0.6 0.5 sc ET", "#664D33"},  // whole numbers throughout
  };
  for (const auto &c : cases) EXPECT_EQ(ColorOf(c.content + kFill), c.color) << c.content;
}

TEST(State, Widths) {
  const struct {
    const char *content, *drawn;
  } cases[] = {
      {"3 w", "line 256 w3 0,0 9,0"},
      {"0 w", "line 256 w0 0,0 9,0"},
      {"3 w w", "line 256 w3 0,0 9,0"},
      {"2 w 2 0 0 3 0 0 cm", "line 256 w6 0,0 18,0"},
      {"2 w 3 0 0 2 0 0 cm", "line 256 w6 0,0 27,0"},
      {"2 w 0 2 -2 0 5 0 cm", "line 256 w4 5,0 5,18"},
      {"2 w 1 0 0 -3 0 0 cm", "line 256 w2 0,0 9,0"},  // mirrored scales are below zero
      {"2 w 0 0 0 0 1 1 cm", "line 256 w0 1,1 1,1"},
      {"2 0 0 2 0 cm", "line 256 w1 0,0 9,0"},  // five numbers are no matrix
      {"2 0 0 2 0 0 cm 1 0 0 1 5 5 cm", "line 256 w2 10,10 28,10"},
  };
  for (const auto &c : cases) EXPECT_EQ(Drawn(c.content + kLine), c.drawn) << c.content;
  EXPECT_EQ(Drawn("1e308 w 1e10 0 0 1 0 0 cm 0 0 m 0 9 l S"), "line 256 w0 0,0 0,9");  // too wide for a number
}

TEST(State, DashesMakeLineTypes) {
  const struct {
    std::string content, drawn;
  } cases[] = {
      {"[3 2] 0 d", "linetype D1 3 -2 of 2\nline 256 w1 0,0 9,0 [D1]"},
      {"[3 2] 5 d [3 2] 0 d", "linetype D1 3 -2 of 2\nline 256 w1 0,0 9,0 [D1]"},  // the phase does not matter
      {"[3  2] 0 d [3 2] 0 d", "linetype D1 3 -2 of 2\nlinetype D2 3 -2 of 2\nline 256 w1 0,0 9,0 [D2]"},
      {"[3] 0 d [1] 0 d [3] 0 d", "linetype D1 3 of 1\nlinetype D2 1 of 1\nline 256 w1 0,0 9,0 [D1]"},
      {"[3] 0 d [] 0 d", "linetype D1 3 of 1\nline 256 w1 0,0 9,0"},
      {"[3] 0 d [  ] 0 d", "linetype D1 3 of 1\nline 256 w1 0,0 9,0"},
      {"[3] 0 d q [] 0 d Q", "linetype D1 3 of 1\nline 256 w1 0,0 9,0"},  // no part of the saved state
      {"[\n3\n2\n]\n0\nd", "linetype D1 3 -2 of 2\nline 256 w1 0,0 9,0 [D1]"},
      {"[a 2.5pt] 0 d", "linetype D1 0 -2.5 of 2\nline 256 w1 0,0 9,0 [D1]"},
      {"3 2 0 d", "line 256 w1 0,0 9,0"},
      {"[1 2 1 2 1 2 1 2 1 2 1 2 1 2 1 2 9 9] 0 d",
       "linetype D1 1 -2 1 -2 1 -2 1 -2 1 -2 1 -2 1 -2 1 -2 of 18\nline 256 w1 0,0 9,0 [D1]"},
  };
  for (const auto &c : cases) EXPECT_EQ(Drawn(c.content + kLine), c.drawn) << c.content;
}

// Parameters without a value count as 0; only those behind a reference in a direct table are known.
TEST(State, GraphicsStateParameters) {
  const std::vector<std::string> objects = {"<</ca 0.5 /LW 3>>", "<</ca 0.25>>",   "<</LW 4>>",
                                            "<</CA 0.5>>",       "<</A 100 0 R>>", "[1]"};
  const std::string direct =
      "/Resources <</ExtGState <</A 100 0 R /B 101 0 R /C 102 0 R /D 103 0 R /E <</ca 0.5>> /F 105 0 R /G 99 0 R>>>>";
  const std::string indirect = "/Resources <</ExtGState 104 0 R>>";
  const struct {
    const char *content;
    std::string entries, drawn;
  } cases[] = {
      {"/A gs", direct, "w3 o50"},       {"/B gs", direct, "w0 o25"},
      {"/C gs", direct, "w4 o0"},        {"/D gs", direct, "w2 o100"},
      {"/E gs", direct, "w2 o100"},      {"/F gs", direct, "w2 o100"},
      {"/G gs", direct, "w2 o100"},      {"/AA gs", direct, "w2 o100"},
      {"/a gs", direct, "w2 o100"},      {"gs", direct, "w2 o100"},
      {"1 w \t/A gs", direct, "w3 o50"}, {"BT /A gs ET", direct, "w2 o50"},
      {"q /A gs Q", direct, "w2 o100"},  {"/A gs", indirect, "w2 o100"},
      {"/A gs", "", "w2 o100"},          {"/A gs", "/Resources 106 0 R", "w3 o50"},
  };
  for (const auto &c : cases) {
    auto more = objects;
    more.push_back("<</ExtGState <</A 100 0 R>>>>");
    const std::string bytes =
        PageBytes({std::string("2 w ") + c.content + kFill}, std::string(kLetter) + c.entries, more);
    EXPECT_EQ(Joined(ReadPage(bytes)), "fill 256 " + c.drawn + " 0,0 9,0 9,9 0,0") << c.content << ' ' << c.entries;
  }
}

// Copies are kept up to a bound; what lies deeper is counted, so that each Q finds its q.
TEST(State, DeepNesting) {
  const auto depth = static_cast<int>(limits::kSavedStates);
  const auto times = [](std::string_view text, int count) {
    std::string all;
    for (int i = 0; i < count; ++i) all += text;
    return all;
  };
  EXPECT_EQ(Drawn("3 w " + times("q\n", depth - 1) + "5 w q 7 w " + times("Q\n", 1) + kLine), "line 256 w5 0,0 9,0");
  EXPECT_EQ(Drawn("3 w " + times("q\n", depth) + "5 w q 7 w Q" + kLine), "line 256 w7 0,0 9,0");
  EXPECT_EQ(Drawn("3 w " + times("q\n", depth + 9) + "7 w " + times("Q\n", depth + 8) + kLine), "line 256 w3 0,0 9,0");
  EXPECT_EQ(Drawn("3 w q 5 w " + times("q\n", depth + 9) + "7 w " + times("Q\n", depth + 9) + kLine),
            "line 256 w5 0,0 9,0");
}

}  // namespace
}  // namespace kapdf::test
