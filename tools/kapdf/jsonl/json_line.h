// One line of JSON as a flat list of keys. Arrays of numbers, which may hold millions of points, go straight into one
// vector; no tree is built.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kapdf::tool {

struct JsonValue {
  enum class Type { kNull, kBoolean, kInteger, kReal, kText, kArray };

  std::string key;
  Type type = Type::kNull;
  bool used = false;  // somebody asked for it

  bool boolean = false;
  double real = 0;        // kInteger, kReal
  bool negative = false;  // kInteger: the sign and the 64 bits of the magnitude's two's complement
  uint64_t bits = 0;
  std::string text;

  // kArray: all numbers in order; where each array directly inside the outermost one ends; and whether every array
  // one level further in was a pair. `numberLevel` is 1 for [1, 2], 2 for [[1, 2]]; 0 when there are no numbers.
  std::vector<double> numbers;
  std::vector<size_t> ends;
  int numberLevel = 0;
  bool pairs = true;
};

class JsonLine {
 public:
  // False with the fault in `fault` when the line is not one object of this shape.
  bool Parse(std::string_view line, std::string &fault);

  // Null when the key is missing or null; marks it as used.
  const JsonValue *Find(std::string_view key);
  // A key that nobody asked for; null when there is none.
  const JsonValue *Unused() const;

 private:
  friend class JsonLineBuilder;
  // Kept between lines for their storage; the first count_ are this line's.
  std::vector<JsonValue> values_;
  size_t count_ = 0;
};

}  // namespace kapdf::tool
