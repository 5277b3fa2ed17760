// Numbers, and what begins with them: references and the line ahead of an object.
#include "base/limits.h"
#include "base/scan.h"
#include "pdfmodel/objects.h"

namespace kapdf {
namespace {

// The bytes of one number. `next` gives byte after byte, 255 where there are none.
class NumberText {
 public:
  // Takes the bytes from `c` on that belong to a number, and gives the first that does not.
  template <class Next>
  uint8_t Take(uint8_t c, Next next) {
    for (length_ = 0; IsNumberByte(c); c = next()) {
      if (length_ < limits::kTokenText) text_[length_] = static_cast<char>(c);
      ++length_;
    }
    if (IsUsable()) text_[length_] = 0;
    return c;
  }
  bool IsUsable() const { return length_ > 0 && length_ <= limits::kTokenText; }

  double Real() const { return RealFrom(text_); }
  int32_t Integer() const { return IntegerFrom(text_); }
  // The same as `Integer`, from what `Real` gave: so few digits are exact in a double on both sides of the point.
  int32_t Integer(double real) const { return length_ <= 15 ? TruncateToInteger(real) : Integer(); }

 private:
  char text_[limits::kTokenText + 1];
  size_t length_ = 0;
};

// A second number after a first that `c` has ended, with the first byte that is no white space behind it in `last`.
template <class Next>
bool TakeSecondNumber(uint8_t c, Next next, NumberText &number, uint8_t &last) {
  if (c == 255 || IsSpace(c)) {
    do c = next();
    while (IsSpace(c));
  }
  last = number.Take(c, next);
  if (!number.IsUsable()) return false;
  while (IsSpace(last)) last = next();
  return true;
}

// Generation and "R" of a reference, after an object number that `c` has ended. `last` is then the first byte that is
// no white space behind them.
template <class Next>
bool TakeGeneration(uint8_t c, Next next, int32_t &generation, uint8_t &last) {
  NumberText number;
  if (!TakeSecondNumber(c, next, number, last) || last != 'R') return false;
  generation = number.Integer();
  do last = next();
  while (IsSpace(last));
  return true;
}

enum class Found { kNumber, kReference, kLost };

// Looks ahead from the byte that ended a number. A reference is consumed, `byte` being the first one behind it. Of
// anything else nothing is, but for a source that cannot go back (kLost).
Found LookForReference(CZVBaseIO &source, uint8_t &byte, int32_t &generation) {
  if (source.AtEnd() || (byte != 255 && !IsSpace(byte))) return Found::kNumber;
  const std::span<const uint8_t> ahead = source.Ahead();
  auto at = ahead.begin();
  bool cut = false;  // the window ended before the answer was clear
  uint8_t last;
  const auto peek = [&]() -> uint8_t {
    cut = at == ahead.end();
    return cut ? 255 : *at++;
  };
  bool found = TakeGeneration(byte, peek, generation, last);
  if (!cut) {
    if (found) source.Skip(static_cast<size_t>(at - ahead.begin()));
  } else {
    const int64_t position = source.Tell();
    found = TakeGeneration(
        byte, [&] { return source.GetByte(); }, generation, last);
    if (!found && !source.Seek(position, SeekOrigin::kStart)) {
      byte = last;
      return Found::kLost;
    }
  }
  if (found) byte = last;
  return found ? Found::kReference : Found::kNumber;
}

}  // namespace

bool CPDFNumeric::Parse(uint8_t firstChar) {
  NumberText number;
  lastChar = number.Take(FirstByte(firstChar), [this] { return source_->GetByte(); });
  if (!number.IsUsable()) return false;
  realValue = number.Real();
  intValue = number.Integer(realValue);
  return true;
}

std::unique_ptr<CPDFIndirectObject> CPDFIndirectObject::Copy() const {
  auto copy = std::make_unique<CPDFIndirectObject>(*source_);
  copy->objectNumber = objectNumber;
  copy->generation = generation;
  return copy;
}

bool CPDFObjectIntro::Parse(uint8_t firstChar) {
  const auto next = [this] { return source_->GetByte(); };
  NumberText number;
  lastChar = number.Take(FirstByte(firstChar), next);
  if (!number.IsUsable()) return false;
  objectNumber = number.Integer();
  if (!TakeSecondNumber(lastChar, next, number, lastChar)) return false;
  generation = number.Integer();
  if (lastChar != 'o') return false;
  source_->GetByte();  // "b" and "j", unseen; the byte behind them is the object's first
  source_->GetByte();
  lastChar = source_->GetByte();
  return true;
}

std::unique_ptr<CPDFObject> ParseNumber(CZVBaseIO &source, uint8_t &byte) {
  NumberText text;
  byte = text.Take(byte, [&] { return source.GetByte(); });
  if (!text.IsUsable()) return nullptr;
  int32_t generation;
  const Found found = LookForReference(source, byte, generation);
  if (found == Found::kLost) return nullptr;
  if (found == Found::kReference) {
    auto reference = std::make_unique<CPDFIndirectObject>(source);
    reference->objectNumber = text.Integer();
    reference->generation = generation;
    reference->lastChar = byte;
    return reference;
  }
  auto number = std::make_unique<CPDFNumeric>(source);
  number->realValue = text.Real();
  number->intValue = text.Integer(number->realValue);
  number->lastChar = byte;
  return number;
}

}  // namespace kapdf
