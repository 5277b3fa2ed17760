#include "content/scanner.h"

#include <cstdio>

#include "content/operators.h"
#include "platform/file.h"

namespace kapdf {
namespace {

constexpr size_t kOperatorBytes = 3;

using Within = OperatorSearch::Within;

// These go on within a construct and give false when the text ends first.
bool SkipPast(char *&at, char close) {
  while (*at && *at != close) {
    if (*at == '\\' && at[1]) ++at;
    ++at;
  }
  if (!*at) return false;
  ++at;
  return true;
}

// For looking into damaged content while this library is worked on: the text of a string that does not end is written
// to a file.
constexpr bool kDumpEndlessStrings = false;

void DumpString(const char *text) {
  const auto file = platform::OpenFile(platform::DiagnosticPath("PdfStringDump.txt"), "w+", platform::Share::kRead);
  if (file) std::fputs(text, file.get());
}

bool SkipPastString(char *&at) {
  const char *start = at;
  const bool ended = SkipPast(at, ')');
  if (kDumpEndlessStrings && !ended) DumpString(start);
  return ended;
}

bool SkipPastDictionary(char *&at) {
  while (*at && !(at[0] == '>' && at[1] == '>')) at += *at == '\\' && at[1] ? 2 : 1;
  if (!*at) return false;
  at += 2;
  return true;
}

bool SkipPastArray(char *&at, Within &within) {
  for (;;) {
    if (within == Within::kArrayString && !SkipPastString(at)) return false;
    if (within == Within::kArrayHexString && !SkipPast(at, '>')) return false;
    within = Within::kArray;
    while (*at && *at != ']' && *at != '(' && *at != '<') at += *at == '\\' && at[1] ? 2 : 1;
    if (!*at) return false;
    const char found = *at++;
    if (found == ']') return true;
    within = found == '(' ? Within::kArrayString : Within::kArrayHexString;
  }
}

bool SkipRest(char *&at, Within &within) {
  switch (within) {
    case Within::kNothing:
      return true;
    case Within::kString:
      return SkipPastString(at);
    case Within::kHexString:
      return SkipPast(at, '>');
    case Within::kDictionary:
      return SkipPastDictionary(at);
    default:
      return SkipPastArray(at, within);
  }
}

// What opens at the cursor, which is moved behind the opening.
Within Enter(char *&at) {
  if (*at == '(') return ++at, Within::kString;
  if (*at == '[') return ++at, Within::kArray;
  if (*at != '<') return Within::kNothing;
  if (at[1] != '<') return ++at, Within::kHexString;
  at += 2;
  return Within::kDictionary;
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
  SkipPastString(at);
}

void SkipHexString(char *&at) {
  ++at;
  SkipPast(at, '>');
}

void SkipDictionary(char *&at) {
  at += 2;
  SkipPastDictionary(at);
}

const OperatorRow *FindOperator(char *text, char *&remainder) {
  OperatorSearch search;
  return FindOperator(text, remainder, search);
}

const OperatorRow *FindOperator(char *text, char *&remainder, OperatorSearch &search) {
  remainder = nullptr;
  char *at = text + search.from;
  for (;;) {
    if (SkipRest(at, search.within)) {
      search.within = Within::kNothing;
      while (*at == ' ' || *at == '\t') ++at;
    }
    if (*at == 0) {
      search.from = static_cast<size_t>(at - text);
      return nullptr;
    }
    search.within = Enter(at);
    if (search.within != Within::kNothing) continue;
    const size_t length = WordLength(at);
    const char *word = at;
    at += length;
    const OperatorRow *row = length <= kOperatorBytes ? FindOperatorRow({word, length}) : nullptr;
    if (!row) continue;
    if (*at == ' ' || *at == '\r' || *at == '\n') {
      *at++ = 0;
      remainder = *at ? at : nullptr;
    } else if (*at) {
      remainder = at;
    }
    return row;
  }
}

bool StartsWithOperator(const char *text) {
  if (EndsWord(*text)) return false;
  const size_t length = WordLength(text, kOperatorBytes + 1);
  return length <= kOperatorBytes && FindOperatorRow({text, length});
}

}  // namespace kapdf
