// The two ways of reading a statement give the same drawing, whatever the content is.
#include <gtest/gtest.h>

#include <random>

#include "drawing.h"

namespace kapdf::test {
namespace {

// Content that a page could hold, and content that none should.
class RandomContent {
 public:
  explicit RandomContent(unsigned seed) : random_(seed), oddities_(OneIn(2) ? 8 : OneIn(2) ? 200 : 4000) {}

  std::string Make() {
    text_ = "0.02 0 0 0.02 0 0 cm\n10 w ";
    const bool longLines = OneIn(3);  // around the size of the statement buffer
    const int lines = Below(60);
    const bool filled = longLines && !OneIn(8);
    for (int i = 0; i < lines; ++i) {
      const size_t wanted = longLines ? static_cast<size_t>(OneIn(2) ? kBuffer + Below(80) - 40 : Below(20'000)) : 0;
      const size_t start = text_.size();
      do {
        AddPiece();
        if (filled) Fill(text_.size() - start, wanted);
      } while (text_.size() - start < wanted || OneIn(2));
      Add({"\n", "\r", "\r\n", "\n\n", " \n", "\t\r", " ", ""});
    }
    return std::move(text_);
  }

  // Cuts a text anywhere, now and then with empty or white pieces between.
  std::vector<std::string> Cut(const std::string &text) {
    std::vector<std::string> pieces;
    size_t at = 0;
    while (at < text.size()) {
      const size_t length = static_cast<size_t>(1 + Below(OneIn(2) ? 400'000 : OneIn(2) ? 12'000 : 300));
      pieces.push_back(text.substr(at, length));
      at += length;
      if (OneIn(10)) pieces.push_back(Pick({" ", "\n", "\t \n"}));
    }
    if (pieces.empty()) pieces.push_back(" ");
    return pieces;
  }

  int Below(int limit) { return static_cast<int>(random_() % static_cast<unsigned>(limit)); }
  bool OneIn(int count) { return Below(count) == 0; }

 private:
  static constexpr int kBuffer = 8191;

  const char *Pick(std::initializer_list<const char *> from) {
    return from.begin()[Below(static_cast<int>(from.size()))];
  }
  void Add(std::initializer_list<const char *> from) { text_ += Pick(from); }
  void AddNumber() {
    if (OneIn(oddities_ * 3))
      return Add({"+5", "-.5", "6.", ".", "-", "1e2", "1e999", "0x10", "1-2", "--3", "1.2.3", "00012",
                  "33333333333333333333333333333333333"});
    text_ += std::to_string(Below(600));
    if (OneIn(3)) (text_ += '.') += std::to_string(Below(1000));
  }
  void AddBlank() { text_ += OneIn(oddities_ * 4) ? Pick({"\t", "  ", " \t", "\t ", " \0 ", ""}) : " "; }
  // Blanks in a long line where no reader cuts it: from some way behind a multiple of the buffer up to the next one.
  void Fill(size_t length, size_t wanted) {
    const size_t within = length % kBuffer, next = length - within + kBuffer - static_cast<size_t>(200 + Below(300));
    if (within > 300 && next > length && next < wanted) text_.append(next - length, ' ');
  }
  void AddPiece() {
    if (!OneIn(oddities_)) {
      for (int i = OneIn(4) ? Below(9) : 2; i > 0; --i) AddNumber(), AddBlank();
      Add({"m", "l", "l",  "l",  "c", "v", "y", "re", "h",  "S",  "s",   "f", "f*", "B",  "b*", "n",
           "W", "w", "rg", "RG", "g", "G", "k", "K",  "cm", "sc", "SCN", "i", "J",  "W*", "T*"});
      text_ += OneIn(oddities_) ? Pick({"", "(", "/", "[", "<", "\t", "*", "q"}) : " ";
      return;
    }
    // clang-format off
    Add({"/GS gs ", "\t/GS gs ", "[3 2] 0 d ", "\t[1] 0 d ", "[] 0 d ", "/DeviceGray cs ", "%", "%%",
         "%% q 1 w ", "(a q b) ", "(l\\)", "[1 (]) l] ", "<<", "<< /A 1 >> ", "<0l>", "/Im l ", "/F1 ",
         "/l ", "q", "Q", "Qq ", "q ", "Q 1 w ", "1 0 0 1 5 5 cm q ", "10 10 l\t", "1 2 3 4 5 6 7 8 9 ",
         "ET ", "BT ET ", "BI /W 1 ID x\nEI ", "BI ", "EI ", "ID ", "BX ", "d0 ", "xl ", ") ", "] ", "> ",
         "re", "c", "\x80 ", "\xC3l "});
    // clang-format on
  }

  std::string text_;
  std::mt19937 random_;
  int oddities_;  // one in so many
};

TEST(StatementReaders, AgreeOnRandomContent) {
  const std::string entries = std::string(kLetter) + " /Resources <</ExtGState <</GS 100 0 R>>>>";
  size_t bytes = 0;
  for (unsigned seed = 0; seed < 1500; ++seed) {
    RandomContent content(seed);
    const auto pieces = content.Cut(content.Make());
    const std::string page = PageBytes(pieces, entries, {"<</ca 0.5 /LW 3>>"});
    InterpreterSettings settings;
    settings.clipping = !content.OneIn(8);
    RecordDigest plain, buffered;
    ReadPage(page, settings, &plain);
    settings.plainStatements = false;
    ReadPage(page, settings, &buffered);
    bytes += plain.bytes;
    ASSERT_TRUE(plain == buffered) << "seed " << seed;
  }
  EXPECT_GT(bytes, 10'000'000u);  // the content draws something
}

}  // namespace
}  // namespace kapdf::test
