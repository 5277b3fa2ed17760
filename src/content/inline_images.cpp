// Passing over inline images. Their dictionary is read piece by piece as far as it takes to find where the data end.
#include <cstring>
#include <string_view>

#include "content/interpreter.h"
#include "content/scanner.h"

namespace kapdf {
namespace {

bool StartsWith(const char *text, std::string_view prefix) {
  return std::strncmp(text, prefix.data(), prefix.size()) == 0;
}

bool IsBlankOrLineEnd(int c) { return c == ' ' || c == '\n' || c == '\r'; }

void SkipWord(char *&at) {
  if (*at) ++at;
  while (*at && *at != ' ' && *at != '/' && *at != '[' && *at != '(' && *at != '<') ++at;
}

void SkipBlanks(char *&at) {
  while (*at == ' ') ++at;
}

}  // namespace

// Pieces follow each other on one line as remainders of one another, and line by line.
Flow Interpreter::PassInlineImage(const Statement &) {
  for (;;) {
    const bool wholeStatement = remainder_ == nullptr;
    char *text = NextText(ScanMode::kInlineImage);
    if (!text) return Flow::kNext;
    SkipBlanks(text);
    const bool dataInside = wholeStatement && StartsWith(text, "ID ");
    if (*text == '/') {
      PassImageKey(text);
    } else if (FindOperator(text, remainder_) == kOpEndImage) {
      return Flow::kNext;
    } else if (dataInside) {
      remainder_ = nullptr;
      PassImageData();
    } else if (StartsWith(text, "ID") && !remainder_) {
      while (IsBlankOrLineEnd(context_->PeekByte(0))) context_->NextByte();
      PassImageData();
    }
  }
}

// What follows the value is the next piece. An array that goes on behind the line is read to its end.
void Interpreter::PassImageKey(char *text) {
  char *at = text;
  SkipWord(at);
  SkipBlanks(at);
  if (*at == '[') {
    char *close = std::strchr(at, ']');
    if (!close) {
      for (int c = 0; c >= 0 && c != ']';) c = context_->NextByte();
      return;
    }
    at = close + 1;
  } else if (*at == '(') {
    SkipLiteralString(at);
  } else if (*at == '<') {
    if (at[1] == '<')
      SkipDictionary(at);
    else
      SkipHexString(at);
  } else {
    SkipWord(at);
  }
  SkipBlanks(at);
  if (*at) remainder_ = at;
}

// Up to the blank or line end that "EI" follows. A backslash and the line end behind it are not looked at.
void Interpreter::PassImageData() {
  for (;;) {
    const int c = context_->PeekByte(0);
    if (c < 0) return;
    if (IsBlankOrLineEnd(c) && context_->PeekByte(1) == 'E' && context_->PeekByte(2) == 'I') return;
    context_->NextByte();
    if (c == '\\' && (context_->PeekByte(0) == '\n' || context_->PeekByte(0) == '\r')) context_->NextByte();
  }
}

}  // namespace kapdf
