// Looking at the text of a statement.
#pragma once

#include <cstddef>
#include <cstdint>

namespace kapdf {

// Where a search that found no operator stopped, at the text's end. When more text is put behind it the search goes on
// there.
struct OperatorSearch {
  enum class Within { kNothing, kString, kHexString, kDictionary, kArray, kArrayString, kArrayHexString };
  size_t from = 0;
  Within within = Within::kNothing;
};

struct OperatorRow;

// The row of the first operator in the text, null for none. The text is cut behind it, and `remainder` is set to what
// follows, or null at the end. Strings, arrays and dictionaries are passed over. A word ends at a blank, a bracket or
// an inner slash only: a TAB glues words together.
const OperatorRow *FindOperator(char *text, char *&remainder);
const OperatorRow *FindOperator(char *text, char *&remainder, OperatorSearch &search);

// True when the word that starts at the text is an operator.
bool StartsWithOperator(const char *text);

// Each moves a cursor past one construct: its opening stands at the cursor. All stop at the end of the text. A string
// ends at the first ")" that no backslash precedes; nesting is not counted.
void SkipLiteralString(char *&at);
void SkipHexString(char *&at);
void SkipDictionary(char *&at);

}  // namespace kapdf
