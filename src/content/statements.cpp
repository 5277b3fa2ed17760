// Cutting content into statements.
#include <algorithm>
#include <cstring>
#include <utility>

#include "base/ascii.h"
#include "base/limits.h"
#include "base/scan.h"
#include "content/content_stream.h"
#include "content/operators.h"
#include "content/scanner.h"

namespace kapdf {
namespace {

constexpr size_t kMost = CPDFContentStream::kStatementBytes - 1;

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

// What the byte at hand may do to a statement, in the modes where that matters, is decided here; the plain copying of
// bytes stays in the loop.
bool CPDFContentStream::ScanStatement(ScanMode mode, size_t first, size_t most, size_t &count) {
  char *text = statement_->data();
  const uint8_t *data = bytes();
  const bool graphics = mode == ScanMode::kGraphics;
  bool imageData = false, parameters = false;
  while (position_ < length_ && count < most) {
    if (mode == ScanMode::kInlineImage) {
      if (count == 3 && std::memcmp(text, "ID ", 3) == 0)
        imageData = true;
      else if (IsParametersKey(text, count))
        parameters = true;
    }
    const uint8_t c = data[position_];
    if (IsLineEnd(c)) {
      if (imageData) {
        if (PeekByte(1) == 'E' && PeekByte(2) == 'I') return true;
      } else if (parameters) {
        if (count >= 2 && text[count - 1] == '>' && text[count - 2] == '>') return true;
      } else if (graphics || position_ == 0 || data[position_ - 1] != '\\') {
        return true;
      } else {
        ++position_;  // the backslash is overwritten and the string goes on
        followsBytes_ = false;
        if (count > 0) --count;
        continue;
      }
    }
    if (graphics && c == '%' && count > first && data[position_ - 1] == '%') {
      while (position_ < length_ && !IsLineEnd(data[position_])) ++position_;
      followsBytes_ = false;
      return true;  // "%%" opens a comment; a single "%" does not
    }
    ++position_;
    if (c == 0) {
      if (graphics) continue;
      followsBytes_ = false;  // the text ends here for its readers
    }
    text[count++] = static_cast<char>(c);
    if (graphics && (c == 'q' || c == 'Q')) {  // stands alone, however long the line
      if (count == 1) return true;
      if (text[count - 2] == ' ') {
        count -= 2;
        --position_;
        return true;
      }
    }
  }
  return false;
}

// Behind plain statements of the same line this reads what is left of the line's text, so that a line too long for the
// buffer is cut where it would be without them. The blank that ended the last one is no part of the text.
char *CPDFContentStream::ReadStatement(ScanMode mode) {
  const bool goesOn = lineStart_ < position_ && position_ < length_ && !IsLineEnd(bytes()[position_]);
  const size_t most = kMost - (goesOn ? position_ - lineStart_ : 0);
  lineStart_ = kNoLine;
  mode_ = mode;
  followsBytes_ = true;
  keptLength_ = std::exchange(kept_, 0);
  size_t count = keptLength_ + std::exchange(keptBlanks_, 0);
  for (int joined = 0; joined <= limits::kJoinedStreams; ++joined) {
    size_t saved = 0;
    if (joined > 0 || keptLength_ == 0) {
      if (!FillBuffer()) break;
      if (!goesOn || joined > 0) SkipWhiteSpace();
      saved = count;
      if (saved > 0 && saved < most) (*statement_)[count++] = ' ';
      if (joined > 0) followsBytes_ = false;
      textStart_ = position_;
      joinedAt_ = count;
    }
    const bool whole = ScanStatement(mode, saved > 0 ? count : 0, most, count);
    if (count >= most && !whole && mode == ScanMode::kGraphics) {
      keptLength_ = 0;
      if (!CutAtLastOperator(most, count) && goesOn) {
        MoveBack(most);  // the cut is behind the last plain statement
        return ReadStatement(mode);
      }
    }
    if (whole || count >= most || position_ < length_ || HoldsImageData(mode, {statement_->data(), count})) {
      return EndStatement(count, goesOn);
    }
    if (count == saved + (saved > 0 ? 1 : 0)) {  // nothing but white space was left of this stream
      count = saved;
      --joined;
    }
  }
  return count > 0 ? EndStatement(count, goesOn) : nullptr;
}

char *CPDFContentStream::EndStatement(size_t count, bool withoutFirst) {
  (*statement_)[count] = 0;
  return statement_->data() + (withoutFirst && count > 0 ? 1 : 0);
}

void CPDFContentStream::SkipWhiteSpace() {
  const uint8_t *data = bytes();
  while (position_ < length_ && (IsLineEnd(data[position_]) || data[position_] == ' ' || data[position_] == '\t')) {
    ++position_;
  }
}

// A statement that fills the buffer ends behind the last operator in it; the rest is read again as the next one. False
// without an operator.
bool CPDFContentStream::CutAtLastOperator(size_t most, size_t &count) {
  char *text = statement_->data();
  text[count] = 0;
  for (size_t index = most; index-- > 0;) {
    if (!StartsWithOperator(text + index)) continue;
    while (index < most && text[index] != ' ') ++index;
    MoveBack(most - index);
    count = index;
    return true;
  }
  return false;
}

// A statement that is just what stands before the position is not read again: it stays in the buffer and its next
// reading goes on behind it. Else many short lines without an operator would be read over and over.
void CPDFContentStream::RejoinLine(const char *statement, size_t length, ScanMode mode) {
  if (!buffer_.data()) return;
  size_t end = position_;
  for (; end < length_ && IsLineEnd(bytes()[end]); ++end) bytes()[end] = ' ';
  if (end == position_) return;
  const char *first = statement;
  while (*first == ' ') ++first;
  // What would be read otherwise from its first character on is read again.
  if (!followsBytes_ || mode != mode_ || *first == 0 || *first == '\t' || *first == 'q' || *first == 'Q')
    return MoveBack(length);
  textStart_ = PositionOf(first);
  kept_ = static_cast<size_t>(statement + length - first);
  if (first != statement_->data()) std::memmove(statement_->data(), first, kept_);
  keptBlanks_ = std::min(end - position_, kMost - kept_);
  std::memset(statement_->data() + kept_, ' ', keptBlanks_);
  position_ += keptBlanks_;
  noPlainBefore_ = position_ + 1;
}

// Bytes that the text leaves out lie between.
size_t CPDFContentStream::PositionOf(const char *at) const {
  const auto offset = static_cast<size_t>(at - statement_->data());
  const uint8_t *data = buffer_.data();
  size_t position = textStart_;
  for (size_t i = joinedAt_; i < offset && position < length_; ++position) {
    if (mode_ == ScanMode::kGraphics ? data[position] != 0
                                     : !IsLineEnd(data[position]) || position == 0 || data[position - 1] != '\\') {
      ++i;
    } else if (mode_ != ScanMode::kGraphics && i > joinedAt_) {
      --i;  // the backslash went with the line end
    }
  }
  return position;
}

void CPDFContentStream::KeepRest(const char *rest) {
  rest_ = rest;
  restAt_ = static_cast<size_t>(rest - statement_->data());
}

char *CPDFContentStream::TakeRest() {
  if (rest_.empty()) return nullptr;
  char *rest = statement_->data() + restAt_;
  std::memcpy(rest, rest_.c_str(), rest_.size() + 1);
  rest_.clear();
  return rest;
}

bool CPDFContentStream::ReadPlain(PlainStatement &statement) {
  if (position_ >= length_ || position_ < noPlainBefore_) return false;
  const char *data = reinterpret_cast<const char *>(bytes());
  const char *at = data + position_;
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
    statement.values[static_cast<size_t>(count++)] = value;
  }
  const auto ends = [](char c) { return c == '\n' || c == '\r' || c == ' '; };
  // The stream's end is a zero, which ends nothing: a statement there may go on in the next stream.
  const char first = *at;
  if (first <= ' ') return false;
  size_t letters = 1;
  uint8_t number = 0;
  if (ends(at[1])) {
    number = FindPlainOperator(first);
  } else if (at[1] > ' ' && ends(at[2])) {
    number = FindPlainOperator(first, at[1]);
    letters = 2;
  }
  const size_t start = static_cast<size_t>(at - data), end = start + letters;
  if (number == 0 || end - lineStart_ > kMost) return false;
  statement.count = count;
  statement.number = number;
  position_ = end;
  if (number <= kOpRestoreState && number >= kOpSaveState && (start == lineStart_ || at[-1] == ' ')) {
    lineStart_ = kNoLine;  // it stands alone: what follows is a statement of its own
  }
  return true;
}

}  // namespace kapdf
