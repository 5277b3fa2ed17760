// Cuts content into statements.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>

#include "content/content_bytes.h"
#include "content/scanner.h"
#include "content/statement.h"
#include "content/statement_lexer.h"

namespace kapdf {

// How a statement is read.
enum class ScanMode { kGraphics = 0, kText = 1, kInlineImage = 2 };

// There is no operand stack. A statement is usually one line: its text ends with the first operator in it, and what
// follows on the line is the next statement.
class StatementReader {
 public:
  static constexpr size_t kStatementBytes = 8192;  // with the zero
  using Buffer = std::array<char, kStatementBytes>;

  explicit StatementReader(ContentBytes &bytes) : bytes_(bytes), lexer_(bytes), buffer_(std::make_shared<Buffer>()) {}
  // Shares the place for statements with another one of the same page.
  StatementReader(ContentBytes &bytes, const StatementReader &page)
      : bytes_(bytes), lexer_(bytes), buffer_(page.buffer_) {}

  // The next statement, valid until the next call; false at the end of all content. `plain`: a run of plain numbers
  // before an operator that takes nothing else may be taken from where it stands; the result is the same.
  bool Next(ScanMode mode, bool plain, Statement &statement);

  // The same in extended reading.
  bool NextLexed(bool plain, Statement &statement);
  StatementLexer &lexer() { return lexer_; }

  // The next text without looking for its operator, zero-terminated: what an operator left of its text, or the next
  // line. Null at the end of all content.
  char *NextText(ScanMode mode);
  // That text is a line of its own, and not what an operator left of one.
  bool AtNewText() const { return remainder_ == nullptr; }
  // What is left of the text read last comes next.
  void GoOnWith(char *remainder) { remainder_ = remainder; }

  // Where a character of the text read last stands in the content; for one of a stream before this one, its start.
  size_t PositionOf(const char *at) const;
  // Nothing is kept of what was read before: the content's position was moved.
  void Restart();
  // Another reader uses the place for statements until this one goes on: what is left of the text is kept elsewhere
  // and put back where it was.
  void Suspend();
  void Resume();

 private:
  static constexpr size_t kNoLine = SIZE_MAX;
  static constexpr size_t kMost = kStatementBytes - 1;

  // The next statement when it is plain and ends on this line; false, with nothing consumed, for any other one.
  bool ReadPlain(Statement &statement);
  char *ReadText(ScanMode mode);
  // Joins a statement that had no operator with the line after it: line ends at the position become blanks and the
  // position goes back over the statement, which is the end of the text read last. `mode`: in which it will be read
  // again. Nothing changes without a line end.
  void RejoinLine(const char *statement, size_t length, ScanMode mode);
  bool Fill();
  // Reads up to the end of a statement or of the stream; true when the statement is whole.
  bool ScanStatement(ScanMode mode, size_t first, size_t most, size_t &count);
  bool CutAtLastOperator(size_t most, size_t &count);
  char *EndStatement(size_t count, bool withoutFirst);
  void SkipWhiteSpace();

  ContentBytes &bytes_;
  StatementLexer lexer_;
  std::shared_ptr<Buffer> buffer_;
  PlainStatement plain_;
  OperatorSearch search_;
  char *remainder_ = nullptr;  // of the text in the buffer
  std::string rest_;           // the same while another reader uses the buffer,
  size_t restAt_ = 0;          // and where it stood

  size_t lineStart_ = kNoLine;           // of the line, as long as only plain statements were taken from it
  size_t noPlainBefore_ = 0;             // no plain statement starts ahead of this position
  ScanMode mode_ = ScanMode::kGraphics;  // of the text read last
  size_t textStart_ = 0;                 // position of its first character in this stream,
  size_t joinedAt_ = 0;                  // which follows so many of the stream before
  bool followsBytes_ = false;            // the text read last is that of the bytes before the position, less zeros
  size_t kept_ = 0;                      // characters of a statement that goes on after the position
  size_t keptLength_ = 0;                // of them, those that are in the text read last: they were looked at before
  size_t keptBlanks_ = 0;                // that stand for the line ends after it
};

}  // namespace kapdf
