#include "io/codec_ccitt.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "base/bytes.h"
#include "io/codec_ccitt_encoder.h"
#include "io/codec_ccitt_rows.h"
#include "io/codec_ccitt_tables.h"

namespace kapdf {

using ccitt::BitReader;
using ccitt::ChangeRow;
using ccitt::Code;

namespace {

// Sets the bits of the black pixels in a row of zeros.
void Paint(const ChangeRow &row, uint8_t *bytes) {
  const int32_t *change = row.at();
  for (size_t left = (row.count() + 1) / 2; left > 0; --left, change += 2) {
    const auto first = static_cast<uint32_t>(change[0]), end = static_cast<uint32_t>(change[1]);
    uint8_t *at = bytes + first / 8;
    uint8_t *const last = bytes + end / 8;
    const unsigned head = 0xFFu >> (first % 8), tail = 0xFF00u >> (end % 8) & 0xFF;
    if (at == last) {
      *at |= static_cast<uint8_t>(head & tail);
      continue;
    }
    *at++ |= static_cast<uint8_t>(head);
    std::memset(at, 0xFF, static_cast<size_t>(last - at));
    if (tail != 0) *last |= static_cast<uint8_t>(tail);
  }
}

}  // namespace

struct CZVCCITT::Decoding {
  Decoding(CZVBaseIO &io, uint32_t length, int32_t columns)
      : pieces(io, length), input(pieces), rows{ChangeRow(columns), ChangeRow(columns)} {}

  ccitt::CodedPieces pieces;
  BitReader input;
  ChangeRow rows[2];
  int current = 0;              // of `rows`; the other one is above it
  std::vector<uint8_t> packed;  // the current row, when a read took only a part of it
  size_t packedUsed = 0;
};

CZVCCITT::CZVCCITT(CZVBaseIO &io, uint32_t length) : CCompressionClass(io, length) {}
CZVCCITT::~CZVCCITT() = default;

void CZVCCITT::SetColumns(uint32_t columns) {
  if (!decoding_) columns_ = std::clamp<uint32_t>(columns, 1, limits::kImageSide);
}

void CZVCCITT::reset() {
  CCompressionClass::reset();
  decoding_.reset();
  rowGood_ = true;
  endMark_ = false;
}

bool CZVCCITT::NextRow() {
  if (state_ != kCodecOk) return false;
  if (!decoding_) decoding_ = std::make_unique<Decoding>(io_, length_, static_cast<int32_t>(columns_));
  const int above = decoding_->current;
  decoding_->current = 1 - above;
  if (ReadRow(decoding_->input, decoding_->rows[above], decoding_->rows[1 - above])) return true;
  state_ = endMark_ || rowGood_ ? kCodecFinished : kCodecDamaged;
  return false;
}

size_t CZVCCITT::decompress(uint8_t *buffer, size_t count) {
  return runs_ ? ReadRuns(buffer, count) : ReadPacked(buffer, count);
}

// The buffer's room follows from the columns, as the declaration of `SetBitlineOutput` says.
size_t CZVCCITT::ReadRuns(uint8_t *buffer, size_t count) {
  if (count < columns_ || !NextRow()) return 0;
  const ChangeRow &row = decoding_->rows[decoding_->current];
  const auto runs = static_cast<uint32_t>((row.count() + 1) / 2);
  StoreAs(buffer, runs);
  uint8_t *out = buffer + 4;
  const int32_t *change = row.at();
  for (uint32_t i = 0; i < runs; ++i, out += 8, change += 2) {
    StoreAs(out, change[0]);
    StoreAs(out + 4, change[1] - 1);
  }
  return static_cast<size_t>(out - buffer);
}

size_t CZVCCITT::ReadPacked(uint8_t *buffer, size_t count) {
  size_t done = 0;
  while (done < count) {
    if (decoding_ && decoding_->packedUsed < decoding_->packed.size()) {
      const size_t part = std::min(count - done, decoding_->packed.size() - decoding_->packedUsed);
      std::memcpy(buffer + done, decoding_->packed.data() + decoding_->packedUsed, part);
      decoding_->packedUsed += part;
      done += part;
      continue;
    }
    if (!NextRow()) break;
    const ChangeRow &row = decoding_->rows[decoding_->current];
    if (count - done >= rowBytes()) {
      std::memset(buffer + done, 0, rowBytes());
      Paint(row, buffer + done);
      done += rowBytes();
    } else {
      decoding_->packed.assign(rowBytes(), 0);
      decoding_->packedUsed = 0;
      Paint(row, decoding_->packed.data());
    }
  }
  return done;
}

void CZVCCITT3::reset() {
  CZVCCITT::reset();
  marks_ = 0;
  asked_ = tagged_ = false;
}

// Takes the end-of-line code, filled up by zeros, when it comes next.
bool CZVCCITT3::TakeMark(BitReader &input) {
  if (bytesAligned_ && marks_ == 0) input.Align();  // zeros of a padding and of a code may look like the mark
  if (input.TakeEndOfLine()) return true;
  if (bytesAligned_) input.Align();
  return bytesAligned_ && input.TakeEndOfLine();
}

// Goes on to the next one when it must be there, or when the row broke off and may be followed by one. A mark with one
// wrong bit behind a good row still is a mark. A row that broke off may have taken a mark's first zeros for its own.
bool CZVCCITT3::FindMark(BitReader &input) {
  if (!tagged_ && marks_ < (rowGood_ ? 2 : 1)) return false;
  const Code mark = ccitt::kEndOfLine;
  if (rowGood_ && marks_ > 0 && std::popcount(input.Peek(mark.count) ^ mark.bits) == 1) {
    input.Skip(mark.count);
    return true;
  }
  input.GoBack(std::min<uint64_t>(32, input.Position() - rowStart_));
  return input.FindEndOfLine();
}

CZVCCITT3::Start CZVCCITT3::FindRow(BitReader &input, ChangeRow &scratch) {
  const bool mark = TakeMark(input) || FindMark(input);
  marks_ = mark ? std::min(marks_ + 1, 2) : 0;
  if (mark && !asked_) {
    asked_ = true;
    tagged_ = HasTags(input, scratch);
  }
  const bool refers = mark && tagged_ && !input.TakeBit();
  endMark_ = mark && input.TakeEndOfLine();  // no row stands between
  if (endMark_) return Start::kEnd;
  // Without a mark, bits that start no code would make one empty row after the other.
  while (!mark && !input.AtEnd() && input.Zeros() >= ccitt::kNoRunZeros) {
    input.SkipZeros();
    if (!input.AtEnd()) input.Skip(1);
  }
  if (input.AtEnd()) return Start::kEnd;
  rowStart_ = input.Position();
  return refers ? Start::kTagged : Start::kPlain;
}

bool CZVCCITT3::ReadRow(BitReader &input, const ChangeRow &above, ChangeRow &row) {
  const Start start = FindRow(input, row);
  if (start == Start::kEnd) return false;
  rowGood_ = start == Start::kTagged ? ReadRow2D(input, above, row) : ReadRow1D(input, row);
  return true;
}

namespace {

constexpr int kRowsToAsk = 16;

bool EndsAtMark(BitReader input, ChangeRow &scratch) {
  return ReadRow1D(input, scratch) && (input.TakeEndOfLine() || input.AtEnd());
}

}  // namespace

bool CZVCCITT3Fax::HasTags(const BitReader &input, ChangeRow &scratch) const {
  BitReader row = input.LookAhead();
  for (int i = 0; i < kRowsToAsk && !row.AtEnd(); ++i) {
    const bool plain = EndsAtMark(row, scratch);
    BitReader behind = row;
    const bool tagged = behind.TakeBit() && EndsAtMark(behind, scratch);
    if (plain != tagged) return tagged;
    if (!row.FindEndOfLine()) break;
  }
  return false;
}

CZVCCITT4::CZVCCITT4(CZVBaseIO &io, uint32_t length) : CZVCCITT(io, length) {}
CZVCCITT4::~CZVCCITT4() = default;

void CZVCCITT4::reset() {
  CZVCCITT::reset();
  encoder_.reset();
}

bool CZVCCITT4::ReadRow(BitReader &input, const ChangeRow &above, ChangeRow &row) {
  if (bytesAligned_) input.Align();
  // Two end-of-line codes end the data, or one with nothing behind it. Other bits that start no code are damage.
  while (!input.AtEnd() && input.Zeros() >= ccitt::kNoModeZeros) {
    const bool mark = input.SkipZeros() >= ccitt::kEndOfLineZeros;
    if (input.AtEnd()) return false;
    input.Skip(1);
    endMark_ = mark && (input.Zeros() >= ccitt::kEndOfLineZeros || input.AtEnd());
    if (endMark_) return false;
  }
  if (input.AtEnd()) return false;
  rowGood_ = ReadRow2D(input, above, row);
  return true;
}

size_t CZVCCITT4::compress(const uint8_t *buffer, size_t count) {
  if (state_ != kCodecOk) return 0;
  if (!encoder_) encoder_ = std::make_unique<ccitt::Encoder>(io_, static_cast<int32_t>(columns_));
  if (encoder_->Write(buffer, count)) return count;
  state_ = kCodecDamaged;
  return 0;
}

bool CZVCCITT4::flush() {
  if (state_ != kCodecOk) return false;
  if (!encoder_) encoder_ = std::make_unique<ccitt::Encoder>(io_, static_cast<int32_t>(columns_));
  const bool ok = encoder_->Finish();
  encoder_.reset();
  state_ = ok ? kCodecFinished : kCodecDamaged;
  return ok;
}

}  // namespace kapdf
