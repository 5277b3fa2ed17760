// The two filters that carry bytes as text. They decode only.
#pragma once

#include "io/codec.h"

namespace kapdf {

// Groups of five characters from "!" to "u" for four bytes, "z" for four zeros; "~" or the end of the source ends.
class CZVASCII85 final : public CCompressionClass {
 public:
  using CCompressionClass::CCompressionClass;
  void reset() override;

 protected:
  size_t compress(const uint8_t *, size_t) override { return 0; }
  size_t decompress(uint8_t *buffer, size_t count) override;
  std::string_view name() const override { return "ASCII85"; }

 private:
  void DecodeGroup();

  uint8_t group_[4] = {};
  unsigned held_ = 0;  // decoded bytes in group_
  unsigned next_ = 0;  // the first of them not delivered yet
};

// Pairs of hexadecimal digits; ">" or the end of the source ends, an odd digit counts as the high half of a byte.
class CZVASCIIHex final : public CCompressionClass {
 public:
  using CCompressionClass::CCompressionClass;

 protected:
  size_t compress(const uint8_t *, size_t) override { return 0; }
  size_t decompress(uint8_t *buffer, size_t count) override;
  std::string_view name() const override { return "ASCIIHex"; }

 private:
  int NextDigit();  // -1 at the end
};

}  // namespace kapdf
