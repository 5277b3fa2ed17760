// The operator of inline images.
#include <algorithm>
#include <utility>

#include "content/interpreter.h"
#include "content/scanner.h"

namespace kapdf {
namespace {

constexpr size_t kData = 2;       // characters of "ID"
constexpr size_t kEntries = 100;  // of an image's dictionary

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

// All entries first: which parameters count is decided by the filters, wherever those stand.
bool Interpreter::ReadLexedImage(InlineImageReader &image) {
  StatementLexer &lexer = drawing_.content->statements.lexer();
  std::vector<std::string> entries;
  StatementLexer::ImagePiece piece;
  do {
    entries.emplace_back();
    piece = lexer.NextImagePiece(entries.back());
  } while (piece == StatementLexer::ImagePiece::kEntry && entries.size() < kEntries);
  if (piece != StatementLexer::ImagePiece::kData) return false;
  const auto isFilter = [](const std::string &entry) {
    return entry.starts_with("/F ") || entry.starts_with("/Filter");
  };
  std::stable_partition(entries.begin(), entries.end(), isFilter);
  for (std::string &entry : entries) {
    if (!entry.empty()) image.TakeLexedKey(entry.data());
  }
  image.TakeLexedData();
  return true;
}

Flow Interpreter::InlineImage(const Statement &) {
  rasters_.ForgetInline();
  InlineImageReader image(*drawing_.content);
  if (!(drawing_.settings.rules.lexed ? ReadLexedImage(image) : ReadImageDictionary(image))) return Flow::kNext;
  auto finished = image.Finish(drawing_.state.ctm);
  return finished ? rasters_.DrawInline(std::move(finished)) : Flow::kNext;
}

}  // namespace kapdf
