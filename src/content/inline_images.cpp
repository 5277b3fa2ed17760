// The operator of inline images.
#include <utility>

#include "content/interpreter.h"
#include "content/scanner.h"

namespace kapdf {
namespace {

constexpr size_t kData = 2;  // characters of "ID"

}  // namespace

// Pieces follow each other on one line, beginning with that of "BI", and line by line. False when the content ends
// first.
bool Interpreter::ReadImageDictionary(InlineImageReader &image) {
  StatementReader &statements = drawing_.content->statements;
  char *text = nullptr;
  for (;;) {
    const bool startsLine = text == nullptr && statements.AtNewText();
    if (!text) text = statements.NextText(ScanMode::kInlineImage);
    if (!text) return false;
    while (IsBlank(*text)) ++text;
    if (*text == '/') {
      text = image.TakeKey(text);
    } else if (text[0] == 'I' && text[1] == 'D' && (text[2] == ' ' || text[2] == 0)) {
      image.TakeData(statements.PositionOf(text + kData), startsLine);
      text = nullptr;
    } else {
      char *rest = nullptr;
      const OperatorRow *row = FindOperator(text, rest);
      if (row && row->number == kOpEndImage) {
        statements.GoOnWith(rest);
        return true;
      }
      text = rest;
    }
  }
}

Flow Interpreter::InlineImage(const Statement &) {
  rasters_.ForgetInline();
  InlineImageReader image(*drawing_.content);
  if (!ReadImageDictionary(image)) return Flow::kNext;
  auto finished = image.Finish(drawing_.state.ctm);
  return finished ? rasters_.DrawInline(std::move(finished)) : Flow::kNext;
}

}  // namespace kapdf
