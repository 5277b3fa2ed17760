#include "content/statement_lexer.h"

#include "base/ascii.h"
#include "base/limits.h"
#include "base/name_text.h"
#include "content/operators.h"

namespace kapdf {
namespace {

constexpr int kNone = -1;

bool IsWhite(int c) { return c == ' ' || c == '\n' || c == '\r' || c == '\t' || c == '\f' || c == 0; }
bool IsDelimiter(int c) {
  return c == '(' || c == ')' || c == '<' || c == '>' || c == '[' || c == ']' || c == '{' || c == '}' || c == '/' ||
         c == '%';
}
bool IsRegular(int c) { return c != kNone && !IsWhite(c) && !IsDelimiter(c); }
bool StartsNumber(int c) { return (c >= '0' && c <= '9') || c == '-' || c == '+' || c == '.'; }

void PutHex(std::string &text, int byte) {
  static constexpr char kDigits[] = "0123456789ABCDEF";
  text += kDigits[byte >> 4 & 15];
  text += kDigits[byte & 15];
}

// Two operands that would run together stand apart.
void Separate(std::string &text) {
  if (!text.empty() && text.back() != '[' && text.back() != '<') text += ' ';
}

}  // namespace

// Content may go on in the next stream anywhere between two tokens.
int StatementLexer::Peek() {
  if (bytes_.AtEnd() && bytes_.Fill() == ContentBytes::Filled::kEnd) return kNone;
  return bytes_.data()[bytes_.position];
}

void StatementLexer::SkipSpace() {
  for (int c = Peek(); c == '%' || IsWhite(c); c = Peek()) {
    if (c != '%') {
      ++bytes_.position;
      continue;
    }
    while (!bytes_.AtEnd() && bytes_.PeekByte(0) != '\n' && bytes_.PeekByte(0) != '\r') ++bytes_.position;
  }
}

StatementLexer::Token StatementLexer::Take(std::string &text) {
  SkipSpace();
  const int c = Peek();
  if (c == kNone) return Token::kEnd;
  if (StartsNumber(c)) {
    Separate(text);
    TakeNumber(text);
    return Token::kOperand;
  }
  if (IsRegular(c)) return TakeWord(text);
  ++bytes_.position;
  const bool twice = bytes_.PeekByte(0) == c;
  switch (c) {
    case '/':
      Separate(text);
      TakeName(text);
      return Token::kName;
    case '(':
      TakeLiteralString(text);
      return Token::kOperand;
    case '<':
      if (!twice) {
        TakeHexString(text);
        return Token::kOperand;
      }
      ++bytes_.position;
      Separate(text);
      text += "<<";
      return Token::kOpen;
    case '>':
      if (!twice) return Token::kOperand;  // stray, as are ")" and the braces
      ++bytes_.position;
      text += ">>";
      return Token::kClose;
    case '[':
      Separate(text);
      text += '[';
      return Token::kOpen;
    case ']':
      text += ']';
      return Token::kClose;
    default:
      return Token::kOperand;
  }
}

// Words that are values become operands; every other one is for the caller.
StatementLexer::Token StatementLexer::TakeWord(std::string &text) {
  word_.clear();
  for (int c = Peek(); IsRegular(c) && word_.size() < limits::kTokenText; c = bytes_.PeekByte(0)) {
    word_ += static_cast<char>(c);
    ++bytes_.position;
  }
  while (IsRegular(bytes_.PeekByte(0))) ++bytes_.position;
  if (word_ != "true" && word_ != "false" && word_ != "null") return Token::kWord;
  Separate(text);
  text += word_;
  return Token::kOperand;
}

// Of several signs in front the first counts, one among the digits does not, and a second point ends the number: so do
// viewers take what drivers with faults write.
void StatementLexer::TakeNumber(std::string &text) {
  constexpr size_t kDigits = 60;
  const size_t start = text.size();
  bool digits = false, point = false;
  int c = bytes_.PeekByte(0);
  if (c == '-') text += '-';
  while (c == '-' || c == '+') {
    ++bytes_.position;
    c = bytes_.PeekByte(0);
  }
  for (; StartsNumber(c) && !(point && c == '.'); c = bytes_.PeekByte(0)) {
    ++bytes_.position;
    if (c == '-' || c == '+') continue;
    digits = digits || c != '.';
    point = point || c == '.';
    if (text.size() - start < kDigits) text += static_cast<char>(c);
  }
  if (point && c == '.') {  // what follows belongs to no other number
    while (StartsNumber(bytes_.PeekByte(0))) ++bytes_.position;
  }
  if (!digits) {
    text.resize(start);
    text += '0';
  }
}

void StatementLexer::TakeName(std::string &text) {
  std::string name;
  for (int c = bytes_.PeekByte(0); IsRegular(c); c = bytes_.PeekByte(0)) {
    ++bytes_.position;
    const int high = c == '#' && bytes_.PeekByte(0) >= 0 ? HexValue(static_cast<unsigned>(bytes_.PeekByte(0))) : -1;
    const int low = high >= 0 && bytes_.PeekByte(1) >= 0 ? HexValue(static_cast<unsigned>(bytes_.PeekByte(1))) : -1;
    if (low >= 0) {
      c = high * 16 + low;
      bytes_.position += 2;
    }
    name += static_cast<char>(c);
  }
  text += '/' + SpellName(name);
}

// What a backslash and the bytes after it stand for, or none.
int StatementLexer::TakeEscaped() {
  const int c = bytes_.NextByte();
  switch (c) {
    case 'n':
      return '\n';
    case 'r':
      return '\r';
    case 't':
      return '\t';
    case 'b':
      return '\b';
    case 'f':
      return '\f';
    case '\r':
      if (bytes_.PeekByte(0) == '\n') ++bytes_.position;
      return kNone;
    case '\n':
      return kNone;
    default:
      break;
  }
  if (c < '0' || c > '7') return c;
  int value = c - '0';
  for (int i = 0; i < 2 && bytes_.PeekByte(0) >= '0' && bytes_.PeekByte(0) <= '7'; ++i) {
    value = value * 8 + (bytes_.NextByte() - '0');
  }
  return value & 255;
}

void StatementLexer::TakeLiteralString(std::string &text) {
  text += '<';
  int depth = 1;
  for (int c = bytes_.NextByte(); c != kNone; c = bytes_.NextByte()) {
    if (c == '\\') {
      c = TakeEscaped();
      if (c == kNone) continue;
    } else if (c == '(') {
      ++depth;
    } else if (c == ')') {
      if (--depth == 0) break;
    } else if (c == '\r') {  // any line end is a line feed
      if (bytes_.PeekByte(0) == '\n') ++bytes_.position;
      c = '\n';
    }
    PutHex(text, c);
  }
  text += '>';
}

void StatementLexer::TakeHexString(std::string &text) {
  text += '<';
  size_t digits = 0;
  for (int c = bytes_.NextByte(); c != kNone && c != '>'; c = bytes_.NextByte()) {
    if (HexValue(static_cast<unsigned>(c)) < 0) continue;
    text += static_cast<char>(c);
    ++digits;
  }
  if (digits % 2 != 0) text += '0';
  text += '>';
}

bool StatementLexer::Next(Statement &statement) {
  text_.clear();
  for (;;) {
    const Token token = Take(text_);
    if (token == Token::kEnd) return false;
    if (text_.size() > limits::kOperandText) text_.clear();
    if (token != Token::kWord) continue;
    const OperatorRow *row = FindOperatorRow(word_);
    if (!row) {
      text_.clear();
      continue;
    }
    Separate(text_);
    text_ += word_;
    statement = {text_.c_str(), nullptr, row};
    return true;
  }
}

StatementLexer::ImagePiece StatementLexer::NextImagePiece(std::string &text) {
  for (;;) {
    const size_t start = text.size();
    Token token = Take(text);
    if (token == Token::kEnd) return ImagePiece::kEnd;
    if (token == Token::kWord && word_ == "ID") return ImagePiece::kData;
    if (token == Token::kWord && word_ == "EI") return ImagePiece::kEnd;
    if (token != Token::kName) {  // no key
      text.resize(start);
      continue;
    }
    int depth = 0;
    do {
      token = Take(text);
      if (token == Token::kOpen) ++depth;
      if (token == Token::kClose) --depth;
    } while (depth > 0 && token != Token::kEnd && text.size() < limits::kOperandText);
    if (token != Token::kWord) return ImagePiece::kEntry;
    return word_ == "ID" ? ImagePiece::kData : ImagePiece::kEnd;
  }
}

}  // namespace kapdf
