// The operators of content, in one table.
#pragma once

#include <array>
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

using OperatorHandler = Flow (Interpreter::*)(const Statement &);

// `number` groups operators that share their effect. A missing handler means that the operator is taken and ignored.
struct OperatorRow {
  std::string_view text;
  uint8_t number;
  OperatorHandler outside;  // text objects
  OperatorHandler inside;
};

inline constexpr uint8_t kOpSaveState = 2;
inline constexpr uint8_t kOpRestoreState = 3;
inline constexpr uint8_t kOpRectangle = 38;
inline constexpr uint8_t kOpEndText = 15;
inline constexpr uint8_t kOpEndImage = 49;
inline constexpr int kOperatorNumbers = 55;

// Number of the operator spelled by the bytes, 0 for none.
uint8_t FindOperatorNumber(const char *text, size_t length);

// Number of an operator whose operands can only be plain numbers, 0 for any other one.
uint8_t FindPlainOperator(char first);
uint8_t FindPlainOperator(char first, char second);

// Handlers by operator number.
OperatorHandler HandlerOutside(uint8_t number);
OperatorHandler HandlerInside(uint8_t number);

}  // namespace kapdf
