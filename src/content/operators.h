// The operators of content, in one table.
#pragma once

#include <cstdint>
#include <string_view>

namespace kapdf {

class Interpreter;
struct Statement;

// What an operator did to the loop.
enum class Flow {
  kNext,    // go on with the next statement
  kRecord,  // the host's record is filled
  kPaint    // paths wait to be handed out
};

using OperatorHandler = Flow (*)(Interpreter &, const Statement &);

// What a handler reads of its statement. Where that is no more than numbers, the statement may come without a text.
enum class Operands : uint8_t { kNone, kNumbers, kText };

// `number` groups operators that share their effect. A missing handler means that the operator is taken and ignored.
struct OperatorRow {
  std::string_view text;
  uint8_t number;
  Operands operands;
  OperatorHandler outside;  // text objects
  OperatorHandler inside;
};

inline constexpr uint8_t kOpSaveState = 2;
inline constexpr uint8_t kOpRestoreState = 3;
inline constexpr uint8_t kOpRectangle = 38;
inline constexpr uint8_t kOpEndImage = 49;

// The row of the operator spelled by the text, null for none.
const OperatorRow *FindOperatorRow(std::string_view text);

// The row of an operator that takes no more than numbers, null for any other one.
const OperatorRow *FindPlainOperator(char first);
const OperatorRow *FindPlainOperator(char first, char second);

}  // namespace kapdf
