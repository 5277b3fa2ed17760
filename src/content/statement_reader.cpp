// Cutting content into statements.
#include "content/statement_reader.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "base/ascii.h"
#include "base/limits.h"
#include "base/scan.h"
#include "content/operators.h"

namespace kapdf {
namespace {

bool IsLineEnd(unsigned c) { return c == '\n' || c == '\r'; }

// Behind a number that was given up for its length.
size_t RunOfDigits(const char *at) {
  size_t length = 0;
  while (IsDigit(static_cast<unsigned char>(at[length])) || at[length] == '.') ++length;
  return length;
}

bool IsParametersKey(const char *text, size_t count) {
  const std::string_view view(text, count);
  return view == "/DP" || view == "/DecodeParams";
}

// The data of an inline image end with their stream, if not before; unless none of them stands there.
bool HoldsImageData(ScanMode mode, std::string_view text) {
  if (mode == ScanMode::kText) return false;
  const size_t image = mode == ScanMode::kGraphics ? text.find("BI") : 0;
  const size_t data = image == text.npos ? image : text.find("ID", image);
  return data != text.npos && data + 3 < text.size();
}

}  // namespace

// A plain statement is taken from where it stands; any other goes through the buffer.
bool StatementReader::Next(ScanMode mode, bool plain, Statement &statement) {
  if (plain && !remainder_ && ReadPlain(statement)) return true;
  const bool fromContent = remainder_ == nullptr;
  char *text = NextText(mode);
  if (!text) return false;
  search_.from = fromContent ? keptLength_ : 0;
  if (search_.from == 0) search_.within = OperatorSearch::Within::kNothing;
  const OperatorRow *row = FindOperator(text, remainder_, search_);
  // A line end may have broken a statement inside an operand: the line after it is read together with it. Where there
  // is none, the statement is dropped.
  if (!row && *text) RejoinLine(text, search_.from, mode);
  while (*text == ' ') ++text;
  statement = {text, nullptr, row};
  return true;
}

// The lexer may have gone into the next stream: what is known of places counts no more.
bool StatementReader::NextLexed(bool plain, Statement &statement) {
  if (plain && ReadPlain(statement)) return true;
  lineStart_ = kNoLine;
  noPlainBefore_ = 0;
  return lexer_.Next(statement);
}

char *StatementReader::NextText(ScanMode mode) {
  char *text = std::exchange(remainder_, nullptr);
  return text ? text : ReadText(mode);
}

void StatementReader::Restart() {
  remainder_ = nullptr;
  lineStart_ = kNoLine;
  noPlainBefore_ = kept_ = keptBlanks_ = 0;
  followsBytes_ = false;
}

void StatementReader::Suspend() {
  if (!remainder_) return;
  rest_ = remainder_;
  restAt_ = static_cast<size_t>(remainder_ - buffer_->data());
  remainder_ = nullptr;
}

void StatementReader::Resume() {
  if (rest_.empty()) return;
  remainder_ = buffer_->data() + restAt_;
  std::memcpy(remainder_, rest_.c_str(), rest_.size() + 1);
  rest_.clear();
}

bool StatementReader::Fill() {
  const ContentBytes::Filled filled = bytes_.Fill();
  if (filled == ContentBytes::Filled::kNewStream) {
    noPlainBefore_ = 0;
    lineStart_ = kNoLine;
  }
  return filled != ContentBytes::Filled::kEnd;
}

// What the byte at hand may do to a statement, in the modes where that matters, is decided here; the plain copying of
// bytes stays in the loop.
bool StatementReader::ScanStatement(ScanMode mode, size_t first, size_t most, size_t &count) {
  char *text = buffer_->data();
  const uint8_t *data = bytes_.data();
  const bool graphics = mode == ScanMode::kGraphics;
  bool imageData = false, parameters = false;
  while (bytes_.position < bytes_.length() && count < most) {
    if (mode == ScanMode::kInlineImage) {
      if (count == 3 && std::memcmp(text, "ID ", 3) == 0)
        imageData = true;
      else if (IsParametersKey(text, count))
        parameters = true;
    }
    const uint8_t c = data[bytes_.position];
    if (IsLineEnd(c)) {
      if (imageData) {
        if (bytes_.PeekByte(1) == 'E' && bytes_.PeekByte(2) == 'I') return true;
      } else if (parameters) {
        if (count >= 2 && text[count - 1] == '>' && text[count - 2] == '>') return true;
      } else if (graphics || bytes_.position == 0 || data[bytes_.position - 1] != '\\') {
        return true;
      } else {
        ++bytes_.position;  // the backslash is overwritten and the string goes on
        followsBytes_ = false;
        if (count > 0) --count;
        continue;
      }
    }
    if (graphics && c == '%' && count > first && data[bytes_.position - 1] == '%') {
      while (bytes_.position < bytes_.length() && !IsLineEnd(data[bytes_.position])) ++bytes_.position;
      followsBytes_ = false;
      return true;  // "%%" opens a comment; a single "%" does not
    }
    ++bytes_.position;
    if (c == 0) {
      if (graphics) continue;
      followsBytes_ = false;  // the text ends here for its readers
    }
    text[count++] = static_cast<char>(c);
    if (graphics && (c == 'q' || c == 'Q')) {  // stands alone, however long the line
      if (count == 1) return true;
      if (text[count - 2] == ' ') {
        count -= 2;
        --bytes_.position;
        return true;
      }
    }
  }
  return false;
}

// Behind plain statements of the same line this reads what is left of the line's text, so that a line too long for the
// buffer is cut where it would be without them. The blank that ended the last one is no part of the text.
char *StatementReader::ReadText(ScanMode mode) {
  const bool goesOn =
      lineStart_ < bytes_.position && bytes_.position < bytes_.length() && !IsLineEnd(bytes_.data()[bytes_.position]);
  const size_t most = kMost - (goesOn ? bytes_.position - lineStart_ : 0);
  lineStart_ = kNoLine;
  mode_ = mode;
  followsBytes_ = true;
  keptLength_ = std::exchange(kept_, 0);
  size_t count = keptLength_ + std::exchange(keptBlanks_, 0);
  for (int joined = 0; joined <= limits::kJoinedStreams; ++joined) {
    size_t saved = 0;
    if (joined > 0 || keptLength_ == 0) {
      if (!Fill()) break;
      if (!goesOn || joined > 0) SkipWhiteSpace();
      saved = count;
      if (saved > 0 && saved < most) (*buffer_)[count++] = ' ';
      if (joined > 0) followsBytes_ = false;
      textStart_ = bytes_.position;
      joinedAt_ = count;
    }
    const bool whole = ScanStatement(mode, saved > 0 ? count : 0, most, count);
    if (count >= most && !whole && mode == ScanMode::kGraphics) {
      keptLength_ = 0;
      if (!CutAtLastOperator(most, count) && goesOn) {
        bytes_.MoveBack(most);  // the cut is behind the last plain statement
        return ReadText(mode);
      }
    }
    if (whole || count >= most || bytes_.position < bytes_.length() || HoldsImageData(mode, {buffer_->data(), count})) {
      return EndStatement(count, goesOn);
    }
    if (count == saved + (saved > 0 ? 1 : 0)) {  // nothing but white space was left of this stream
      count = saved;
      --joined;
    }
  }
  return count > 0 ? EndStatement(count, goesOn) : nullptr;
}

char *StatementReader::EndStatement(size_t count, bool withoutFirst) {
  (*buffer_)[count] = 0;
  return buffer_->data() + (withoutFirst && count > 0 ? 1 : 0);
}

void StatementReader::SkipWhiteSpace() {
  const uint8_t *data = bytes_.data();
  while (bytes_.position < bytes_.length() &&
         (IsLineEnd(data[bytes_.position]) || data[bytes_.position] == ' ' || data[bytes_.position] == '\t')) {
    ++bytes_.position;
  }
}

// A statement that fills the buffer ends behind the last operator in it; the rest is read again as the next one. False
// without an operator.
bool StatementReader::CutAtLastOperator(size_t most, size_t &count) {
  char *text = buffer_->data();
  text[count] = 0;
  for (size_t index = most; index-- > 0;) {
    if (!StartsWithOperator(text + index)) continue;
    while (index < most && text[index] != ' ') ++index;
    bytes_.MoveBack(most - index);
    count = index;
    return true;
  }
  return false;
}

// A statement that is just what stands before the position is not read again: it stays in the buffer and its next
// reading goes on behind it. Else many short lines without an operator would be read over and over.
void StatementReader::RejoinLine(const char *statement, size_t length, ScanMode mode) {
  if (!bytes_.data()) return;
  size_t end = bytes_.position;
  for (; end < bytes_.length() && IsLineEnd(bytes_.data()[end]); ++end) bytes_.data()[end] = ' ';
  if (end == bytes_.position) return;
  const char *first = statement;
  while (*first == ' ') ++first;
  // What would be read otherwise from its first character on is read again.
  if (!followsBytes_ || mode != mode_ || *first == 0 || *first == '\t' || *first == 'q' || *first == 'Q')
    return bytes_.MoveBack(length);
  textStart_ = PositionOf(first);
  kept_ = static_cast<size_t>(statement + length - first);
  if (first != buffer_->data()) std::memmove(buffer_->data(), first, kept_);
  keptBlanks_ = std::min(end - bytes_.position, kMost - kept_);
  std::memset(buffer_->data() + kept_, ' ', keptBlanks_);
  bytes_.position += keptBlanks_;
  noPlainBefore_ = bytes_.position + 1;
}

// Bytes that the text leaves out lie between.
size_t StatementReader::PositionOf(const char *at) const {
  const auto offset = static_cast<size_t>(at - buffer_->data());
  const uint8_t *data = bytes_.data();
  size_t position = textStart_;
  for (size_t i = joinedAt_; i < offset && position < bytes_.length(); ++position) {
    if (mode_ == ScanMode::kGraphics ? data[position] != 0
                                     : !IsLineEnd(data[position]) || position == 0 || data[position - 1] != '\\') {
      ++i;
    } else if (mode_ != ScanMode::kGraphics && i > joinedAt_) {
      --i;  // the backslash went with the line end
    }
  }
  return position;
}

bool StatementReader::ReadPlain(Statement &statement) {
  if (bytes_.position >= bytes_.length() || bytes_.position < noPlainBefore_) return false;
  const char *data = reinterpret_cast<const char *>(bytes_.data());
  const char *at = data + bytes_.position;
  bool newLine = lineStart_ == kNoLine;
  for (; *at == '\n' || *at == '\r' || *at == ' ' || *at == '\t'; ++at) newLine |= *at < ' ' && *at != '\t';
  if (newLine) lineStart_ = static_cast<size_t>(at - data);
  int count = 0;
  while (IsDigit(static_cast<unsigned char>(*at)) || *at == '-' || *at == '.' || *at == '+') {
    double value;
    if (!ScanReal(at, value) || *at != ' ') {
      // The other reader goes on within a number of endless digits: they are not looked at again each time.
      noPlainBefore_ = static_cast<size_t>(at - data) + RunOfDigits(at);
      return false;
    }
    do ++at;
    while (*at == ' ');
    if (count == PlainStatement::kOperands) return false;
    plain_.values[static_cast<size_t>(count++)] = value;
  }
  const auto ends = [](char c) { return c == '\n' || c == '\r' || c == ' '; };
  // The stream's end is a zero, which ends nothing: a statement there may go on in the next stream.
  const char first = *at;
  if (first <= ' ') return false;
  size_t letters = 1;
  const OperatorRow *row = nullptr;
  if (ends(at[1])) {
    row = FindPlainOperator(first);
  } else if (at[1] > ' ' && ends(at[2])) {
    row = FindPlainOperator(first, at[1]);
    letters = 2;
  }
  const size_t start = static_cast<size_t>(at - data), end = start + letters;
  if (!row || end - lineStart_ > kMost) return false;
  plain_.count = count;
  statement = {"", &plain_, row};
  bytes_.position = end;
  if ((row->number == kOpSaveState || row->number == kOpRestoreState) && (start == lineStart_ || at[-1] == ' ')) {
    lineStart_ = kNoLine;  // it stands alone: what follows is a statement of its own
  }
  return true;
}

}  // namespace kapdf
