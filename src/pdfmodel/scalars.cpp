// Objects that hold no others, numbers and references apart.
#include "base/ascii.h"
#include "base/limits.h"
#include "pdfmodel/objects.h"

namespace kapdf {

uint8_t CPDFObject::SkipSpace() {
  do lastChar = source_->GetByte();
  while (IsSpace(lastChar));
  return lastChar;
}

uint8_t CPDFObject::FirstByte(uint8_t first) {
  lastChar = first;
  return first == 255 || IsSpace(first) ? SkipSpace() : first;
}

bool CPDFObject::Expect(std::string_view text) {
  for (const char c : text) {
    lastChar = source_->GetByte();
    if (lastChar != static_cast<uint8_t>(c)) return false;
  }
  return true;
}

bool CPDFBool::Parse(uint8_t firstChar) {
  const uint8_t first = FirstByte(firstChar);
  if (first != 't' && first != 'f') return false;
  value = first == 't';
  if (!Expect(value ? "rue" : "alse")) return false;
  lastChar = source_->GetByte();
  return true;
}

bool CPDFNull::Parse(uint8_t firstChar) {
  if (FirstByte(firstChar) != 'n' || !Expect("ull")) return false;
  lastChar = source_->GetByte();
  return true;
}

bool CPDFNameObject::Parse(uint8_t firstChar) {
  name.clear();
  if (FirstByte(firstChar) != '/') return false;
  bool tooLong = false;
  uint8_t c = source_->GetByte();
  for (; c != 255 && !IsSpace(c) && c != '/' && c != '[' && c != ']' && c != '<' && c != '>' && c != '(' && c != ')';
       c = source_->GetByte()) {
    if (name.size() < limits::kTokenText)
      name += static_cast<char>(c);
    else
      tooLong = true;
  }
  lastChar = c;
  if (IsSpace(c)) SkipSpace();
  return !tooLong;
}

bool CPDFString::Parse(uint8_t firstChar) {
  bytes.clear();
  wide = false;
  const uint8_t first = FirstByte(firstChar);
  if (first == '(') return ParseLiteral();
  return first == '<' && ParseHexadecimal();
}

namespace {

// Reads a literal string's bytes; one byte can be pushed back, since the byte behind an octal number counts again.
class LiteralReader {
 public:
  explicit LiteralReader(CZVBaseIO &source) : source_(source) {}

  // False at the end of the source.
  bool Next(uint8_t &c) {
    if (pushed_) {
      pushed_ = false;
      c = held_;
      return !heldEnd_;
    }
    c = source_.GetByte();
    return !source_.AtEnd();
  }
  void Push(uint8_t c, bool ended) {
    held_ = c;
    heldEnd_ = ended;
    pushed_ = true;
  }

  // The byte that a backslash and `c` stand for; false when they stand for none.
  bool Escape(uint8_t c, uint8_t &byte) {
    switch (c) {
      case '\r':
        return false;  // the byte behind it, often a line feed, counts as it stands
      case 'b':
        byte = 8;
        return true;
      case 'f':
        byte = 12;
        return true;
      case 'n':
        byte = 10;
        return true;
      case 'r':
        byte = 13;
        return true;
      case 't':
        byte = 9;
        return true;
      default:
        break;
    }
    byte = IsDigit(c) ? Octal(c) : c;
    return true;
  }

 private:
  // Up to three digits. Hexadecimal letters pass the test for the second and third one and count by their code.
  uint8_t Octal(uint8_t first) {
    unsigned value = first - '0';
    for (int i = 0; i < 2; ++i) {
      uint8_t c;
      const bool more = Next(c);
      if (!more || HexValue(c) < 0) {
        Push(c, !more);
        break;
      }
      value = value * 8 + (c - '0');
    }
    return static_cast<uint8_t>(value);
  }

  CZVBaseIO &source_;
  uint8_t held_ = 0;
  bool heldEnd_ = false;
  bool pushed_ = false;
};

}  // namespace

bool CPDFString::ParseLiteral() {
  LiteralReader reader(*source_);
  uint8_t c;
  while (reader.Next(c) && c != ')') {
    if (c == '\\' && (!reader.Next(c) || !reader.Escape(c, c))) continue;
    bytes += static_cast<char>(c);
  }
  lastChar = source_->GetByte();
  if (source_->AtEnd() || IsSpace(lastChar)) SkipSpace();
  return true;
}

bool CPDFString::ParseHexadecimal() {
  uint8_t c = SkipSpace();
  for (int high; (high = HexValue(c)) >= 0;) {
    const int low = HexValue(c = SkipSpace());
    bytes += static_cast<char>(high << 4 | (low < 0 ? 0 : low));
    if (low < 0) break;
    c = SkipSpace();
  }
  if (bytes.empty()) return false;
  if (c != '>') return true;
  if (bytes.size() >= 2 && bytes[0] == '\xFE' && bytes[1] == '\xFF') {
    wide = true;
    bytes.erase(0, 2);
    for (size_t i = 0; i + 1 < bytes.size(); i += 2) std::swap(bytes[i], bytes[i + 1]);
  }
  lastChar = source_->GetByte();
  if (IsSpace(lastChar)) SkipSpace();
  return true;
}

}  // namespace kapdf
