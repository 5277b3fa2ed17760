// One statement in a handler's hands.
#pragma once

#include <array>
#include <string_view>

#include "base/ascii.h"
#include "base/scan.h"

namespace kapdf {

struct OperatorRow;

// Numbers and one operator, taken from the content where they stand.
struct PlainStatement {
  static constexpr int kOperands = 6;
  std::array<double, kOperands> values;
  int count = 0;
};

// Either plain numbers, read already, or the text from its first character that is not a blank to its operator. The
// text is never null.
struct Statement {
  const char *text = "";
  const PlainStatement *plain = nullptr;
  const OperatorRow *row = nullptr;  // null when the text holds no operator: nothing happens then

  // Reads up to `wanted` numbers from the start and gives how many there were.
  int Reals(double *values, int wanted) const {
    if (plain) {
      const int count = plain->count < wanted ? plain->count : wanted;
      for (int i = 0; i < count; ++i) values[i] = plain->values[static_cast<size_t>(i)];
      return count;
    }
    const char *at = text;
    for (int i = 0; i < wanted; ++i) {
      if (!ScanReal(at, values[i])) return i;
    }
    return wanted;
  }

  // The first word of the text, empty for plain numbers.
  std::string_view Word() const {
    const char *at = text;
    SkipSpaces(at);
    const char *end = at;
    while (*end && !IsSpace(static_cast<unsigned char>(*end))) ++end;
    return {at, static_cast<size_t>(end - at)};
  }
};

}  // namespace kapdf
