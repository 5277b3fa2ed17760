// PDF objects. Every class parses itself from a byte source, one byte at a time. There is no object cache: a reader
// that wants an object seeks to its position and parses a fresh one, which it then owns.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "base/ascii.h"
#include "io/base_io.h"

namespace kapdf {

// Base of all objects. `Parse` takes a byte that was already read, or 255 when one is to be read first, and tells
// whether that succeeded; afterwards `lastChar` is the first byte that was not consumed (255 at the end of the source).
class CPDFObject {
 public:
  explicit CPDFObject(CZVBaseIO &source) : source_(&source) {}
  CPDFObject(const CPDFObject &) = delete;
  CPDFObject &operator=(const CPDFObject &) = delete;
  virtual ~CPDFObject() = default;

  virtual bool Parse(uint8_t) { return false; }
  // Consumes the rest of the object after an early stop; false when the source ends first.
  virtual bool SkipRest() { return true; }

  CZVBaseIO &source() const { return *source_; }
  uint8_t lastChar = 255;

 protected:
  // Reads up to a byte that is not white space, keeps it in `lastChar` and gives it.
  uint8_t SkipSpace();
  // `first`, or what SkipSpace finds when `first` is 255 or white space.
  uint8_t FirstByte(uint8_t first);
  // True when the next bytes are the text.
  bool Expect(std::string_view text);

  CZVBaseIO *source_;
};

class CPDFBool final : public CPDFObject {
 public:
  using CPDFObject::CPDFObject;
  bool Parse(uint8_t firstChar) override;
  bool value = false;
};

class CPDFNull final : public CPDFObject {
 public:
  using CPDFObject::CPDFObject;
  bool Parse(uint8_t firstChar) override;
};

class CPDFNumeric final : public CPDFObject {
 public:
  using CPDFObject::CPDFObject;
  bool Parse(uint8_t firstChar) override;
  int32_t intValue = -1;
  double realValue = -1.0;
};

// Literal or hexadecimal. The first ")" that is not escaped ends a literal string; nesting is not tracked.
class CPDFString final : public CPDFObject {
 public:
  using CPDFObject::CPDFObject;
  bool Parse(uint8_t firstChar) override;

  std::string bytes;  // for a wide string UTF-16 in memory order, without its marker
  bool wide = false;

 private:
  bool ParseLiteral();
  bool ParseHexadecimal();
};

// The text behind the slash, as it stands: "#20" is not decoded.
class CPDFNameObject final : public CPDFObject {
 public:
  using CPDFObject::CPDFObject;
  bool Parse(uint8_t firstChar) override;
  std::string name;
};

// "n g R". Only what stands behind the first number tells it from a number, so ParseAny reads both.
class CPDFIndirectObject final : public CPDFObject {
 public:
  using CPDFObject::CPDFObject;
  // A reference that outlives the object it was read from.
  std::unique_ptr<CPDFIndirectObject> Copy() const;

  int32_t objectNumber = -1;
  int32_t generation = -1;
};

// "n g obj" ahead of an object. The numbers are not compared with what was looked for.
class CPDFObjectIntro final : public CPDFObject {
 public:
  using CPDFObject::CPDFObject;
  bool Parse(uint8_t firstChar) override;
  int32_t objectNumber = -1;
  int32_t generation = -1;
};

// `depth` counts the arrays and dictionaries around a container.
class CPDFArray final : public CPDFObject {
 public:
  explicit CPDFArray(CZVBaseIO &source, int depth = 0) : CPDFObject(source), depth_(depth) {}
  // A digit in place of "[" makes an array of that one object. Fails when the array does not end in "]".
  bool Parse(uint8_t firstChar) override;
  bool SkipRest() override;

  uint32_t Count() const { return static_cast<uint32_t>(items_.size()); }
  // Null past the end. The array keeps the object.
  CPDFObject *GetAt(uint32_t index) const { return index < items_.size() ? items_[index].get() : nullptr; }

 private:
  int depth_;
  std::vector<std::unique_ptr<CPDFObject>> items_;
};

class CPDFDictionary final : public CPDFObject {
 public:
  explicit CPDFDictionary(CZVBaseIO &source, int depth = 0) : CPDFObject(source), depth_(depth) {}
  // Rubbish before "<<" is passed over. Only a missing "<<" fails; a missing ">>" does not.
  bool Parse(uint8_t firstChar) override;
  bool SkipRest() override;

  // Null when the key is missing. The dictionary keeps the object. Of equal keys the first counts.
  CPDFObject *Get(std::string_view name) const;
  template <class T>
  T *GetAs(std::string_view name) const {
    return dynamic_cast<T *>(Get(name));
  }

  struct Entry {
    std::string name;
    std::unique_ptr<CPDFObject> value;
  };
  // In byte order of the names, without repeated ones.
  std::vector<const Entry *> Sorted() const;
  size_t Count() const;

 private:
  void ParseEntries();
  size_t Index(std::string_view name) const;

  int depth_;
  std::vector<Entry> entries_;                                   // in file order, repeated names included
  mutable std::unordered_map<std::string_view, size_t> byName_;  // made once a dictionary is large
};

// Any object at the source, or null. `byte` is the byte in hand, as for Parse; afterwards the first one not consumed.
std::unique_ptr<CPDFObject> ParseAny(CZVBaseIO &source, uint8_t &byte, int depth);

constexpr bool IsNumberByte(uint8_t c) { return IsDigit(c) || c == '-' || c == '+' || c == '.'; }
// The same for a byte of a number: a reference where one stands, else the number.
std::unique_ptr<CPDFObject> ParseNumber(CZVBaseIO &source, uint8_t &byte);

}  // namespace kapdf
