// Facsimile coding of rows of black and white pixels.
#pragma once

#include <memory>
#include <vector>

#include "io/codec.h"

namespace kapdf {

namespace ccitt {
class BitReader;
class ChangeRow;
class CodedPieces;
class Encoder;
}  // namespace ccitt

// What the three have in common. `Read` delivers packed rows, a set bit is black, each row padded to a byte; or run
// lists, see `SetBitlineOutput`. The data end with their end mark or with the source; how many rows are wanted is the
// caller's concern. `error` then tells whether they ended behind a row.
//
// A damaged row delivers what could be read of it and is white from there. Reading goes on at the next end-of-line code
// where the data have such codes, else at the next bit.
class CZVCCITT : public CCompressionClass {
 public:
  static constexpr long kRowsStartAtBytes = 4;

  CZVCCITT(CZVBaseIO &io, uint32_t length);
  ~CZVCCITT() override;

  // Pixels of a row, 1 to 1,000,000; 1728 unless told. Has no effect between the first read or write and `reset`.
  void SetColumns(uint32_t columns);
  // Sum of option bits; others than the one above mean nothing.
  void SetOptions(long options) { bytesAligned_ = (options & kRowsStartAtBytes) != 0; }
  void SetBitlineOutput(bool runs) override { runs_ = runs; }
  void reset() override;

 protected:
  size_t compress(const uint8_t *, size_t) override { return 0; }
  size_t decompress(uint8_t *buffer, size_t count) override;

  size_t rowBytes() const { return (static_cast<size_t>(columns_) + 7) / 8; }
  // Finds the start of the next row and reads it; false at the end of the data.
  virtual bool ReadRow(ccitt::BitReader &input, const ccitt::ChangeRow &above, ccitt::ChangeRow &row) = 0;

  uint32_t columns_ = 1728;
  bool bytesAligned_ = false;
  bool rowGood_ = true;  // the row that was read last, in `ReadRow`
  bool endMark_ = false;

 private:
  struct Decoding;
  bool NextRow();
  size_t ReadRuns(uint8_t *buffer, size_t count);
  size_t ReadPacked(uint8_t *buffer, size_t count);

  std::unique_ptr<Decoding> decoding_;
  bool runs_ = false;
};

// Rows that do not refer to one another, each with an end-of-line code ahead of it or without one. Decodes only.
class CZVCCITT3 : public CZVCCITT {
 public:
  using CZVCCITT::CZVCCITT;
  void reset() override;

 protected:
  std::string_view name() const override { return "CCITT3"; }
  bool ReadRow(ccitt::BitReader &input, const ccitt::ChangeRow &above, ccitt::ChangeRow &row) override;
  // Whether a bit behind the end-of-line code says of which kind a row is. Asked behind the first such code.
  virtual bool HasTags(const ccitt::BitReader &, ccitt::ChangeRow &) const { return false; }

 private:
  enum class Start { kPlain, kTagged, kEnd };
  Start FindRow(ccitt::BitReader &input, ccitt::ChangeRow &scratch);
  bool TakeMark(ccitt::BitReader &input);
  bool FindMark(ccitt::BitReader &input);

  int marks_ = 0;  // rows one after the other that had an end-of-line code ahead; counts to 2
  bool asked_ = false;
  bool tagged_ = false;
  uint64_t rowStart_ = 0;
};

// The same with rows that refer to the row above. Such rows need a bit that tells them from others, behind an
// end-of-line code; whether there is such a bit, the data show: the first row that ends at an end-of-line code when
// it is read in one of the two ways, but not when it is read in the other, decides. Data without those codes have none.
class CZVCCITT3Fax final : public CZVCCITT3 {
 public:
  using CZVCCITT3::CZVCCITT3;

 protected:
  std::string_view name() const override { return "CCITT3Fax"; }
  bool HasTags(const ccitt::BitReader &input, ccitt::ChangeRow &scratch) const override;
};

// All rows refer to the row above. `Write` takes packed rows in pieces of any size; `flush` fills up the last row,
// writes the end mark and pads to a byte.
class CZVCCITT4 final : public CZVCCITT {
 public:
  CZVCCITT4(CZVBaseIO &io, uint32_t length);
  ~CZVCCITT4() override;
  bool flush() override;
  void reset() override;

 protected:
  size_t compress(const uint8_t *buffer, size_t count) override;
  std::string_view name() const override { return "CCITT4"; }
  bool ReadRow(ccitt::BitReader &input, const ccitt::ChangeRow &above, ccitt::ChangeRow &row) override;

 private:
  std::unique_ptr<ccitt::Encoder> encoder_;
};

}  // namespace kapdf
