#include "content/scanner.h"

#include "content/operators.h"

namespace kapdf {
namespace {

constexpr size_t kOperatorBytes = 3;

void SkipPast(char *&at, char close) {
  while (*at && *at != close) {
    if (*at == '\\' && at[1]) ++at;
    ++at;
  }
  if (*at) ++at;
}

// False when the text ends inside the array.
bool SkipArray(char *&at) {
  ++at;
  while (*at && *at != ']') {
    if (*at == '(')
      SkipLiteralString(at);
    else if (*at == '<')
      SkipHexString(at);
    else
      at += *at == '\\' && at[1] ? 2 : 1;
  }
  if (!*at) return false;
  ++at;
  return true;
}

bool EndsWord(char c) { return c == 0 || c == ' ' || c == '[' || c == '(' || c == '<'; }

// `most`: longer ones are not told apart.
size_t WordLength(const char *text, size_t most = SIZE_MAX) {
  size_t length = 0;
  while (length < most && !EndsWord(text[length]) && !(text[length] == '/' && length > 0)) ++length;
  return length;
}

}  // namespace

void SkipLiteralString(char *&at) {
  ++at;
  SkipPast(at, ')');
}

void SkipHexString(char *&at) {
  ++at;
  SkipPast(at, '>');
}

void SkipDictionary(char *&at) {
  at += 2;
  while (*at && !(at[0] == '>' && at[1] == '>')) at += *at == '\\' && at[1] ? 2 : 1;
  if (*at) at += 2;
}

uint8_t FindOperator(char *text, char *&remainder) {
  remainder = nullptr;
  char *at = text;
  for (;;) {
    while (*at == ' ' || *at == '\t') ++at;
    if (*at == 0) return 0;
    if (*at == '(') {
      SkipLiteralString(at);
    } else if (*at == '<') {
      if (at[1] == '<')
        SkipDictionary(at);
      else
        SkipHexString(at);
    } else if (*at == '[') {
      if (!SkipArray(at)) return 0;
    } else {
      const size_t length = WordLength(at);
      const char *word = at;
      at += length;
      const uint8_t number = length <= kOperatorBytes ? FindOperatorNumber(word, length) : 0;
      if (number == 0) continue;
      if (*at == ' ' || *at == '\r' || *at == '\n') {
        *at++ = 0;
        remainder = *at ? at : nullptr;
      } else if (*at) {
        remainder = at;
      }
      return number;
    }
  }
}

bool StartsWithOperator(const char *text) {
  if (EndsWord(*text)) return false;
  const size_t length = WordLength(text, kOperatorBytes + 1);
  return length <= kOperatorBytes && FindOperatorNumber(text, length) != 0;
}

}  // namespace kapdf
