// Cuts content into statements as ISO 32000-1, 7.8.2 describes it.
#pragma once

#include <cstddef>
#include <string>

#include "content/content_bytes.h"
#include "content/statement.h"

namespace kapdf {

// Every statement comes in one plain form, so that the handlers of both readings are the same: operands stand apart by
// one blank, strings are hexadecimal, comments are gone, names have their one spelling. The form holds no zero.
class StatementLexer {
 public:
  explicit StatementLexer(ContentBytes &bytes) : bytes_(bytes) {}

  // The next statement, valid until the next call; false at the end of all content. Words that are no operators are
  // passed over with their operands.
  bool Next(Statement &statement);

  // Pieces of an inline image, after its `BI`. For an entry the key and its value are appended to `text`. Reading
  // stands after "ID" or "EI" then.
  enum class ImagePiece { kEntry, kData, kEnd };
  ImagePiece NextImagePiece(std::string &text);

 private:
  enum class Token { kEnd, kOperand, kName, kOpen, kClose, kWord };

  // Appends an operand to the text; of a word only `word_` is set.
  Token Take(std::string &text);
  // 255 and more for none.
  int Peek();
  void SkipSpace();
  Token TakeWord(std::string &text);
  void TakeNumber(std::string &text);
  void TakeName(std::string &text);
  void TakeLiteralString(std::string &text);
  void TakeHexString(std::string &text);
  int TakeEscaped();

  ContentBytes &bytes_;
  std::string text_, word_;
};

}  // namespace kapdf
